#include "apps/receiver/feeder.h"

#include "platform/base/sync.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace receiver {

namespace {

constexpr int kSettleMs = 1000;
constexpr qint64 kBatchNs = 4000000; // then the event loop has its turn
constexpr double kMostLateMicroseconds = 1e6;
constexpr double kLongestGapMicroseconds = 3.6e9;
constexpr double kLongestNapMicroseconds = 6e7; // a timer counts in 32-bit milliseconds

} // namespace

Feeder::Feeder(std::unique_ptr<Input> input, std::unique_ptr<ScanSink> sink, const FeedPlan &plan)
    : m_input(std::move(input)), m_sink(std::move(sink)), m_plan(plan), m_stamps(m_input->period())
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_settled.setSingleShot(true);
    m_settled.setInterval(kSettleMs);
    connect(&m_timer, &QTimer::timeout, this, &Feeder::run);
    connect(&m_settled, &QTimer::timeout, this, &Feeder::begin);
}

Feeder::~Feeder()
{
    m_sink.reset(); // its threads call windowSeen() through this object
}

void Feeder::start()
{
    m_waiting = m_plan.wait;
    if (!m_waiting)
        return begin();
    m_sink->onWindow([this] { Kelm::post(this, [this] { windowSeen(); }); });
}

void Feeder::windowSeen()
{
    if (m_waiting)
        m_settled.start();
}

void Feeder::begin()
{
    m_waiting = false;
    m_clock.start();
    m_timer.start(0);
}

void Feeder::run()
{
    try {
        if (feedBatch())
            m_timer.start(m_plan.speed == 0 ? 0 : int(std::ceil(microsecondsUntilDue() / 1000)));
        else
            Q_EMIT ended();
    } catch (const std::exception &error) {
        Q_EMIT failed(QString::fromUtf8(error.what()));
    }
}

/// Stores what is due, for a few milliseconds. False at the end of the input.
bool Feeder::feedBatch()
{
    const qint64 begin = m_clock.nsecsElapsed();
    do {
        if (!m_haveScan && !readNext())
            return false;
        if (m_plan.speed > 0 && microsecondsUntilDue() > 0)
            return true;
        m_sink->store(m_scan, m_time);
        m_haveScan = false;
        ++m_scans;
    } while (m_clock.nsecsElapsed() - begin < kBatchNs);
    return m_haveScan || readNext();
}

bool Feeder::readNext()
{
    m_haveScan = m_input->read(m_scan);
    if (!m_haveScan && m_plan.loop) {
        m_input->rewind();
        m_stamps.restart();
        m_haveScan = m_input->read(m_scan);
    }
    if (m_haveScan)
        m_time = m_stamps.next(m_scan.time);
    return m_haveScan;
}

double Feeder::microsecondsUntilDue()
{
    const double now = double(m_clock.nsecsElapsed()) / 1000;
    if (m_baseTime == 0) {
        m_baseTime = m_time;
        m_baseClock = now;
    }
    const double left = m_baseClock + double(m_time - m_baseTime) / m_plan.speed - now;
    // At a low speed a wait may well take more than an hour: its gap does not.
    const bool gap = left * m_plan.speed > kLongestGapMicroseconds;
    if (gap && !std::exchange(m_gapTold, true))
        Q_EMIT gapSkipped();
    if (gap || -left > kMostLateMicroseconds) {
        m_baseTime = m_time;
        m_baseClock = now;
        return 0;
    }
    return std::clamp(left, 0.0, kLongestNapMicroseconds);
}

} // namespace receiver
