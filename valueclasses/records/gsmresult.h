#pragma once

#include "valueclasses/records/record.h"

#include <vector>

namespace values {

/// A GSM carrier that was found.
struct GSMResult {
    int arfcn = 0; ///< absolute radio-frequency channel number
    int bsic = 0;  ///< base station identity code, 0 to 63
    int level = 0; ///< 1/10 dBµV

    bool operator==(const GSMResult &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.arfcn, record.bsic, record.level);
    }
};

class SPECTREE_EXPORT GSMResultFormat {
public:
    static QString GetString(const GSMResult &record);
    static GSMResult GetValue(const QString &text);
};

/// A GSM base station with its traffic channels.
class SPECTREE_EXPORT BaseStation {
public:
    int arfcn = 0;  ///< channel number of its broadcast carrier
    int bsic = 0;   ///< base station identity code, 0 to 63
    int cellId = 0; ///< cell identity, 0 to 65535

    /// Appends the channel number of a traffic channel.
    void AddTCH(int channel) { m_trafficChannels.push_back(channel); }
    const std::vector<int> &GetTCH() const { return m_trafficChannels; }

    bool operator==(const BaseStation &) const = default;
    template <typename Record>
    static auto Fields(Record &record)
    {
        return std::tie(record.arfcn, record.bsic, record.cellId, record.m_trafficChannels);
    }

private:
    std::vector<int> m_trafficChannels;
};

class SPECTREE_EXPORT BaseStationFormat {
public:
    static QString GetString(const BaseStation &record);
    static BaseStation GetValue(const QString &text);
};

} // namespace values

SPECTREE_DECLARE_RECORD(values::GSMResult, values::GSMResultFormat)
SPECTREE_DECLARE_RECORD(values::BaseStation, values::BaseStationFormat)
