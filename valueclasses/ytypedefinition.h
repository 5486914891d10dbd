#pragma once

#include "platform/base/export.h"

#include <QStringList>

namespace values {

/// What the dimensions of a kind of sample are called and how they are shown. A kind is told by the
/// id of its handler (100 to 112), -1 standing for none; texts are translated.
class SPECTREE_EXPORT YTypeDefinition {
public:
    YTypeDefinition() = delete;

    /// True for the kinds of a direction finder: Bearing, BearingExtended, DFSpectrumSample.
    static bool isQDFType(int type);
    /// 1 for a kind that isn't one of those.
    static int GetDimensionCnt(int type);
    /// Empty where there is no such dimension.
    static QString GetDimensionString(int type, int dimension);
    /// dBuV or dBuV/m, degrees, percent, microseconds; empty for what has no unit.
    static QString GetUnitString(int type, int dimension);
    static QStringList GetAllDimensions(int type);
    static QStringList GetCurveDimensions(int type);
    static QStringList GetWaterfallDimensions(int type);
    /// Whether the dimension can be drawn over frequency; the same ones as over time.
    static bool HasCurveDimension(int type, int dimension);
    static bool HasWaterfallDimension(int type, int dimension);
    static bool IsLevelDimension(int type, int dimension);
    /// The number of the colour in which the dimension is drawn.
    static int GetColorRoleIndex(int type, int dimension);
};

} // namespace values
