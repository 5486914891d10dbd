#pragma once

#include "apps/monitor/levelscale.h"
#include "apps/monitor/spectrumdisplay.h"
#include "platform/axis/axisdata.h"
#include "valueclasses/channels/channelrangedefinition.h"

#include <QByteArray>

#include <optional>
#include <vector>

class MDataWaterfall;

namespace monitor {

/// What a display window asks of its server.
class WindowCommands {
public:
    virtual ~WindowCommands() = default;
    virtual void askForAxis(const AxisData &axis) = 0;
    virtual void acknowledgeChannels(int id) = 0;
    virtual void askForLevels(const LevelScale &scale) = 0;
    /// The waterfall's axis and levels, once more.
    virtual void requestWaterfallState() = 0;
};

/// One display window without its link: takes what the adapters tell, decides what to ask them for,
/// and fills a SpectrumDisplay.
///
/// The axis it asks for shows all channels, or what lies in the wished frequencies, with as many
/// pixels as channels (at most 4000, the finest that a server gives). Rows count only while axis
/// and levels are known for certain: those of another axis, and those on their way while a change
/// of levels is being confirmed, are dropped. Not thread-safe: one owner, one thread.
class DisplayWindow {
public:
    DisplayWindow(WindowCommands &commands, std::optional<double> fromHz,
                  std::optional<double> toHz);

    /// The axis adapter is there, for the first time or again: it knows nothing of this window.
    void axisAdapterReady();
    void waterfallAdapterReady();

    /// \a id is to be acknowledged. A server without a grid yet tells an empty one.
    void channelsTold(const values::ChannelRangeDefinition &channels, int id);
    /// The axis of the window, from the axis adapter.
    void axisTold(const AxisData &axis);
    /// The same from the waterfall adapter, in order with its rows; the server may have given fewer
    /// pixels than it was asked for.
    void waterfallAxisTold(const AxisData &axis);
    void waterfallLevelsTold(const LevelScale &scale, double nowSeconds);
    void rowsArrived(const MDataWaterfall &rows);
    /// One little-endian double a pixel, NaN for none.
    void curveArrived(const QByteArray &levels);
    void scansPerSecondTold(double rate) { m_toldRate = rate; }
    /// Call a few times a second: adapts the levels. \a nowSeconds is any clock that only rises.
    void tick(double nowSeconds);
    /// Call once at the end: the newest row counts too.
    void finish() { m_display.finishRow(); }

    /// True once the axis adapter has the axis that was asked for.
    bool hasAxis() const { return m_axisConfirmed; }
    /// True once there is something to show an axis for.
    bool hasChannels() const { return !m_channels.empty(); }
    quint64 channelCount() const { return m_channels.GetChannelCount(); }
    /// As the server tells it, else from the times of the rows; 0 when neither is known.
    double scansPerSecond() const;
    const SpectrumDisplay &display() const { return m_display; }
    quint64 droppedRows() const { return m_droppedRows; }

private:
    bool isWished(const AxisData &axis) const;
    void addRows(const char *bytes, const MDataWaterfall &rows);

    WindowCommands &m_commands;
    const std::optional<double> m_fromHz, m_toHz;
    values::ChannelRangeDefinition m_channels;
    std::optional<AxisData> m_wish;
    bool m_axisAsked = false, m_axisConfirmed = false, m_waterfallFits = false;

    LevelScaleControl m_control;
    std::optional<LevelScale> m_pendingScale; ///< asked for and not yet confirmed
    double m_scaleSince = 0.0, m_askedAt = 0.0, m_requestedAt = 0.0;

    SpectrumDisplay m_display;
    std::vector<float> m_row;
    double m_toldRate = 0.0;
    quint64 m_droppedRows = 0;
};

/// The axis that shows all of \a channels, or their part from \a fromHz to \a toHz. Nothing when
/// there are no channels.
std::optional<AxisData> axisFor(const values::ChannelRangeDefinition &channels,
                                std::optional<double> fromHz, std::optional<double> toHz);

} // namespace monitor
