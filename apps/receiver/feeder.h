#pragma once

#include "apps/receiver/input.h"
#include "apps/receiver/scansink.h"
#include "apps/receiver/stampkeeper.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <memory>

namespace receiver {

/// When scans go from the input to the sink.
struct FeedPlan {
    double speed = 1;  ///< 1 in the time of the stamps, 0 as fast as possible
    bool loop = false; ///< begin again at the end
    bool wait = false; ///< hold the first scan back until a window is there
};

/// Moves scans from an input to a sink, on the thread of the event loop and without ever holding it
/// for long.
///
/// A window asks for its kinds of data one after the other: waiting ends when none was asked for
/// during a second. What is late by more than a second (a suspended process) isn't made up for, and
/// a gap of more than an hour isn't waited for: often the clock of the recording was set in it.
class Feeder : public QObject {
    Q_OBJECT

public:
    Feeder(std::unique_ptr<Input> input, std::unique_ptr<ScanSink> sink, const FeedPlan &plan);
    /// Ends the service first, then the input.
    ~Feeder() override;

    void start();
    std::uint64_t scans() const { return m_scans; } ///< stored so far
    bool isWaiting() const { return m_waiting; }

Q_SIGNALS:
    /// The input has ended, after the last scan was stored. Not with loop.
    void ended();
    /// The stamps have a gap that isn't waited for; told for the first one only.
    void gapSkipped();
    /// Reading the input failed; nothing more is fed.
    void failed(const QString &sentence);

private:
    void windowSeen();
    void begin();
    void run();
    bool feedBatch();
    bool readNext();
    double microsecondsUntilDue();

    std::unique_ptr<Input> m_input;
    std::unique_ptr<ScanSink> m_sink;
    FeedPlan m_plan;
    StampKeeper m_stamps;
    QTimer m_timer, m_settled;
    QElapsedTimer m_clock;
    Scan m_scan;
    KRTimeStamp m_time = 0;  // of m_scan
    bool m_haveScan = false; // m_scan is read and not yet stored
    bool m_waiting = false;
    bool m_gapTold = false;
    KRTimeStamp m_baseTime = 0; // the stamp that was due at m_baseClock
    double m_baseClock = 0;     // microseconds of m_clock
    std::uint64_t m_scans = 0;
};

} // namespace receiver
