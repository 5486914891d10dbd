#pragma once

#include "scanbuffer/messages/mdatawaterfall.h"
#include "scanbuffer/waterfall/waterfallpainter.h"

#include <concepts>

namespace sbs {

/// What the rows of a waterfall ask of a window.
template <typename Window, typename Y>
concept WaterfallSource = requires(const Window &window, int index, short dimension)
{
    {
        window.GetWaterfallScansPerLine()
        } -> std::convertible_to<int>;
    {
        window.GetWaterfallColorResolutionSteps()
        } -> std::convertible_to<int>;
    {
        window.GetYRange(dimension)
        } -> std::convertible_to<std::pair<double, double>>;
    {
        window.GetThresholdActive()
        } -> std::same_as<bool>;
    {
        window.GetThresholdLine()
        } -> std::same_as<const std::vector<double> &>;
    {
        window.GetThreshold(index)
        } -> std::same_as<double>;
    {
        window.GetRefLine(index)
        } -> std::same_as<double>;
    {
        window.WaterfallYLine(index)
        } -> std::same_as<const std::vector<Y> &>;
    {
        window.WaterfallChannelLineID(index)
        } -> std::same_as<std::uint64_t>;
};

/// Gathers the scans of a window into rows and blocks of rows, ready to be sent.
///
/// A row survives from pass to pass until it holds the scans that one row takes; meanwhile each
/// pass sends it as far as it is. Single-threaded; takes no memory in its steady state.
template <typename Y, typename YHandler>
class WaterfallRows {
public:
    /// What one pass hands over; the lists come newest first.
    struct Pass {
        const std::vector<int> &lines; ///< indexes of the window's lines
        const std::vector<KRTimeStamp> &times;
        int pixels;
        int lineCount; ///< entries of the lists that count
        bool relative;
        bool useForCurve;
        int packetId;
    };

    /// True when the newest time of the pass lies before the newest that was taken: the count
    /// begins anew, and the pass is to be left.
    bool hasRunBack(const Pass &pass);
    /// Paints the lines, from the oldest to the newest, and fills message(). A line whose time lies
    /// before the newest that was taken is left out. \pre pass.lineCount > 0
    template <WaterfallSource<Y> Window>
    void compose(const Window &window, const Pass &pass);
    const MDataWaterfall &message() const { return m_message; }

    short GetDimension() const { return m_dimension; }
    /// Bearings (dimensions 3 and 4) leave the byte where there is none, that is below 0.
    void SetDimension(short dimension);
    /// Forgets the times, so that older lines are taken again.
    void resetCurrentTimeStamp();

private:
    using Painter = WaterfallPainter<Y, YHandler>;

    template <typename Window>
    void takeRules(const Window &window, const Pass &pass);
    void resizeRow(int pixels);
    void finishRow(std::uint64_t lineId);
    void fillMessage(const Pass &pass, std::uint64_t firstLineId);

    Painter m_painter;
    std::vector<char> m_row;     // being built, one byte a pixel
    KRTimeStamp m_lastTime = 0;  // of the newest scan taken
    KRTimeStamp m_firstTime = 0; // of the first scan of the row
    KRTimeStamp m_lastSentTime = 0;
    std::uint16_t m_scanCounter = 0; // scans in the row
    short m_dimension = 0;
    bool m_skipNegative = false;

    std::vector<char> m_block; // finished rows stand at its end, the newest first
    std::uint64_t m_youngestId = 0;
    MDataWaterfall::Head m_head; // of the block being built; its times stand oldest first so far
    MDataWaterfall m_message;
};

} // namespace sbs
