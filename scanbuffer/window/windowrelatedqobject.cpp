#include "scanbuffer/window/windowrelatedqobject.h"

#include "platform/base/errorhandler.h"
#include "platform/base/sync.h"
#include "platform/base/tracelimit.h"
#include "platform/base/types.h"
#include "scanbuffer/idatasourceadapter.h"
#include "scanbuffer/scanbufferqobject.h"
#include "scanbuffer/scanbuffersizemanager.h"
#include "scanbuffer/window/windowinbox.h"

#include <algorithm>

namespace sbs {

namespace {

constexpr short kMaximumDimension = 63;

/// Arguments of signals that cross from thread to thread.
void registerSignalTypes()
{
    static const bool registered = [] {
        qRegisterMetaType<KRTimeStamp>("KRTimeStamp");
        qRegisterMetaType<std::uint64_t>("std::uint64_t");
        qRegisterMetaType<std::int32_t>("std::int32_t");
        qRegisterMetaType<std::vector<int>>("std::vector<int>");
        qRegisterMetaType<CompressionDetails>("sbs::CompressionDetails");
        qRegisterMetaType<IDataSourceAdapter *>("sbs::IDataSourceAdapter*");
        qRegisterMetaType<AxisData>("AxisData");
        return true;
    }();
    Q_UNUSED(registered);
}

} // namespace

WindowRelatedQObject::WindowRelatedQObject(const QString &winGUID,
                                           ScanBufferSizeManager *sizeManager)
    : ScanBufferSizeManagerClient(sizeManager), m_winGUID(winGUID),
      m_inbox(std::make_shared<WindowInbox>(this))
      // Children of the window, since they move to its thread with it.
      ,
      m_readTimer(this), m_xRulerTimer(this), m_systemInfoTimer(this)
{
    registerSignalTypes();
    connect(&m_readTimer, &QTimer::timeout, this, &WindowRelatedQObject::onReadTimer);
    connect(&m_xRulerTimer, &QTimer::timeout, this,
            [this] { guarded("A pass for markers", [this] { processXRuler(); }); });
    connect(&m_systemInfoTimer, &QTimer::timeout, this,
            [this] { guarded("A pass for statistics", [this] { processSystemInfo(); }); });
}

WindowRelatedQObject::~WindowRelatedQObject() { stopListening(); }

/// The feeding thread may be inside a direct call while the window goes, so what it calls belongs
/// to the inbox alone.
void WindowRelatedQObject::listenTo(ScanBufferQObject *buffer)
{
    const std::shared_ptr<WindowInbox> inbox = m_inbox;
    const Kelm::QtGate gate;
    m_connections = {
        connect(buffer, &ScanBufferQObject::signalSpectralDataAdded,
                [inbox] { inbox->postNote(); }),
        connect(buffer, &ScanBufferQObject::signalTimeStampAdded,
                [inbox](KRTimeStamp time) { inbox->setLatestTime(time); }),
        connect(buffer, &ScanBufferQObject::signalScansPerSecond,
                [inbox](double rate) { inbox->addScanRate(rate); }),
        connect(buffer, &ScanBufferQObject::signalChannelRangeDefinitionChanged, this,
                &WindowRelatedQObject::slotChannelRangeDefinitionChanged, Qt::QueuedConnection),
        connect(buffer, &ScanBufferQObject::signalKFactorChanged, this,
                &WindowRelatedQObject::slotKFactorChanged, Qt::QueuedConnection),
    };
}

void WindowRelatedQObject::stopListening()
{
    const Kelm::QtGate gate;
    for (const QMetaObject::Connection &connection : m_connections)
        disconnect(connection);
    m_connections.clear();
    m_inbox->close();
}

void WindowRelatedQObject::customEvent(QEvent *)
{
    // Nothing else posts events of its own to a window, so this one is a note.
    m_inbox->takeNote();
    // The event loop delivers notes as long as there are any: with a pass for each, a fast feeder
    // would keep the timers from ever being served. The one that is due runs the pass instead.
    if (!isReadTimerDue())
        slotDataChanged();
}

bool WindowRelatedQObject::isReadTimerDue() const
{
    return m_readTimer.isActive() && m_readTimer.remainingTime() == 0;
}

void WindowRelatedQObject::postPass() { m_inbox->postNote(); }

void WindowRelatedQObject::slotTimeStampNow(KRTimeStamp time) { m_inbox->setLatestTime(time); }

void WindowRelatedQObject::takeScanRates()
{
    const WindowInbox::ScanRates rates = m_inbox->takeScanRates();
    if (rates.count == 0)
        return;
    // The compression takes means of 101: more than two of them say nothing new.
    constexpr std::uint64_t kMostSamples = 202;
    const double mean = rates.sum / static_cast<double>(rates.count);
    for (std::uint64_t scan = 0; scan < std::min(rates.count, kMostSamples); ++scan)
        slotScansPerSecond(mean);
    Q_EMIT signalScansPerSecond(mean);
}

void WindowRelatedQObject::slotScansPerSecond(double scansPerSecond)
{
    if (m_compression)
        m_compression->details().slotCurrentScanPerSecond(scansPerSecond);
}

void WindowRelatedQObject::slotWorkerThreadStarted()
{
    Kelm::syncAcquire(this);
    guarded("The start", [this] {
        m_compression = std::make_unique<CompressionHandler>();
        connect(&m_compression->details(), &CompressionDetails::signalTimeSlotsChanged, this,
                &WindowRelatedQObject::slotTimerChanged);
        connect(m_compression.get(), &CompressionHandler::signalCompressionChanged, this,
                &WindowRelatedQObject::slotCompressionChanged);
        startTimers();
    });
}

void WindowRelatedQObject::startTimers()
{
    setIntervals();
    m_systemInfoTimer.start();
    m_readTimer.start();
    m_xRulerTimer.start();
    if (!guarded("Building the ring", [this] { InitBuffer(); }))
        m_needsInitialization = true; // the next pass tries again
}

void WindowRelatedQObject::setIntervals()
{
    if (!m_compression)
        return;
    m_systemInfoTimer.setInterval(details()->GetT1000Speed());
    m_readTimer.setInterval(GetProcessSpeed());
    m_xRulerTimer.setInterval(details()->GetT200Speed());
}

void WindowRelatedQObject::stopTimers()
{
    m_systemInfoTimer.stop();
    m_readTimer.stop();
    m_xRulerTimer.stop();
}

void WindowRelatedQObject::onReadTimer()
{
    readNewData();
    guarded("A pass for the compression", [this] { processCompression(); });
}

void WindowRelatedQObject::slotTimerChanged()
{
    setIntervals();
    readNewData();
    guarded("A pass for markers and statistics", [this] {
        processXRuler();
        processSystemInfo();
    });
}

void WindowRelatedQObject::traceFailure(const char *what, const std::exception &error) noexcept
{
    constexpr qint64 kMillisecondsBetween = 1000;
    ++m_failures;
    if (m_sinceFailureTrace.isValid() && m_sinceFailureTrace.elapsed() < kMillisecondsBetween)
        return;
    m_sinceFailureTrace.start();
    try {
        SPECTREE_TRACE(TraceWarnings,
                       QStringLiteral("%1 of window %2 failed: %3 (failures since the last note: "
                                      "%4)")
                           .arg(QString::fromUtf8(what), m_winGUID, QString::fromUtf8(error.what()))
                           .arg(m_failures));
    } catch (const std::exception &) {
        return; // no memory for a note either: counted in the next one
    }
    m_failures = 0;
}

const CompressionDetails *WindowRelatedQObject::details() const
{
    return m_compression ? &m_compression->details() : nullptr;
}

short WindowRelatedQObject::GetDataResolution() const
{
    return m_compression ? details()->GetDataResolution() : 1;
}

short WindowRelatedQObject::GetSendAzimuthPackageEvery() const
{
    return m_compression ? details()->GetSendAzimuthPackageEvery() : 1;
}

short WindowRelatedQObject::GetWaterfallColorResolutionSteps() const
{
    return m_compression ? details()->GetWaterfallColorResolutionSteps() : 255;
}

short WindowRelatedQObject::GetWaterfallScansPerLine() const
{
    return m_compression ? details()->GetWaterfallScansPerLine() : 1;
}

void WindowRelatedQObject::slotResetCompression()
{
    if (m_compression)
        m_compression->details().reset();
    compressionSettingsChanged(false);
}

void WindowRelatedQObject::slotSetDefaultCompression(std::vector<int> settings)
{
    try {
        if (m_compression)
            m_compression->details().Set(settings, true);
    } catch (const std::exception &error) {
        SPECTREE_TRACE_LIMITED(
            TraceWarnings, QStringLiteral("Compression settings of window %1 left as they are: %2")
                               .arg(m_winGUID, QString::fromUtf8(error.what())));
        return;
    }
    compressionSettingsChanged(false);
}

void WindowRelatedQObject::slotCompressionChanged(bool raised)
{
    compressionSettingsChanged(raised);
}

void WindowRelatedQObject::compressionSettingsChanged(bool raised)
{
    m_pendingReinitialization = 2;
    m_needsInitialization = true;
    if (m_compression)
        guarded("Telling the compression", [&] { Q_EMIT signalSendSettings(*details(), raised); });
}

void WindowRelatedQObject::slotReload(double x1, double x2, KRTimeStamp time,
                                      KRTimeStamp /*unused*/, std::int32_t count,
                                      std::int32_t second)
{
    reload(x1, x2, time, count, second);
}

void WindowRelatedQObject::unregisterAdapter(const QByteArray &identity)
{
    m_adapterIds.erase(identity);
    Q_EMIT signalAdapterDeleted(QString::fromUtf8(identity));
}

void WindowRelatedQObject::tellAdaptersDeleted()
{
    for (const QByteArray &identity : std::exchange(m_adapterIds, {}))
        Q_EMIT signalAdapterDeleted(QString::fromUtf8(identity));
}

void WindowRelatedQObject::reportDirectlyTo(const ScanBufferSizeManager &manager)
{
    using Client = ScanBufferSizeManagerClient;
    using Manager = ScanBufferSizeManager;
    const Kelm::QtGate gate;
    // Both, so that a reset still comes before the access that it belongs to.
    disconnect(this, &Client::signalLastAccessedID, &manager, &Manager::slotLastAccessedID);
    disconnect(this, &Client::signalResetHistory, &manager, &Manager::slotResetHistory);
    connect(this, &Client::signalLastAccessedID, &manager, &Manager::slotLastAccessedID,
            Qt::DirectConnection);
    connect(this, &Client::signalResetHistory, &manager, &Manager::slotResetHistory,
            Qt::DirectConnection);
}

void WindowRelatedQObject::SetMeasureMode(bool measure)
{
    if (m_measureMode == measure)
        return;
    m_measureMode = measure;
    stopTimers();
    if (!measure)
        startTimers();
    raiseSettingsVersion();
}

double WindowRelatedQObject::GetAndResetTraffic()
{
    const KRTimeStamp latest = m_inbox->latestTime();
    if (latest == 0 || latest == m_previousTrafficTime)
        return 0.0;
    const KRTimeStamp previous = std::exchange(m_previousTrafficTime, latest);
    const double bytes = std::exchange(m_traffic, 0.0);
    return previous == 0 || latest < previous ? 0.0 : bytes / (double(latest - previous) / 1e6);
}

void WindowRelatedQObject::SetYRange(double low, double high, short dimension)
{
    if (m_levels.SetYRange({low, high}, dimension))
        Q_EMIT signalYRangeChanged(low, high, dimension);
}

void WindowRelatedQObject::OptimizeMinMax(short dimension)
{
    if (dimension < 0 || dimension > kMaximumDimension)
        return;
    const auto bit = static_cast<std::size_t>(dimension);
    if (m_optimizeY.size() <= bit)
        m_optimizeY.resize(bit + 1, false);
    m_optimizeY[bit] = true;
    Q_EMIT signalYRangeRecalculated(dimension);
}

} // namespace sbs
