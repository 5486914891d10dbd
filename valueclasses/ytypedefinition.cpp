#include "valueclasses/ytypedefinition.h"

#include "valueclasses/samples/bearing.h"
#include "valueclasses/samples/dfspectrumsample.h"
#include "valueclasses/samples/handlerbase.h"
#include "valueclasses/samples/minmax.h"
#include "valueclasses/samples/pulsemapping.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <span>

namespace values {

namespace {

constexpr int kBearing = BearingHandler::GetId();
constexpr int kExtended = BearingExtendedHandler::GetId();
constexpr int kPulse = PulseHandler::GetId();
constexpr int kSpectrum = DFSpectrumSampleHandler::GetId();
constexpr int kElevation = ElevOverAziMinMaxHandler::GetId();

enum class Unit { None, Level, FieldStrength, Degrees, Percent, Microseconds };
struct Dimension {
    const char *text;
    Unit unit;
    bool isLevel;
};

constexpr std::array<Dimension, 8> kBearingDimensions{{
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Level"), Unit::Level, true},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Time Offset"), Unit::None, false},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Signal Duration"), Unit::None, false},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Azimuth"), Unit::Degrees, false},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Elevation"), Unit::Degrees, false},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Quality"), Unit::Percent, false},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Validity"), Unit::None, false},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Short Time Level"), Unit::Level, true},
}};
constexpr std::array<Dimension, 7> kSpectrumDimensions{{
    {"Level", Unit::Level, true},
    {"Validity", Unit::None, false},
    {"Short Time Level", Unit::Level, true},
    {"Azimuth", Unit::Degrees, false},
    {"Elevation", Unit::Degrees, false},
    {"Quality", Unit::Percent, false},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Field Strength"), Unit::FieldStrength, true},
}};
constexpr std::array<Dimension, 7> kPulseDimensions{{
    {"Level", Unit::Level, true},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Pulse Level"), Unit::Level, true},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Pulse Type"), Unit::None, false},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Pulse Level Max"), Unit::Level, true},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Pulse Count"), Unit::None, false},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Pulse Duration Min"), Unit::Microseconds, false},
    {QT_TRANSLATE_NOOP("YTypeDefinition", "Pulse Duration"), Unit::Microseconds, false},
}};

/// Nothing for a kind of one dimension without a name.
std::span<const Dimension> dimensionsOf(int type)
{
    if (type == kBearing || type == kExtended)
        return kBearingDimensions;
    if (type == kSpectrum)
        return kSpectrumDimensions;
    if (type == kPulse)
        return kPulseDimensions;
    return {};
}

const Dimension *find(int type, int dimension)
{
    const auto dimensions = dimensionsOf(type);
    return dimension >= 0 && std::size_t(dimension) < dimensions.size()
               ? &dimensions[std::size_t(dimension)]
               : nullptr;
}

template <typename Admits>
QStringList list(int type, Admits admits)
{
    QStringList texts;
    for (int i = 0; i < int(dimensionsOf(type).size()); ++i)
        if (admits(i))
            texts << YTypeDefinition::GetDimensionString(type, i);
    return texts;
}

} // namespace

bool YTypeDefinition::isQDFType(int type)
{
    return type == kBearing || type == kExtended || type == kSpectrum;
}

int YTypeDefinition::GetDimensionCnt(int type)
{
    return type == kBearing    ? BearingHandler::GetDimensionCnt()
           : type == kExtended ? BearingExtendedHandler::GetDimensionCnt()
           : type == kSpectrum ? DFSpectrumSampleHandler::GetDimensionCnt()
                               : 1;
}

QString YTypeDefinition::GetDimensionString(int type, int dimension)
{
    const Dimension *const found = find(type, dimension);
    return found != nullptr ? QCoreApplication::translate("YTypeDefinition", found->text)
                            : QString();
}

QString YTypeDefinition::GetUnitString(int type, int dimension)
{
    const Dimension *const found = find(type, dimension);
    const Unit unit = found != nullptr                    ? found->unit
                      : IsLevelDimension(type, dimension) ? Unit::Level
                                                          : Unit::None;
    switch (unit) {
    case Unit::Level:
        return HandlerBase::GetLevelUnit();
    case Unit::FieldStrength:
        return QString::fromUtf8("dB\xC2\xB5V/m");
    case Unit::Degrees:
        return QString(QChar(0xB0));
    case Unit::Percent:
        return QStringLiteral("%");
    case Unit::Microseconds:
        return QString::fromUtf8("\xC2\xB5s");
    case Unit::None:
        break;
    }
    return {};
}

QStringList YTypeDefinition::GetAllDimensions(int type)
{
    return list(type, [](int) { return true; });
}

QStringList YTypeDefinition::GetCurveDimensions(int type)
{
    return list(type, [type](int dimension) { return HasCurveDimension(type, dimension); });
}

QStringList YTypeDefinition::GetWaterfallDimensions(int type)
{
    return list(type, [type](int dimension) { return HasWaterfallDimension(type, dimension); });
}

bool YTypeDefinition::HasCurveDimension(int type, int dimension)
{
    return HasWaterfallDimension(type, dimension);
}

bool YTypeDefinition::HasWaterfallDimension(int type, int dimension)
{
    if (type == kSpectrum)
        return dimension >= 0 && dimension < 7;
    if (type == kBearing || type == kExtended)
        return dimension == 0 || (dimension >= 3 && dimension <= (type == kBearing ? 5 : 7));
    return dimension == 0;
}

bool YTypeDefinition::IsLevelDimension(int type, int dimension)
{
    if (const Dimension *const found = find(type, dimension))
        return found->isLevel;
    return type >= 100 && type <= 112 && type != kElevation && dimensionsOf(type).empty();
}

int YTypeDefinition::GetColorRoleIndex(int type, int dimension)
{
    if (type == -1)
        return type + 2;
    if (isQDFType(type) && dimension >= 3 && dimension <= 5)
        return dimension == 5 ? 6 : dimension - 1;
    return type == kPulse && dimension == 2 ? 9 : 1;
}

} // namespace values
