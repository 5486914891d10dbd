#pragma once

#include "valueclasses/records/record.h"

#include <limits>

namespace values {

/// An emission found in a spectrum: the flat record of detection lists.
///
/// Its image is 48 bytes; the name stays behind, and equality doesn't look at it.
class SPECTREE_EXPORT DetectionConventional {
public:
    static constexpr short kNoLevel = -9999;

    int GetID() const { return m_id; }
    void SetID(int id) { m_id = id; }
    /// dBµV, or kNoLevel.
    short GetLevel() const { return m_level; }
    void SetLevel(short level) { m_level = level; }
    /// Both in Hz; the lowest double is none.
    double GetFrequency() const { return m_frequency; }
    void SetFrequency(double frequency) { m_frequency = frequency; }
    double GetBandwidth() const { return m_bandwidth; }
    void SetBandwidth(double bandwidth) { m_bandwidth = bandwidth; }
    /// Whether it is on the air.
    bool GetActive() const { return m_active; }
    void SetActive(bool active) { m_active = active; }
    /// The number of the signal processor that found it.
    unsigned char GetIpc() const { return m_ipc; }
    void SetIpc(unsigned char ipc) { m_ipc = ipc; }
    /// All three in seconds since 1970, UTC.
    double GetStartTime() const { return m_startTime; }
    void SetStartTime(double time) { m_startTime = time; }
    double GetStopTime() const { return m_stopTime; }
    void SetStopTime(double time) { m_stopTime = time; }
    double GetStatusChangedTime() const { return m_statusChangedTime; }
    void SetStatusChangedTime(double time) { m_statusChangedTime = time; }
    const QString &GetName() const { return m_name; }
    void SetName(const QString &name) { m_name = name; }

    /// The 48 bytes.
    std::string ToStream() const;
    static DetectionConventional FromStream(const char **cursor);

    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.m_id, record.m_level, record.m_frequency, record.m_bandwidth,
                        record.m_active, record.m_ipc, record.m_startTime, record.m_stopTime,
                        record.m_statusChangedTime);
    }
    bool operator==(const DetectionConventional &other) const
    {
        return Fields(*this) == Fields(other);
    }

private:
    static constexpr double kNone = std::numeric_limits<double>::lowest();

    int m_id = 0;
    short m_level = kNoLevel;
    double m_frequency = kNone;
    double m_bandwidth = kNone;
    bool m_active = false;
    unsigned char m_ipc = 0;
    double m_startTime = 0.0;
    double m_stopTime = 0.0;
    double m_statusChangedTime = 0.0;
    QString m_name;
};

class SPECTREE_EXPORT FormatDetectionConventional {
public:
    static QString GetString(const DetectionConventional &record);
    static DetectionConventional GetValue(const QString &text);
    /// The image and ";", as an item of a map.
    static std::string toStandardString(const DetectionConventional &record);
    /// False when no ";" follows the image.
    static bool fromCharStream(const char **cursor, DetectionConventional &record);
};

} // namespace values

SPECTREE_DECLARE_RECORD(values::DetectionConventional, values::FormatDetectionConventional)
