#pragma once

#include "platform/axis/axisdefinition.h"
#include "platform/base/instancecounter.h"
#include "platform/base/types.h"
#include "scanbuffer/compressiondetails.h"
#include "scanbuffer/compressionhandler.h"
#include "scanbuffer/idatasourceadapter.h"
#include "scanbuffer/scanbuffersizemanagerclient.h"
#include "scanbuffer/window/windowlevels.h"
#include "valueclasses/channels/channelrangedefinition.h"

#include <QElapsedTimer>
#include <QTimer>

#include <exception>
#include <memory>
#include <set>
#include <vector>

namespace sbs {

class ScanBufferQObject;
class WindowInbox;

/// What the windows of all sample types share: identity, timers, settings and their signals.
///
/// A window serves one display window of a client. It lives on a worker thread of its own, where
/// its timers, its adapters and every operation run that isn't marked otherwise. docs/window.md
/// tells its threads and its passes.
class SPECTREE_EXPORT WindowRelatedQObject : public ScanBufferSizeManagerClient,
                                             private Kelm::Counted<WindowRelatedQObject> {
    Q_OBJECT

public:
    static constexpr const char *kInstanceName = "sbs::WindowRelated";

    ~WindowRelatedQObject() override;

    /// The identity of the window. Any thread.
    const QString &WinGUID() const { return m_winGUID; }
    /// Takes over the news of \a buffer, on whatever thread it tells them, until the window goes.
    /// At most one note about data waits for the window at any time. Any thread.
    void listenTo(ScanBufferQObject *buffer);

    /// Tells that the adapter goes.
    void unregisterAdapter(const QByteArray &identity) override;

    /// Builds what depends on channels, axis and compression anew; nothing without channels.
    virtual void InitBuffer() = 0;
    /// Whether the threshold hides anything.
    virtual bool GetThresholdActive() const { return m_levels.GetThresholdActive(); }
    /// Asks for another part of the x-axis and another number of pixels. An equal range changes
    /// nothing; one that makes no axis is traced and left out.
    virtual void SetXRange(const AxisData &range) = 0;
    /// Interval of the read timer in milliseconds.
    virtual int GetProcessSpeed() const = 0;
    /// A window that isn't visible, or is minimised, reads nothing.
    virtual void SetWindowVisible(bool visible) = 0;
    virtual bool GetWindowVisible() const = 0;
    virtual void SetWindowMinimized(bool minimized) = 0;
    virtual bool GetWindowMinimized() const = 0;
    /// Folds \a count stored scans, from the oldest one on, and sends them to the waterfall in
    /// batches. \a x1, \a x2, \a time and \a second have no effect.
    virtual void reload(double x1, double x2, KRTimeStamp time, std::int32_t count,
                        std::int32_t second) = 0;
    /// What the buffer tells of.
    virtual void NewData() = 0;
    virtual void NewChannelRangeDefinition() = 0;
    virtual void NewKFactor() = 0;
    /// One pass: reads what is new in the buffer and lets the adapters send it.
    virtual void readNewData() = 0;
    /// The slower passes of the markers, and of the statistics.
    virtual void processXRuler() = 0;
    virtual void processSystemInfo() = 0;
    virtual void SetUseAxisCalculatorForWidget(bool use) = 0;
    virtual bool GetUseAxisCalculatorForWidget() const = 0;
    /// Whether the threshold counts for \a dimension: dimension 0, the level, has its own switch.
    virtual bool GetThresholdActive(short dimension) const
    {
        return m_levels.GetThresholdActive(dimension);
    }
    virtual bool GetThresholdActiveForLevel() const
    {
        return m_levels.GetThresholdActiveForLevel();
    }

    /// The axis that the lines are folded to.
    virtual const axisDefinition &GetXAxis() const = 0;
    virtual const values::ChannelRangeDefinition &GetChannelRangeDefinition() const = 0;

    /// Bytes that an adapter hands to the transport.
    void AddTraffic(double bytes) { m_traffic += bytes; }
    /// Bytes per second of scan time since the last call; 0 while there is no time to divide by.
    double GetAndResetTraffic();
    /// While measuring, the window holds what it shows.
    void SetMeasureMode(bool measure);
    bool GetMeasureMode() const { return m_measureMode; }
    /// From now on the window reads no new data, for good.
    void SetStatic() { m_static = true; }
    bool IsStatic() const { return m_static; }
    /// Rises with each change of visibility or measure mode, and with each InitBuffer().
    std::uint32_t GetWindowSettingsVersion() const { return m_settingsVersion; }

    WindowLevels::Range GetYRange(short dimension) const { return m_levels.GetYRange(dimension); }
    /// Emits signalYRangeChanged unless the range is the same.
    void SetYRange(double low, double high, short dimension);
    /// The next pass that has data fits the y range of \a dimension to them.
    void OptimizeMinMax(short dimension);
    void SetThreshold(double threshold) { m_levels.SetThreshold(threshold); }
    void SetThresholdActive(bool active) { m_levels.SetThresholdActive(active); }
    void SetThresholdActiveForLevel(bool active) { m_levels.SetThresholdActiveForLevel(active); }
    /// The same for all pixels.
    double GetThreshold(int pixel) const { return m_levels.GetThreshold(pixel); }
    /// One entry a pixel, all the same.
    const std::vector<double> &GetThresholdLine() const { return m_levels.GetThresholdLine(); }
    double GetRefLine(int pixel) const { return m_levels.GetRefLine(pixel); }
    bool filteredByThreshold(double value, int pixel, bool useReference) const
    {
        return m_levels.filteredByThreshold(value, pixel, useReference);
    }
    /// Whether the adapters show levels relative to the reference line.
    void ApplyRefLine(bool apply) { m_applyRefLine = apply; }
    bool GetApplyRefLine() const { return m_applyRefLine; }

    /// The steps of the window's compression; those of no compression before its thread runs.
    short GetDataResolution() const;
    short GetSendAzimuthPackageEvery() const;
    short GetWaterfallColorResolutionSteps() const;
    short GetWaterfallScansPerLine() const;

public Q_SLOTS:
    /// Connected to the start of the window's thread: makes what has to live there.
    void slotWorkerThreadStarted();
    void slotDataChanged() { NewData(); }
    void slotChannelRangeDefinitionChanged() { NewChannelRangeDefinition(); }
    void slotKFactorChanged() { NewKFactor(); }
    void slotResetCompression();
    void slotSetDefaultCompression(std::vector<int> settings);
    void slotCompressionChanged(bool raised);
    /// The scan rate of the buffer, one call a scan.
    void slotScansPerSecond(double scansPerSecond);
    /// Takes over the intervals of the compression and runs each pass once.
    void slotTimerChanged();
    void slotSetWindowVisible(bool visible) { SetWindowVisible(visible); }
    void slotSetXRange(AxisData range) { SetXRange(range); }
    /// The time of the newest scan. Any thread.
    void slotTimeStampNow(KRTimeStamp time);
    void slotReload(double x1, double x2, KRTimeStamp time, KRTimeStamp unused, std::int32_t count,
                    std::int32_t second);

Q_SIGNALS:
    void signalAdapterCreated(sbs::IDataSourceAdapter *adapter);
    void signalAdapterDeleted(QString adapter);
    /// The window has lost its client and wants to go.
    void signalRemoveWindowData(QString winGUID);
    /// The compression changed; \a raised is true when data were lost.
    void signalSendSettings(sbs::CompressionDetails details, bool raised);
    /// The y range of \a dimension was fitted to the data.
    void signalStartStopRecalculated(double start, double stop, short dimension);
    void signalVisibilityChanged(bool visible);
    void signalYRangeChanged(double low, double high, short dimension);
    void signalYRangeRecalculated(short dimension);
    /// The mean scan rate since the last pass; on the window's thread, not for every scan.
    void signalScansPerSecond(double scansPerSecond);

protected:
    WindowRelatedQObject(const QString &winGUID, ScanBufferSizeManager *sizeManager);

    void customEvent(QEvent *event) override;

    /// Null before the window's thread runs.
    const CompressionDetails *details() const;
    /// Starts them at the intervals of the compression, and the ring with them.
    void startTimers();
    void setIntervals();
    void stopTimers();
    /// Lets the next turn of the event loop run a pass; the timers are served before it.
    void postPass();
    /// Ends the news of the buffer; the first act of the last class' destructor.
    void stopListening();
    void raiseSettingsVersion() { ++m_settingsVersion; }
    /// The rates that came since the last call go to compression and statistics.
    void takeScanRates();
    /// The adapter that tells the client of the compression gets its tick.
    virtual void processCompression() = 0;
    /// Remembers an adapter of this window, until it is unregistered.
    void noteAdapter(const QByteArray &identity) { m_adapterIds.insert(identity); }
    /// Tells of the adapters that went with the window.
    void tellAdaptersDeleted();
    /// From now on signal_LastAccessedID() calls \a manager instead of posting to it, so that a
    /// pass takes no memory. \pre the manager lives as long as passes are run
    void reportDirectlyTo(const ScanBufferSizeManager &manager);

    /// Runs \a work; an exception must not reach the event loop, which would end the process.
    /// Returns whether it ran to its end.
    template <typename Work>
    bool guarded(const char *what, Work work)
    {
        try {
            work();
            return true;
        } catch (const std::exception &error) {
            traceFailure(what, error);
            return false;
        }
    }

    bool m_static = false;
    bool m_measureMode = false;
    bool m_needsInitialization = true;
    int m_pendingReinitialization = 1; // not 0: the adapters have to be told the axis
    short m_requestedPixels = 1000;    // those of the axis, as long as nobody asks for another
    bool m_applyRefLine = false;
    std::vector<bool> m_optimizeY{false}; // one bit a dimension
    WindowLevels m_levels;

private:
    void onReadTimer();
    bool isReadTimerDue() const;
    void compressionSettingsChanged(bool raised);
    /// One line a second at most, with the number of failures since the last.
    void traceFailure(const char *what, const std::exception &error) noexcept;

    const QString m_winGUID;
    const std::shared_ptr<WindowInbox> m_inbox;
    std::vector<QMetaObject::Connection> m_connections; // to the buffer
    QTimer m_readTimer, m_xRulerTimer, m_systemInfoTimer;
    std::uint32_t m_settingsVersion = 0;
    std::unique_ptr<CompressionHandler> m_compression; // lives on the window's thread
    double m_traffic = 0.0;
    KRTimeStamp m_previousTrafficTime = 0;
    std::set<QByteArray> m_adapterIds;
    QElapsedTimer m_sinceFailureTrace;
    std::uint64_t m_failures = 0; // that were not traced yet
};

} // namespace sbs
