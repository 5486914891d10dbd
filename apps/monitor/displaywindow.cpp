#include "apps/monitor/displaywindow.h"

#include "platform/base/bytes.h"
#include "scanbuffer/messages/mdatawaterfall.h"

#include <algorithm>
#include <cmath>

namespace monitor {
namespace {

constexpr int kMostPixels = 4000; // the finest frequency resolution of a server
constexpr double kRequestAgainSeconds = 0.1;
constexpr double kAskAgainSeconds = 2.0;

struct Extent {
    double low, high;
};

/// From the lower edge of the lowest channel to the upper edge of the highest.
Extent extentOf(const values::ChannelRangeDefinition &channels)
{
    Extent extent{INFINITY, -INFINITY};
    for (const auto &range : channels.GetIndexedRanges()) {
        if (range.channelCount == 0)
            continue;
        const double first = range.firstCenterFrequency;
        const double last = first + range.frequencyStep * double(range.channelCount - 1);
        const double half = 0.5 * std::abs(range.frequencyStep);
        extent.low = std::min({extent.low, first - half, last - half});
        extent.high = std::max({extent.high, first + half, last + half});
    }
    return extent;
}

/// Channels whose middle lies in the extent.
double channelsIn(const values::ChannelRangeDefinition &channels, const Extent &extent)
{
    double count = 0.0;
    for (const auto &range : channels.GetIndexedRanges()) {
        const double step = range.frequencyStep != 0.0 ? range.frequencyStep : 1.0;
        const double a = (extent.low - range.firstCenterFrequency) / step;
        const double b = (extent.high - range.firstCenterFrequency) / step;
        const double first = std::max(0.0, std::ceil(std::min(a, b) - 1e-9));
        const double last =
            std::min(double(range.channelCount) - 1.0, std::floor(std::max(a, b) + 1e-9));
        count += std::max(0.0, last - first + 1.0);
    }
    return count;
}

} // namespace

std::optional<AxisData> axisFor(const values::ChannelRangeDefinition &channels,
                                std::optional<double> fromHz, std::optional<double> toHz)
{
    if (channels.GetChannelCount() == 0)
        return std::nullopt;
    const Extent all = extentOf(channels);
    Extent extent{fromHz.value_or(all.low), toHz.value_or(all.high)};
    if (!(extent.low < extent.high)) // one frequency, or a wish beyond the other end
        extent = {std::min(extent.low, extent.high) - 500.0,
                  std::max(extent.low, extent.high) + 500.0};
    AxisData axis;
    axis.min = extent.low;
    axis.max = extent.high;
    axis.pixelCount =
        std::int16_t(std::clamp(channelsIn(channels, extent), 1.0, double(kMostPixels)));
    return axis;
}

DisplayWindow::DisplayWindow(WindowCommands &commands, std::optional<double> fromHz,
                             std::optional<double> toHz)
    : m_commands(commands), m_fromHz(fromHz), m_toHz(toHz)
{
}

void DisplayWindow::axisAdapterReady()
{
    m_axisAsked = false;
    m_axisConfirmed = false;
}

void DisplayWindow::waterfallAdapterReady()
{
    m_waterfallFits = false;
    m_pendingScale.reset();
}

void DisplayWindow::channelsTold(const values::ChannelRangeDefinition &channels, int id)
{
    m_commands.acknowledgeChannels(id);
    const auto wish = axisFor(channels, m_fromHz, m_toHz);
    if (!wish)
        return;
    m_channels = channels;
    if (m_axisAsked && m_wish == wish)
        return;
    m_wish = wish;
    m_axisAsked = true;
    m_axisConfirmed = false;
    m_commands.askForAxis(*wish);
}

bool DisplayWindow::isWished(const AxisData &axis) const
{
    return m_wish && axis.min == m_wish->min && axis.max == m_wish->max && axis.pixelCount > 0 &&
           axis.pixelCount <= m_wish->pixelCount;
}

void DisplayWindow::axisTold(const AxisData &axis)
{
    m_axisConfirmed = m_axisAsked && isWished(axis);
}

void DisplayWindow::waterfallAxisTold(const AxisData &axis)
{
    m_waterfallFits = isWished(axis);
    if (m_waterfallFits)
        m_display.setAxis(axis.min, axis.max, std::size_t(axis.pixelCount));
}

void DisplayWindow::waterfallLevelsTold(const LevelScale &scale, double nowSeconds)
{
    if (m_pendingScale == scale)
        m_pendingScale.reset();
    if (!(m_control.scale() == scale))
        m_scaleSince = nowSeconds;
    m_control.setScale(scale);
}

void DisplayWindow::rowsArrived(const MDataWaterfall &rows)
{
    const std::string &bytes = rows.GetString();
    const std::size_t width = m_display.pixels(), count = rows.GetTime().size();
    if (!m_waterfallFits || m_pendingScale || std::size_t(rows.size().width()) != width ||
        bytes.size() != width * count) {
        m_droppedRows += count;
        return;
    }
    addRows(bytes.data(), rows);
}

void DisplayWindow::addRows(const char *bytes, const MDataWaterfall &rows)
{
    const auto levels = m_control.scale().table();
    const std::size_t width = m_display.pixels();
    m_row.resize(width);
    for (std::size_t row = rows.GetTime().size(); row-- > 0;) { // the newest row stands first
        const std::string_view colours(bytes + row * width, width);
        std::transform(colours.begin(), colours.end(), m_row.begin(),
                       [&](char byte) { return levels[static_cast<unsigned char>(byte)]; });
        m_control.addRow(colours);
        m_display.addRow(rows.GetTime()[row], m_row);
    }
    if (rows.UseForCurve() && !rows.GetTime().empty())
        m_display.setLatest(m_row);
}

void DisplayWindow::curveArrived(const QByteArray &levels)
{
    if (!m_waterfallFits || std::size_t(levels.size()) != m_display.pixels() * sizeof(double))
        return;
    std::vector<float> curve(m_display.pixels());
    const Kelm::ReadScope scope(levels.constData(), std::size_t(levels.size()));
    const char *cursor = levels.constData();
    for (float &level : curve)
        level = float(Kelm::readLittleEndian<double>(&cursor));
    m_display.setLatest(curve);
}

void DisplayWindow::tick(double nowSeconds)
{
    if (!m_pendingScale) {
        const auto proposal = m_control.proposal(nowSeconds - m_scaleSince);
        if (!proposal)
            return;
        m_pendingScale = proposal;
        m_askedAt = -INFINITY;
    }
    if (nowSeconds - m_askedAt >= kAskAgainSeconds) {
        m_askedAt = nowSeconds;
        m_requestedAt = -INFINITY;
        m_commands.askForLevels(*m_pendingScale);
    }
    // Levels and state travel on two lines: a state that overtook the levels tells the old ones.
    if (nowSeconds - m_requestedAt >= kRequestAgainSeconds) {
        m_requestedAt = nowSeconds;
        m_commands.requestWaterfallState();
    }
}

double DisplayWindow::scansPerSecond() const
{
    if (m_toldRate > 0.0 && std::isfinite(m_toldRate))
        return m_toldRate;
    const auto &rows = m_display.history().rows();
    if (rows.size() < 2)
        return 0.0;
    const double seconds = double(rows.back().first - rows.front().first) * 1e-6;
    const double scans = double((rows.size() - 1) * m_display.history().scansPerRow());
    return seconds > 0.0 ? scans / seconds : 0.0;
}

} // namespace monitor
