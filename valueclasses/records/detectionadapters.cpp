#include "valueclasses/records/detectionadapters.h"

#include "valueclasses/itemmaps/iglobalformatter.h"

#include <QDateTime>
#include <QIcon>

#include <cmath>

namespace values {

namespace {

constexpr double kHzPerKHz = 1000.0, kHzPerMHz = 1000000.0;

QString timeText(double seconds)
{
    constexpr double kLatest = 253402300800.0; // the year 10000
    if (!(seconds > 0.0 && seconds < kLatest))
        return {};
    return QDateTime::fromMSecsSinceEpoch(std::llround(seconds * 1000.0), Qt::UTC)
        .toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz"));
}

using Wording = QString (IGlobalFormatter::*)(double) const;

QString worded(double hertz, Wording wording)
{
    const IGlobalFormatter *formatter = IGlobalFormatter::Get();
    const bool isKnown = hertz != std::numeric_limits<double>::lowest();
    return formatter != nullptr && isKnown ? (formatter->*wording)(hertz) : QString();
}

/// \a number in printf's \a format with its unit, if above 0.
QString withUnit(double number, char format, int digits, const char *unit)
{
    return number > 0.0 ? QString::number(number, format, digits) + QLatin1String(unit) : QString();
}

QString text(const std::string &field) { return QString::fromStdString(field); }

/// The state that a text of the direction finder stands for; false when it is a result.
bool isState(const std::string &field, QString *state)
{
    constexpr struct {
        const char *field, *state;
    } kStates[] = {
        {"-1000", ""},
        {"1000", "Searching..."},
        {"1001", "Invalid DF result"},
        {"1002", "Locate timeout"},
    };
    for (const auto &known : kStates)
        if (field == known.field) {
            *state = QLatin1String(known.state);
            return true;
        }
    return false;
}

QString directionText(const std::string &field)
{
    QString state;
    return isState(field, &state) ? state : text(field);
}

} // namespace

QString DetectionConventionalAdapter::GetText4Column(int column, const DetectionConventional &item)
{
    switch (column) {
    case ColumnFrequency:
    case ColumnFrequencyAgain:
        return worded(item.GetFrequency(), &IGlobalFormatter::GetFrequencyText);
    case ColumnBandwidth:
        return worded(item.GetBandwidth(), &IGlobalFormatter::GetBandwidthText);
    case ColumnName:
        return item.GetName();
    case ColumnLevel:
        return item.GetLevel() != DetectionConventional::kNoLevel
                   ? QString::number(item.GetLevel()) + QStringLiteral(" dB\u03BCV")
                   : QString();
    case ColumnStartTime:
        return timeText(item.GetStartTime());
    case ColumnStopTime:
        return timeText(item.GetStopTime());
    default:
        return {};
    }
}

QIcon DetectionConventionalAdapter::GetIcon4Column(int /*column*/,
                                                   const DetectionConventional & /*item*/)
{
    return {};
}

QString ExtendedDetConAdapter::GetFreqString(const Item &item)
{
    return withUnit(item.GetClassifierFrequency() / kHzPerKHz, 'f', 3, " kHz");
}

QString ExtendedDetConAdapter::GetFreqStringVUHF(const Item &item)
{
    return withUnit(item.GetClassifierFrequency() / kHzPerMHz, 'f', 6, " MHz");
}

QString ExtendedDetConAdapter::GetBWString(const Item &item)
{
    return withUnit(item.GetClassifierBandwidth() / kHzPerKHz, 'f', 3, " kHz");
}

QString ExtendedDetConAdapter::GetConfidenceString(const Item &item)
{
    return withUnit(item.GetClassifierConfidence(), 'f', 0, " %");
}

QString ExtendedDetConAdapter::GetToneCountString(const Item &item)
{
    const double count = item.GetClassifierCycletime();
    return count > 0.0 ? QString::number(std::trunc(count), 'f', 0) : QString();
}

QString ExtendedDetConAdapter::GetBaudString(const Item &item)
{
    return withUnit(item.GetClassifierBaudrate(), 'g', 6, " Bd");
}

QString ExtendedDetConAdapter::GetShiftString(const Item &item)
{
    return withUnit(item.GetClassifierShift(), 'g', 6, " Hz");
}

QString ExtendedDetConAdapter::GetBlockString(const Item &item)
{
    return withUnit(item.GetClassifierBlocklength(), 'g', 6, " s");
}

QString ExtendedDetConAdapter::GetCycleString(const Item &item)
{
    return withUnit(item.GetClassifierCycletime(), 'g', 6, " s");
}

QString ExtendedDetConAdapter::GetLocationString(const Item &item)
{
    QString state;
    if (isState(item.GetDFLatitude(), &state))
        return state;
    bool hasLongitude = false, hasLatitude = false;
    const double longitude = text(item.GetDFLongitude()).toDouble(&hasLongitude);
    const double latitude = text(item.GetDFLatitude()).toDouble(&hasLatitude);
    if (!hasLongitude || !hasLatitude)
        return text(item.GetDFLatitude());
    const IGlobalFormatter *formatter = IGlobalFormatter::Get();
    return formatter != nullptr ? formatter->GetPositionText(longitude, latitude) : QString();
}

#define SPECTREE_TEXT(Name, Text)                                                                  \
    QString ExtendedDetConAdapter::Name(const Item &item) { return Text; }
SPECTREE_TEXT(GetModulationString, text(item.GetClassifierDemodulator()))
SPECTREE_TEXT(GetPrimModString, text(item.GetClassifierPrimMod()))
SPECTREE_TEXT(GetTransmissionSystemString, text(item.GetClassifierTransmissionType()))
SPECTREE_TEXT(GetChannelsString, text(item.GetClassifierChannels()))
SPECTREE_TEXT(GetDecoderString, text(item.GetClassifierDecoder()))
SPECTREE_TEXT(GetAzimuthString, directionText(item.GetAzimuth()))
SPECTREE_TEXT(GetDFQualityString, directionText(item.GetDFQuality()))
#undef SPECTREE_TEXT

QString ExtendedDetConAdapter::GetText4Column(int column, const Item &item)
{
    return GetColumnText(item, column, -1);
}

QString ExtendedDetConAdapter::GetColumnText(const Item &item, int column, int length)
{
    constexpr struct {
        DetectionColumn column;
        QString (*text)(const Item &);
    } kFindings[] = {
        {ColumnClassifierFrequency, GetFreqString},
        {ColumnClassifierBandwidth, GetBWString},
        {ColumnConfidence, GetConfidenceString},
        {ColumnModulation, GetModulationString},
        {ColumnPrimaryModulation, GetPrimModString},
        {ColumnToneCount, GetToneCountString},
        {ColumnTransmissionSystem, GetTransmissionSystemString},
        {ColumnBaudRate, GetBaudString},
        {ColumnShift, GetShiftString},
        {ColumnBlockLength, GetBlockString},
        {ColumnCycleTime, GetCycleString},
        {ColumnChannels, GetChannelsString},
        {ColumnDecoder, GetDecoderString},
        {ColumnAzimuth, GetAzimuthString},
        {ColumnQuality, GetDFQualityString},
        {ColumnLocation, GetLocationString},
    };
    for (const auto &finding : kFindings)
        if (finding.column == column)
            return finding.text(item).left(length);
    return DetectionConventionalAdapter::GetText4Column(column, item).left(length);
}

QIcon ExtendedDetConAdapter::GetIcon4Column(int column, const Item &item)
{
    return DetectionConventionalAdapter::GetIcon4Column(column, item);
}

} // namespace values
