#pragma once

#include "memmap/logvtdata.h"

namespace values {

/// Logs frequency, level, bandwidth, offset, demodulation and antenna of a receiver as lines of
/// type "FADOBL", separated by "@".
///
/// The setters answer false, and keep the path for the next connect, when there is no value of the
/// right kind. Triggers are added and enabled as in LogVTData; they write after connect only.
class SPECTREE_EXPORT LogFADOBL : public LogVTData {
public:
    LogFADOBL();

    bool SetFrequency_ValuePath(const QString &path);
    bool SetLevel_ValuePath(const QString &path);
    bool SetBandwidth_ValuePath(const QString &path);
    bool SetOffset_ValuePath(const QString &path);
    bool SetDemodulation_ValuePath(const QString &path); ///< a selection, as the antenna
    bool SetAntenna_ValuePath(const QString &path);
};

} // namespace values
