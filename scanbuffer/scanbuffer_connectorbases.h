#pragma once

#include "platform/base/export.h"
#include "platform/base/types.h"
#include "scanbuffer/idatasourceadapter.h"

#include <QObject>

#include <vector>

namespace sbs {

/// Slots of the waterfall adapters of all sample types.
class SPECTREE_EXPORT ScanBufferAdapterBase_Waterfall : public QObject {
    Q_OBJECT

public:
    ~ScanBufferAdapterBase_Waterfall() override;
    /// The y range of \a dimension was fitted to the data: tells the display.
    virtual void StartStopRecalculated(double start, double stop, short dimension) = 0;
    /// Turns lines of the window into rows and sends them. Lists come newest first.
    virtual void process(const std::vector<int> &lines, const std::vector<KRTimeStamp> &times,
                         int pixels, int lineCount, bool relative, bool useForCurve,
                         int packetId) = 0;

public Q_SLOTS:
    void slotStartStopRecalculated(double start, double stop, short dimension)
    {
        StartStopRecalculated(start, stop, dimension);
    }
};

/// Slots of the y range adapters of all sample types.
class SPECTREE_EXPORT ScanBufferAdapterBase_YRange : public QObject {
    Q_OBJECT

public:
    ~ScanBufferAdapterBase_YRange() override;
    virtual void StartStopRecalculated(double start, double stop, short dimension) = 0;

public Q_SLOTS:
    void slotStartStopRecalculated(double start, double stop, short dimension)
    {
        StartStopRecalculated(start, stop, dimension);
    }
};

/// Slots of the statistics adapters of all sample types.
class SPECTREE_EXPORT ScanBufferAdapterBase_Statistics : public QObject,
                                                         public IScansPerSecondReceiver {
    Q_OBJECT

public:
    ~ScanBufferAdapterBase_Statistics() override;
    void SetScansPerSecond(double scansPerSecond) override { m_scansPerSecond = scansPerSecond; }
    /// The scan rate that was told last, 0 before.
    double GetScansPerSecond() const { return m_scansPerSecond; }

public Q_SLOTS:
    void slotScansPerSecond(double scansPerSecond) { SetScansPerSecond(scansPerSecond); }

private:
    double m_scansPerSecond = 0;
};

} // namespace sbs
