#pragma once

#include "platform/base/export.h"
#include "platform/base/types.h"

#include <QObject>

namespace sbs {

/// The signals of a scan buffer. All go out on the thread that feeds it, after its lock was
/// released: what they tell of can be read, unless the next scan has come in the meantime.
class SPECTREE_EXPORT ScanBufferQObject : public QObject {
    Q_OBJECT

public:
    ScanBufferQObject();
    ~ScanBufferQObject() override;

Q_SIGNALS:
    /// Later lines have other channels, or another meaning of the same number of channels.
    void signalChannelRangeDefinitionChanged();
    /// A line was finished.
    void signalEndOfScan();
    /// For those who set a K-factor of this buffer's spectra; the buffer itself never emits it.
    void signalKFactorChanged();
    /// Goes out with each end of scan; 0 while no rate is known.
    void signalScansPerSecond(double scansPerSecond);
    /// Samples were written into the current line.
    void signalSpectralDataAdded();
    /// The current line got its first time stamp, in microseconds; it is readable from now on.
    void signalTimeStampAdded(KRTimeStamp time);
};

} // namespace sbs
