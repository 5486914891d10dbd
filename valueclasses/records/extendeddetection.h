#pragma once

#include "valueclasses/detection.h"

namespace values {

/// A detection with the findings of direction finder and classifier, kept as they arrive.
///
/// The four direction texts hold a number or, as their whole text, a state: "-1000" no result,
/// "1000" searching, "1001" invalid, "1002" timed out.
class SPECTREE_EXPORT ExtendedDetectionConventional : public DetectionConventional {
public:
    ExtendedDetectionConventional() = default;
    /// The detection, without findings.
    explicit ExtendedDetectionConventional(const DetectionConventional &detection);
    /// Forgets the findings.
    void init();

    /// Degrees.
    const std::string &GetAzimuth() const { return m_azimuth; }
    void SetAzimuth(const std::string &text) { m_azimuth = text; }
    const std::string &GetDFLongitude() const { return m_longitude; }
    void SetDFLongitude(const std::string &text) { m_longitude = text; }
    const std::string &GetDFLatitude() const { return m_latitude; }
    void SetDFLatitude(const std::string &text) { m_latitude = text; }
    /// Percent.
    const std::string &GetDFQuality() const { return m_quality; }
    void SetDFQuality(const std::string &text) { m_quality = text; }

    /// Takes a report of the classifier: 13 or more pieces with ";" between them. An empty report
    /// clears what the classifier found. \throws KRException for a report with fewer pieces
    void SetClassifierResultString(const QString &report);

    // Numbers of the classifier: -1 is none.
    double GetClassifierFrequency() const { return m_classifierFrequency; } ///< Hz
    void SetClassifierFrequency(double frequency) { m_classifierFrequency = frequency; }
    double GetClassifierBandwidth() const { return m_classifierBandwidth; } ///< Hz
    void SetClassifierBandwidth(double bandwidth) { m_classifierBandwidth = bandwidth; }
    short GetClassifierConfidence() const { return m_confidence; } ///< percent, 0 is none
    void SetClassifierConfidence(short confidence) { m_confidence = confidence; }
    double GetClassifierBaudrate() const { return m_baudrate; } ///< Bd
    void SetClassifierBaudrate(double baudrate) { m_baudrate = baudrate; }
    double GetClassifierShift() const { return m_shift; } ///< Hz
    void SetClassifierShift(double shift) { m_shift = shift; }
    double GetClassifierBlocklength() const { return m_blocklength; } ///< s
    void SetClassifierBlocklength(double length) { m_blocklength = length; }
    /// Seconds; from 30 MHz on displays take it for a number of tones.
    double GetClassifierCycletime() const { return m_cycletime; }
    void SetClassifierCycletime(double time) { m_cycletime = time; }
    const std::string &GetClassifierDemodulator() const { return m_demodulator; }
    void SetClassifierDemodulator(const std::string &text) { m_demodulator = text; }
    const std::string &GetClassifierTransmissionType() const { return m_transmissionType; }
    void SetClassifierTransmissionType(const std::string &text) { m_transmissionType = text; }
    const std::string &GetClassifierChannels() const { return m_channels; }
    void SetClassifierChannels(const std::string &text) { m_channels = text; }
    const std::string &GetClassifierPrimMod() const { return m_primaryModulation; }
    void SetClassifierPrimMod(const std::string &text) { m_primaryModulation = text; }
    const std::string &GetClassifierDecoder() const { return m_decoder; }
    void SetClassifierDecoder(const std::string &text) { m_decoder = text; }

    /// The image of the detection and the findings: 134 bytes and those of the nine texts.
    std::string ToStream() const;
    static ExtendedDetectionConventional FromStream(const char **cursor);

    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tuple_cat(
            DetectionConventional::Fields(record),
            std::tie(record.m_azimuth, record.m_longitude, record.m_latitude, record.m_quality,
                     record.m_classifierFrequency, record.m_classifierBandwidth,
                     record.m_confidence, record.m_baudrate, record.m_shift, record.m_blocklength,
                     record.m_cycletime, record.m_demodulator, record.m_transmissionType,
                     record.m_channels, record.m_primaryModulation, record.m_decoder));
    }
    bool operator==(const ExtendedDetectionConventional &other) const
    {
        return Fields(*this) == Fields(other);
    }

private:
    static constexpr const char *kNoDirection = "-1000";

    void clearClassifier();

    std::string m_azimuth = kNoDirection;
    std::string m_longitude = kNoDirection;
    std::string m_latitude = kNoDirection;
    std::string m_quality = kNoDirection;
    double m_classifierFrequency = -1.0;
    double m_classifierBandwidth = -1.0;
    short m_confidence = 0;
    double m_baudrate = -1.0;
    double m_shift = -1.0;
    double m_blocklength = -1.0;
    double m_cycletime = -1.0;
    std::string m_demodulator;
    std::string m_transmissionType;
    std::string m_channels;
    std::string m_primaryModulation;
    std::string m_decoder;
};

/// The text of the detection and, behind further "#", the findings in the order of the image.
class SPECTREE_EXPORT FormatExtendedDetectionConventional {
public:
    static QString GetString(const ExtendedDetectionConventional &record);
    /// \throws KRException; a "#" in a text is one, too, as a field too many
    static ExtendedDetectionConventional GetValue(const QString &text);
    /// The image and ";", as an item of a map.
    static std::string toStandardString(const ExtendedDetectionConventional &record);
    /// False when no ";" follows the image.
    static bool fromCharStream(const char **cursor, ExtendedDetectionConventional &record);
};

/// The frequency that a text tells, in Hz: "5 kHz" is 5000. The unit is kHz, MHz or Hz, in this
/// case; 0 for a text that isn't a number. The first of them that stands in the text counts.
SPECTREE_EXPORT double getValueFromFreqString(const QString &text);

} // namespace values

SPECTREE_DECLARE_RECORD(values::ExtendedDetectionConventional,
                        values::FormatExtendedDetectionConventional)
