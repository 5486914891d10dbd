#include "apps/monitor/session.h"

#include "apps/common/keyfiles.h"
#include "apps/monitor/axisticks.h"
#include "platform/base/krexception.h"
#include "platform/transmission/consumerconnector.h"
#include "scanbuffer/mdatatypes.h"

#include <cmath>

namespace monitor {

using apps::Failure;

namespace {

constexpr int kTickMs = 20;
constexpr double kAxisRequestSeconds = 0.2;
constexpr double kProgressSeconds = 5.0;
constexpr std::size_t kPeaks = 200;

QString reasonOf(const KRException &error) { return QString::fromUtf8(error.what()); }

sbs::ConsumerOptions consumerOptions(const Options &options)
{
    try {
        if (options.serverKeyFile.isEmpty())
            return sbs::ConsumerOptions::fromConfiguration();
        sbs::ConsumerOptions result;
        result.serverKey =
            sbs::CurveKeys::parse(apps::readKey(options.serverKeyFile), options.serverKeyFile);
        result.keys = sbs::CurveKeys::fromSecret(apps::readKey(options.clientKeyFile));
        return result;
    } catch (const KRException &error) {
        throw Failure(Failure::Runtime,
                      QStringLiteral("The keys cannot be used: %1").arg(reasonOf(error)));
    }
}

QString seconds(double value) { return QString::number(value, 'g', 4) + QStringLiteral(" s"); }

} // namespace

Session::Session(const Options &options)
    : m_options(options),
      m_group(options.endpoint.toUtf8(), options.windowGuid, consumerOptions(options)),
      m_window(*this, options.fromHz, options.toHz), m_xAxis(m_window), m_waterfall(m_window),
      m_curve(m_window), m_statistics(m_window),
      m_yRange(m_window), m_consumers{&m_xAxis, &m_waterfall, &m_curve, &m_statistics, &m_yRange}
{
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(kTickMs);
    connect(&m_timer, &QTimer::timeout, this, &Session::tick);
}

Session::~Session() = default;

void Session::start()
{
    m_startedAt = m_toldAt = m_newRowAt = monotonicSeconds();
    m_xAxis.onReady([this] {
        if (!m_everReady)
            m_newRowAt = monotonicSeconds();
        if (m_linkLost)
            Q_EMIT progress(QStringLiteral("The server is back."));
        m_everReady = true;
        m_linkLost = false;
    });
    open(m_xAxis);
    m_timer.start();
}

void Session::open(DisplayConsumer &consumer)
{
    try {
        consumer.registerAtGroup(m_group);
    } catch (const KRException &error) {
        throw Failure(
            Failure::Runtime,
            QStringLiteral("Cannot connect to %1: %2").arg(m_options.endpoint, reasonOf(error)));
    }
    sbs::ConsumerConnector *const connector = consumer.connector();
    const auto count = [this](const QByteArray &message) { m_bytes += quint64(message.size()); };
    connect(connector, &sbs::ConsumerConnector::signalMassdata, this, count);
    connect(connector, &sbs::ConsumerConnector::signalStateUpdate, this, count);
    connect(connector, &sbs::ConsumerConnector::signalUnreachable, this,
            [this](const QString &reason) { m_reason = reason; });
    connect(
        connector, &sbs::ConsumerConnector::signalRefused, this,
        [this, type = consumer.GetAdapterType()](const QString &reason) { refused(type, reason); });
    connect(
        connector, &sbs::ConsumerConnector::signalLinkLost, this, [this](const QString &reason) {
            if (!m_linkLost)
                Q_EMIT progress(QStringLiteral("The link to %1 is lost (%2); looking for it again.")
                                    .arg(m_options.endpoint, reason));
            m_linkLost = true;
        });
}

void Session::openOthers()
{
    m_othersOpen = true;
    m_newRowAt = monotonicSeconds();
    for (DisplayConsumer *consumer : m_consumers)
        if (consumer != &m_xAxis)
            open(*consumer);
}

void Session::refused(Adapter_Type type, const QString &reason)
{
    const QString kind = QString::fromLatin1(sbs::adapterName(type));
    if (type == AdapterType_XAxis || type == AdapterType_Waterfall)
        end(Failure(
            Failure::Runtime,
            QStringLiteral("The server at %1 refuses the adapter \"%2\": %3. Check the keys "
                           "and the server's version.")
                .arg(m_options.endpoint, kind, reason)));
    else
        Q_EMIT progress(QStringLiteral("Goes on without \"%1\": the server refuses it (%2).")
                            .arg(kind, reason));
}

void Session::askForAxis(const AxisData &axis)
{
    m_xAxis.sendCommandOverConnector(MYData<AxisData>(axis, MDT_XAxis));
    m_axisRequestedAt = 0.0; // ask at the next tick whether it is in force
}

void Session::acknowledgeChannels(int id)
{
    m_xAxis.sendCommandOverConnector(MYData<int>(id, MDT_ChannelRangeAcknowledged));
}

void Session::askForLevels(const LevelScale &scale)
{
    m_yRange.sendCommandOverConnector(
        MXYZData<double, double, short>(scale.low, scale.high, 0, MDT_YRange));
}

void Session::requestWaterfallState()
{
    if (m_waterfall.connector() != nullptr)
        m_waterfall.connector()->requestFullState();
}

void Session::tick()
{
    const double now = monotonicSeconds();
    try {
        confirmAxis(now);
    } catch (const Failure &failure) {
        end(failure);
        return;
    }
    if (m_othersOpen)
        m_window.tick(now);
    if (const std::size_t rows = m_window.display().rowCount(); rows != m_rowsSeen) {
        m_rowsSeen = rows;
        m_newRowAt = now;
    }
    tellProgress(now);
    checkEnd(now);
}

void Session::confirmAxis(double now)
{
    if (m_window.hasAxis()) {
        if (!m_othersOpen)
            openOthers();
    } else if (m_everReady && now - m_axisRequestedAt >= kAxisRequestSeconds) {
        // The adapter doesn't tell when an axis has come into force.
        m_axisRequestedAt = now;
        m_xAxis.connector()->requestFullState();
    }
}

void Session::tellProgress(double now)
{
    if (now - m_toldAt < kProgressSeconds)
        return;
    m_toldAt = now;
    const QString elapsed = seconds(std::round(now - m_startedAt));
    if (!m_everReady) {
        Q_EMIT progress(QStringLiteral("%1: waiting for %2").arg(elapsed, m_options.endpoint));
        return;
    }
    Q_EMIT progress(QStringLiteral("%1: %2 lines, %3 scans/s, %4 messages lost")
                        .arg(elapsed, groupedNumber(m_rowsSeen))
                        .arg(m_window.scansPerSecond(), 0, 'f', 1)
                        .arg(lostMessages()));
}

void Session::checkEnd(double now)
{
    if (m_options.scans && m_rowsSeen >= *m_options.scans)
        return end(std::nullopt);
    if (!m_everReady && now - m_startedAt >= m_options.timeoutSeconds)
        return end(Failure(Failure::Runtime, nothingCame()));
    if (m_options.seconds && now - m_startedAt >= *m_options.seconds)
        return stop();
    if (m_options.seconds || now - m_newRowAt < m_options.timeoutSeconds)
        return;
    if (!hasData())
        return end(Failure(Failure::Runtime, nothingCame()));
    end(Failure(Failure::Runtime,
                QStringLiteral("Only %1 of %2 lines came from %3, then none for %4. Ask for fewer "
                               "with --scans, or wait longer with --timeout.")
                    .arg(m_rowsSeen)
                    .arg(*m_options.scans)
                    .arg(m_options.endpoint, seconds(m_options.timeoutSeconds))));
}

void Session::stop()
{
    if (hasData())
        end(std::nullopt);
    else
        end(Failure(Failure::Runtime, nothingCame()));
}

QString Session::nothingCame() const
{
    const QString waited = seconds(std::round((monotonicSeconds() - m_startedAt) * 10.0) / 10.0);
    if (!m_everReady)
        return QStringLiteral("%1; gave up after %2. Check that the server runs there, and that "
                              "address, port and keys are right.")
            .arg(m_reason.isEmpty() ? m_options.endpoint + QStringLiteral(": no answer") : m_reason,
                 waited);
    if (!m_window.hasChannels())
        return QStringLiteral("The server at %1 told no channels within %2. Check that it has an "
                              "input, or wait longer.")
            .arg(m_options.endpoint, waited);
    return QStringLiteral("No scan came from %1 within %2. Check that its input still delivers, or "
                          "wait longer.")
        .arg(m_options.endpoint, waited);
}

void Session::end(std::optional<Failure> failure)
{
    if (m_over)
        return;
    m_over = true;
    m_timer.stop();
    m_window.finish();
    m_failure = std::move(failure);
    Q_EMIT finished();
}

quint64 Session::lostMessages() const
{
    quint64 lost = 0;
    for (const DisplayConsumer *consumer : m_consumers)
        if (consumer->connector() != nullptr)
            lost += consumer->connector()->lostMessages();
    return lost;
}

Caption Session::caption() const
{
    return {m_options.endpoint, m_window.channelCount(), m_window.scansPerSecond(),
            m_window.display().rowCount(), lostMessages()};
}

Report Session::report() const
{
    const SpectrumDisplay &display = m_window.display();
    Report report;
    report.endpoint = m_options.endpoint;
    report.channels = m_window.channelCount();
    report.startHz = display.startHz();
    report.stopHz = display.stopHz();
    report.scansPerSecond = m_window.scansPerSecond();
    report.lines = display.rowCount();
    report.lostMessages = lostMessages();
    report.bytes = m_bytes;
    report.peaks = strongestPeaks(display.mean(), display.startHz(), display.stopHz(), kPeaks);
    return report;
}

} // namespace monitor
