#pragma once

#include "scanbuffer/dataconsumer.h"

#include <functional>

namespace monitor {

class DisplayWindow;

/// What the consumers of the window have in common: containers are unpacked, so that a subclass
/// sees single messages, and the session hears when an adapter is there. All live on one thread.
class DisplayConsumer : public DataConsumer {
public:
    using Ready = std::function<void()>;

    DisplayConsumer(Adapter_Type type, DisplayWindow &window);
    /// Called after each handleAdapterReady().
    void onReady(Ready ready) { m_ready = std::move(ready); }

protected:
    virtual void handleMessage(const MData &message) = 0;
    /// The adapter is there, for the first time or again; it knows nothing of the window.
    virtual void adapterIsReady() {}
    DisplayWindow &window() { return m_window; }

private:
    void handleData(const MData &message) final;
    void handleAdapterReady() final;

    DisplayWindow &m_window;
    Ready m_ready;
};

/// "XAxis": the channels of the receiver, and the axis of the window.
class XAxisConsumer final : public DisplayConsumer {
public:
    explicit XAxisConsumer(DisplayWindow &window) : DisplayConsumer(AdapterType_XAxis, window) {}

private:
    void handleMessage(const MData &message) override;
    void adapterIsReady() override;
};

/// "Waterfall": rows of colours with their axis and levels.
class WaterfallConsumer final : public DisplayConsumer {
public:
    explicit WaterfallConsumer(DisplayWindow &window)
        : DisplayConsumer(AdapterType_Waterfall, window)
    {
    }

private:
    void handleMessage(const MData &message) override;
    void adapterIsReady() override;
};

/// "Curve": the latest trace, when the window doesn't draw it from the waterfall.
class CurveConsumer final : public DisplayConsumer {
public:
    explicit CurveConsumer(DisplayWindow &window) : DisplayConsumer(AdapterType_Curve, window) {}

private:
    void handleMessage(const MData &message) override;
};

/// "Statistics": the scan rate.
class StatisticsConsumer final : public DisplayConsumer {
public:
    explicit StatisticsConsumer(DisplayWindow &window)
        : DisplayConsumer(AdapterType_Statistics, window)
    {
    }

private:
    void handleMessage(const MData &message) override;
};

/// "YRange": only sends. The levels in force are told by the waterfall, in order with its rows.
class YRangeConsumer final : public DisplayConsumer {
public:
    explicit YRangeConsumer(DisplayWindow &window) : DisplayConsumer(AdapterType_YRange, window) {}

private:
    void handleMessage(const MData &) override {}
};

/// Seconds on a clock that only rises.
double monotonicSeconds();

} // namespace monitor
