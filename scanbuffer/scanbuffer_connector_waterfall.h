#pragma once

#include "scanbuffer/datasourceadapter.h"
#include "scanbuffer/scanbuffer_connectorbases.h"
#include "scanbuffer/waterfall/waterfallrows.h"

namespace sbs {

/// Sends the scans of a window as rows of colour bytes. docs/adapters.md has its messages.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT ScanBufferAdapter_Waterfall final : public ScanBufferAdapterBase_Waterfall,
                                                          public WindowAdapter<Y, YHandler> {
public:
    ScanBufferAdapter_Waterfall(WindowRelated<Y, YHandler> *window, const QByteArray &identity);

    using IDataSourceAdapter::process;
    /// Sends the rows that the lines make, or the row as far as it is. Does nothing when time has
    /// run back, without a window, or while not visible.
    /// \throws std::out_of_range "invalid vector<T> subscript" for lists shorter than lineCount
    void process(const std::vector<int> &lines, const std::vector<KRTimeStamp> &times, int pixels,
                 int lineCount, bool relative, bool useForCurve, int packetId) override;
    void SetParameter(const MData &parameter) override;
    void slotRequestFullStateUpdate() override;
    void StartStopRecalculated(double start, double stop, short dimension) override;
    /// Tells the display the axis of the window.
    void sendXAxisDefinitionSet();

    /// Takes older scans again, as a reload sends them.
    void resetCurrentTimeStamp() { m_rows.resetCurrentTimeStamp(); }
    /// True when the display has been silent for too long by the watchdog of this adapter, which
    /// is off: the transmission finds dead peers.
    bool connectionLost();
    short GetDimension() const { return m_rows.GetDimension(); }
    bool IsVisible() const { return m_visible; }

private:
    WaterfallRows<Y, YHandler> m_rows;
    std::uint64_t m_watchdogTick = 0; // milliseconds; 0: off
    bool m_visible = true;
};

#define SPECTREE_DECLARE(Y, Handler)                                                               \
    extern template class SPECTREE_EXPORT ScanBufferAdapter_Waterfall<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace sbs
