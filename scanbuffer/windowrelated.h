#pragma once

#include "scanbuffer/fold/channelindextopixel.h"
#include "scanbuffer/scanbuffer.h"
#include "scanbuffer/window/scandisplayring.h"
#include "scanbuffer/window/windowfold.h"
#include "scanbuffer/window/windowrelatedqobject.h"

#include <optional>

namespace sbs {

template <typename Y, typename YHandler>
class ScanBufferAdapter_XRange;
template <typename Y, typename YHandler>
class ScanBufferAdapter_ScanLine;
template <typename Y, typename YHandler>
class ScanBufferAdapter_Waterfall;
template <typename Y, typename YHandler>
class ScanBufferAdapter_YRange;
template <typename Y, typename YHandler>
class ScanBufferAdapter_Statistics;

/// The reader of one display window: folds new scans into a ring of pixel lines and drives the
/// adapters that send them.
///
/// Ownership: the data source owns it; it shares the scan buffer, and holds its adapters weakly.
/// Threads: see WindowRelatedQObject. The ring has no lock, since all of it runs on one thread.
/// Memory: between two changes of channels or axis, a pass takes none.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT WindowRelated : public WindowRelatedQObject,
                                      public ScanBufferVisitor<Y, YHandler> {
public:
    using Access = ScanBufferAccess<Y, YHandler>;

    WindowRelated(std::shared_ptr<ScanBuffer<Y, YHandler>> scanBuffer, const QString &winGUID,
                  ScanBufferSizeManager *sizeManager);
    /// Tells that the window is no longer visible, if it was.
    ~WindowRelated() override;

    /// Makes an adapter part of this window. A later one of a kind takes the place of the earlier;
    /// one of no kind that a window serves is left alone.
    void registerAdapter(std::weak_ptr<Adapter> adapter) override;

    void InitBuffer() override;
    void SetXRange(const AxisData &range) override;
    int GetProcessSpeed() const override;
    void SetWindowVisible(bool visible) override;
    bool GetWindowVisible() const override { return m_visible; }
    void SetWindowMinimized(bool minimized) override;
    bool GetWindowMinimized() const override { return m_minimized; }
    void reload(double x1, double x2, KRTimeStamp time, std::int32_t count,
                std::int32_t second) override;
    void NewData() override;
    void NewChannelRangeDefinition() override;
    void NewKFactor() override;
    void readNewData() override;
    void processXRuler() override;
    void processSystemInfo() override;
    void SetUseAxisCalculatorForWidget(bool use) override { m_useAxisCalculator = use; }
    bool GetUseAxisCalculatorForWidget() const override { return m_useAxisCalculator; }

    /// Part of a pass; the buffer calls it.
    void visit(const Access &access) override;

    const axisDefinition &GetXAxis() const override { return m_xAxis; }
    const values::ChannelRangeDefinition &GetChannelRangeDefinition() const override
    {
        return m_definition;
    }

    /// Folds the channels from \a first to \a last, inclusive, into \a line; returns whether a
    /// pixel was written.
    bool DoScanTransition(const std::vector<Y> &samples, ScanDisplayLine<Y> &line,
                          std::uint32_t first, std::uint32_t last);

    /// The rows that the adapters read, by ring index. \pre 0 <= index < LineCount()
    int LineCount() const { return m_ring.size(); }
    const std::vector<Y> &WaterfallYLine(int index) const { return m_ring.line(index).yValues; }
    const std::vector<std::uint32_t> &WaterfallChannelLine(int index) const
    {
        return m_ring.line(index).channelIds;
    }
    const std::vector<std::int32_t> &OverwriteCntLine(int index) const
    {
        return m_ring.line(index).overwriteCounts;
    }
    std::uint64_t WaterfallChannelLineID(int index) const
    {
        return m_ring.line(index).channelLineId;
    }
    int GetCurrentLine() const { return m_ring.currentLine(); }
    /// The finished line of \a time; else, while measuring, that of the last scan; else the line
    /// before the current one.
    int LineIndex4Time(KRTimeStamp time) const;
    /// True when the ring holds lines with pixels.
    bool AnyValidLine() const { return !m_ring.empty() && m_ring.line(0).size() != 0; }

    /// A selected time stamp, 0 for none.
    void SetTimeLine(KRTimeStamp time);
    KRTimeStamp GetTimeLine() const { return m_timeLine; }
    void setMaxHoldDimension(short dimension) { m_maxHoldDimension = dimension; }
    void SetTrace(bool trace) { m_trace = trace; }
    void interpolate(bool interpolate) { m_interpolate = interpolate; }
    bool GetInterpolate() const { return m_interpolate; }

    /// Lowest and highest finite value of a dimension over lines and pixels. Invalid samples never
    /// set the low; nothing happens without pixels or lines.
    void getYMinMax(const std::vector<int> &indexes, short dimension, int pixels, double &low,
                    double &high) const;

    void MoveInRange(int &index) const;
    double GetFrequency4Pixel(int pixel) const;
    /// The middle pixel of the channel for \a frequency; -1, with \a ok false, when there is none.
    unsigned int GetIndex4FrequencyFromChannelRange(double frequency, bool &ok) const;
    /// The pixel for \a frequency, by channel or else by axis; -1 when there is none.
    int GetPixelIndex4Frequency(double frequency) const;
    /// One pixel on; false at the end, or where the axis holds no frequency.
    bool NextPixel(int &index, bool forward) const;
    /// On to the next pixel that another channel set, and to that channel's frequency.
    void NextPixelNewChannel(int &index, double &frequency, bool forward) const;
    /// To the pixel of the centre of the channel that set this one, if it is near.
    void NearByPixelForChannelCenter(int &index, double &frequency) const;
    /// On to the next maximum above the threshold. Without one both go back to the start, the
    /// frequency cut to a whole 32-bit number.
    void NextLocalMax(int &index, double &frequency, bool forward) const;
    /// `Minimum` where nothing was read.
    Y GetLatestValue4Index(int pixel) const;

protected:
    void processCompression() override;

private:
    using XRange = ScanBufferAdapter_XRange<Y, YHandler>;
    using ScanLine = ScanBufferAdapter_ScanLine<Y, YHandler>;
    using Waterfall = ScanBufferAdapter_Waterfall<Y, YHandler>;
    using YRange = ScanBufferAdapter_YRange<Y, YHandler>;
    using Statistics = ScanBufferAdapter_Statistics<Y, YHandler>;
    using Mapper = channelToPixel::ChannelIndexToPixelRangeMapper;

    bool isReading() const { return m_visible && !m_minimized && !m_measureMode && !m_static; }
    int pixelCount() const { return m_xAxis.GetPixelCnt(); }

    template <typename Kind>
    std::shared_ptr<Kind> adopt(const std::shared_ptr<Adapter> &adapter);
    void registerTimedAdapter(const std::shared_ptr<IDataSourceAdapter> &adapter);
    void applyPendingXRange();
    void cutToFrequencyResolution();

    // The pass.
    void runAdapters();
    bool isCurveDrawnByWaterfall(const Waterfall &waterfall, const ScanLine &scanLine) const;
    void optimizeYRange();
    void widenByLinesToDraw(std::optional<WindowLevels::Range> &range) const;
    void applyOptimizedRange(WindowLevels::Range range);
    bool takeNewestTime(KRTimeStamp &seen) const;

    // The visit.
    void visitForInitialization(const Access &access, std::uint64_t id);
    void tellAdaptersNewAxis();
    void copyBufferSettings(const Access &access);
    void visitNewData(const Access &access, std::uint64_t from, std::uint64_t to);
    void foldLine(const ChannelLine<Y, YHandler> &line, std::uint64_t id,
                  bool &finishedWithoutData);
    ScanDisplayLine<Y> &rowToDraw(const ChannelLine<Y, YHandler> &line, std::uint64_t id);
    void visitReload(const Access &access);
    void sendBatches(const Access &access, std::uint64_t first, std::uint64_t last,
                     Waterfall &waterfall);
    void sendBatch(Waterfall &waterfall, int mark);
    Mapper mapperAt(const Access &access, std::uint64_t id, std::uint64_t &lastOfDefinition) const;

    // Cursors.
    int cursorLine() const;
    struct Point;
    bool isAboveThresholdLine(const Point &point) const;

    std::shared_ptr<ScanBuffer<Y, YHandler>> m_scanBuffer;
    axisDefinition m_xAxis;
    values::ChannelRangeDefinition m_definition; // the one that the lines were built for
    Mapper m_mapper;
    ScanDisplayRing<Y, YHandler> m_ring;
    FoldRules m_foldRules;

    bool m_trace = false;
    bool m_interpolate = true;
    bool m_newData = false;
    bool m_kFactorChanged = false;
    bool m_resetPending = false;
    bool m_reading = false; // a pass is running
    bool m_unread = false;  // the last visit left lines in the buffer
    bool m_emptyBufferSeen = false;
    bool m_keepDataAfterEndOfScan = false;
    bool m_visible = true, m_minimized = false, m_useAxisCalculator = false;
    bool m_drawScanLineByWaterfall = false;
    short m_maxHoldDimension = 0;
    KRTimeStamp m_timeLine = 0;
    KRTimeStamp m_lastXRulerTime = 0, m_lastSystemInfoTime = 0;
    KRTimeStamp m_lastTime = 0;       // of the line m_lastLineId
    std::uint64_t m_lastLineId = 1;   // next channel line to read
    std::uint64_t m_segmentsDone = 0; // of line m_segmentLineId, folded already
    std::uint64_t m_segmentLineId = 0;
    std::uint64_t m_finishedLineId = 0; // the last line whose end was noted

    std::vector<KRTimeStamp> m_timesToDraw; // of the lines touched in this pass, newest first
    std::vector<int> m_linesToDraw;         // their ring indexes

    bool m_xRangeChanged = true;
    std::optional<AxisData> m_pendingXRange; // empty until the first SetXRange()
    struct Reload {
        bool requested = false, running = false;
        std::int32_t lineCount = 0;
    } m_reload;

    std::weak_ptr<XRange> m_xRangeAdapter;
    std::weak_ptr<ScanLine> m_scanLineAdapter;
    std::weak_ptr<Waterfall> m_waterfallAdapter;
    std::weak_ptr<Statistics> m_statisticsAdapter;
    std::weak_ptr<IDataSourceAdapter> m_compressionAdapter;
    std::vector<std::weak_ptr<IDataSourceAdapter>> m_xMarkerAdapters;
};

#define SPECTREE_DECLARE(Y, Handler)                                                               \
    extern template class SPECTREE_EXPORT WindowRelated<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace sbs
