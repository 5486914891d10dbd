#pragma once

#include "memmap/logvtdata.h"
#include "valueclasses/records/bearingresult.h"

namespace values {

/// Logs bearings as lines of type "DF": longitude, latitude, frequency in Hz, azimuth in degrees,
/// bandwidth, offset, demodulation, and the count of measurements twice, the first one empty for 0.
///
/// Without a bearing value it sends nothing. The setters answer false, and keep the path for the
/// next connect, when there is no value of the right kind; SetBearingResult_ValuePath keeps what it
/// had. Triggers are added and enabled as in LogVTData; they write after connect only.
class SPECTREE_EXPORT LogDF : public LogVTData {
public:
    LogDF();
    ~LogDF() override;

    bool SetLongitude_ValuePath(const QString &path);
    bool SetLatitude_ValuePath(const QString &path);
    bool SetDemodulation_ValuePath(const QString &path); ///< a selection
    bool SetBandwidth_ValuePath(const QString &path);
    bool SetOffset_ValuePath(const QString &path);
    bool SetBearingResult_ValuePath(const QString &path);

    bool connect() override;
    void disconnect() override;
    void toLogger() override;
    void Update(Observable *subject, TChangeCode code) override;

private:
    void releaseBearing();

    QString m_bearingPath; // empty: none was set, or it is gone for good
    Value<BearingResult> *m_bearing = nullptr;
};

} // namespace values
