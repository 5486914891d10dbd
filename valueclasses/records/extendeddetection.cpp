#include "valueclasses/records/extendeddetection.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD(values::ExtendedDetectionConventional,
                       values::FormatExtendedDetectionConventional,
                       .name = "ExtendedDetectionConventional")

namespace values {

namespace {

/// The number in front of a unit; 0 where there is none.
double numberWithout(QString text, const char *unit)
{
    return text.remove(QLatin1String(unit)).toDouble();
}

} // namespace

double getValueFromFreqString(const QString &text)
{
    if (text.contains(QLatin1String("kHz")))
        return numberWithout(text, "kHz") * 1000.0;
    if (text.contains(QLatin1String("MHz")))
        return numberWithout(text, "MHz") * 1000000.0;
    return numberWithout(text, "Hz");
}

ExtendedDetectionConventional::ExtendedDetectionConventional(const DetectionConventional &detection)
    : DetectionConventional(detection)
{
}

void ExtendedDetectionConventional::init()
{
    const DetectionConventional detection = *this;
    *this = ExtendedDetectionConventional(detection);
}

void ExtendedDetectionConventional::clearClassifier()
{
    ExtendedDetectionConventional cleared(*this);
    cleared.init();
    cleared.m_azimuth = m_azimuth;
    cleared.m_longitude = m_longitude;
    cleared.m_latitude = m_latitude;
    cleared.m_quality = m_quality;
    *this = cleared;
}

void ExtendedDetectionConventional::SetClassifierResultString(const QString &report)
{
    if (report.isEmpty())
        return clearClassifier();
    constexpr int kPieceCount = 13;
    constexpr double kLimit = 30000000.0; // short wave reports block lengths, the bands above don't
    const QStringList pieces = report.split(QLatin1Char(';'));
    if (pieces.size() < kPieceCount)
        throw KRException(QStringLiteral("A classifier report has 13 pieces, not %1: \"%2\"")
                              .arg(QString::number(pieces.size()), report.left(200)),
                          __FILE__, "ExtendedDetectionConventional", "SetClassifierResultString",
                          __LINE__);
    m_confidence = QString(pieces[2]).remove(QLatin1String(" %")).toShort();
    m_demodulator = pieces[3].toStdString();
    m_transmissionType = pieces[4].toStdString();
    m_baudrate = numberWithout(pieces[5], "Bd");
    m_shift = getValueFromFreqString(pieces[6]);
    m_classifierFrequency = getValueFromFreqString(pieces[7]);
    m_classifierBandwidth = getValueFromFreqString(pieces[8]);
    if (m_classifierFrequency >= kLimit) {
        m_primaryModulation = pieces[9].toStdString();
        m_cycletime = pieces[10].toDouble();
    } else {
        m_blocklength = numberWithout(pieces[9], " s");
        m_cycletime = numberWithout(pieces[10], " s");
    }
    m_channels = pieces[11].toStdString();
    m_decoder = pieces[12].toStdString();
}

std::string ExtendedDetectionConventional::ToStream() const
{
    constexpr std::size_t kFixedSize = 134;
    std::size_t uSize = kFixedSize;
    for (const std::string *text :
         {&m_azimuth, &m_longitude, &m_latitude, &m_quality, &m_demodulator, &m_transmissionType,
          &m_channels, &m_primaryModulation, &m_decoder})
        uSize += text->size();
    std::string image = Kelm::toStandardString(*this);
    _Q_assert(image.size() == uSize, "p == pBuffer + uSize", "valueclasses/extendeddetection",
              __LINE__);
    return image;
}

ExtendedDetectionConventional ExtendedDetectionConventional::FromStream(const char **cursor)
{
    return Kelm::fromCharStream<ExtendedDetectionConventional>(cursor);
}

std::string
FormatExtendedDetectionConventional::toStandardString(const ExtendedDetectionConventional &record)
{
    return record.ToStream() + ';';
}

bool FormatExtendedDetectionConventional::fromCharStream(const char **cursor,
                                                         ExtendedDetectionConventional &record)
{
    return Record::readItem(cursor, record);
}

} // namespace values
