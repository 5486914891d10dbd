#pragma once

#include "apps/common/failure.h"
#include "apps/monitor/displayconsumer.h"
#include "apps/monitor/displaywindow.h"
#include "apps/monitor/options.h"
#include "apps/monitor/picture.h"
#include "apps/monitor/report.h"
#include "platform/transmission/consumergroup.h"

#include <QObject>
#include <QTimer>

#include <array>
#include <optional>

namespace monitor {

/// One run of the monitor: connects, watches, and ends after the wished time or number of lines.
///
/// The axis adapter comes first. The others are asked for once the window has the axis of the
/// server's channels, so that no row is folded to another axis. A lost link is looked for again and
/// what was seen is kept. Lives on the thread that makes it, whose event loop runs it.
class Session : public QObject, private WindowCommands {
    Q_OBJECT

public:
    /// \throws Failure for keys that can't be read
    explicit Session(const Options &options);
    ~Session() override;

    /// Begins to connect. \throws Failure for an address that is none
    void start();
    /// Ends the run now, as if its time were over.
    void stop();

    /// What went wrong, once finished() was emitted. What was seen is there all the same.
    const std::optional<apps::Failure> &failure() const { return m_failure; }
    bool hasData() const { return m_window.display().rowCount() > 0; }
    const SpectrumDisplay &display() const { return m_window.display(); }
    Caption caption() const;
    Report report() const;

Q_SIGNALS:
    /// The run is over; emitted once.
    void finished();
    /// A sentence for whoever watches the run.
    void progress(const QString &sentence);

private:
    void askForAxis(const AxisData &axis) override;
    void acknowledgeChannels(int id) override;
    void askForLevels(const LevelScale &scale) override;
    void requestWaterfallState() override;

    void open(DisplayConsumer &consumer);
    void openOthers();
    void refused(Adapter_Type type, const QString &reason);
    void tick();
    void confirmAxis(double now);
    void tellProgress(double now);
    void checkEnd(double now);
    void end(std::optional<apps::Failure> failure);
    QString nothingCame() const;
    quint64 lostMessages() const;

    const Options m_options;
    sbs::ConsumerGroup m_group;
    DisplayWindow m_window;
    XAxisConsumer m_xAxis;
    WaterfallConsumer m_waterfall;
    CurveConsumer m_curve;
    StatisticsConsumer m_statistics;
    YRangeConsumer m_yRange;
    const std::array<DisplayConsumer *, 5> m_consumers;
    QTimer m_timer;

    bool m_othersOpen = false, m_everReady = false, m_linkLost = false, m_over = false;
    double m_startedAt = 0.0, m_axisRequestedAt = 0.0, m_toldAt = 0.0;
    double m_newRowAt = 0.0; ///< or since when rows are waited for
    std::size_t m_rowsSeen = 0;
    quint64 m_bytes = 0;
    QString m_reason; ///< why the last try to connect had no success
    std::optional<apps::Failure> m_failure;
};

} // namespace monitor
