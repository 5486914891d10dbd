#pragma once

#include "platform/base/types.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <vector>

namespace receiver {

/// One run of evenly spaced channels.
struct Range {
    double firstCenter = 0; ///< Hz, centre of the first channel
    double step = 0;        ///< Hz between neighbouring centres, above 0
    std::uint32_t count = 0;

    double lastCenter() const { return firstCenter + (count - 1.0) * step; }
};

/// The channels of a scan: the ranges one after the other, numbered from 0 without gaps.
using Grid = std::vector<Range>;

std::size_t channelCount(const Grid &grid);

/// What a direction finder would tell of one channel. Quality 0 means no bearing.
struct Direction {
    float azimuth = 0;        ///< degrees clockwise from north, 0 up to 360
    float elevation = 0;      ///< degrees above the horizon
    std::int16_t quality = 0; ///< per cent
};

/// One scan. The owner keeps it from scan to scan, so that reading allocates nothing.
struct Scan {
    KRTimeStamp time = 0;              ///< when it began; see Input::read()
    std::vector<float> levels;         ///< dBuV, one a channel; NaN where there is no value
    std::vector<Direction> directions; ///< one a channel, or empty
};

/// Takes a sentence for the user about something that was survived, such as a skipped line.
using Note = std::function<void(const QString &)>;

/// A source of scans. One thread.
class Input {
public:
    Input() = default;
    virtual ~Input() = default;
    Input(const Input &) = delete;
    Input &operator=(const Input &) = delete;

    /// The channels; fixed from construction on, never empty.
    virtual const Grid &grid() const = 0;
    /// Fills \a scan with the next one and returns true; false at the end, \a scan then being
    /// undefined. Time stamps are as the recording has them: they may repeat or step back.
    /// \throws Failure when reading fails
    virtual bool read(Scan &scan) = 0;
    /// Goes back to the first scan.
    virtual void rewind() = 0;
    /// Microseconds that one scan usually lasts; 0 when unknown.
    virtual double period() const = 0;
};

} // namespace receiver
