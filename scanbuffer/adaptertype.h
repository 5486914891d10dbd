#pragma once

#include "platform/base/export.h"

#include <QByteArray>

#include <cstdint>
#include <span>

/// The kinds of adapters, with the name by which a display asks for one; 10 is not assigned.
enum Adapter_Type : std::uint16_t {
    AdapterType_None = 0,
    AdapterType_Statistics = 1,    ///< "Statistics"
    AdapterType_Curve = 2,         ///< "Curve"
    AdapterType_XAxis = 3,         ///< "XAxis"
    AdapterType_Waterfall = 4,     ///< "Waterfall"
    AdapterType_Azimuth = 5,       ///< "Azimuth"
    AdapterType_Elevation = 6,     ///< "Elevation"
    AdapterType_XMarker = 7,       ///< "XMarker"
    AdapterType_Threshold = 8,     ///< "Threshold"
    AdapterType_MaxHold = 9,       ///< "MaxHold"
    AdapterType_StaticSource = 11, ///< "StaticSource"
    AdapterType_KFactor = 12,      ///< "KFactor"; no adapter serves it
    AdapterType_RefLine = 13,      ///< "RefLine"
    AdapterType_Sparkles = 14,     ///< "Sparkles"
    AdapterType_HistogramAz = 15,  ///< "HistogramAz"
    AdapterType_HistogramEl = 16,  ///< "HistogramEl"
    AdapterType_Compression = 17,  ///< "Compression"
    AdapterType_YRange = 18,       ///< "YRange"
    AdapterType_YRange2 = 19,      ///< "YRange2"
    AdapterType_YRangeA = 20,      ///< "YRangeA"
    AdapterType_YRangeE = 21,      ///< "YRangeE"
    AdapterType_IndexLine = 22,    ///< "IndexLine"
    AdapterType_NoiseFloor = 23,   ///< "NoiseFloor"
};

namespace sbs {

/// A kind and the name by which a display asks a server for it.
struct AdapterName {
    Adapter_Type type;
    const char *name;
};

/// All kinds that have a name, by rising number.
SPECTREE_EXPORT std::span<const AdapterName> adapterNames();
/// The name of a kind; empty when it has none.
SPECTREE_EXPORT QByteArray adapterName(Adapter_Type type);
/// The kind of a name; AdapterType_None for an unknown one.
SPECTREE_EXPORT Adapter_Type adapterType(const QByteArray &name);

} // namespace sbs
