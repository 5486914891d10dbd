#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace monitor {

/// The y range behind the colour bytes of a waterfall, in dBuV. Byte 255 stands for its high end
/// and all above, byte 0 for what lies below it, was never measured, or has no channel.
struct LevelScale {
    double low = -30.0;
    double high = 130.0;

    bool operator==(const LevelScale &) const = default;
    /// The middle of the levels that become \a colour. The window cuts levels down to one of 255
    /// steps, so each byte stands for the step above it, and 254 doesn't occur.
    double levelOf(unsigned char colour) const;
    /// The level to show for every byte: levelOf(), and NaN for byte 0.
    std::array<float, 256> table() const;
};

/// Chooses the y range that makes a colour step small without clipping what is seen.
///
/// It watches the bytes that arrive in one range and proposes the next one: wider as soon as bytes
/// clip, closer when the levels in use leave most of the range empty. After clipped peaks it comes
/// closer only slowly, so that rare bursts don't make it swing. Byte 0 also stands for pixels that
/// were never measured: when a lower range brings no levels to light, it is taken for that.
class LevelScaleControl {
public:
    /// The range that the bytes of the next rows stand for; forgets what was seen in the old one.
    void setScale(const LevelScale &scale);
    const LevelScale &scale() const { return m_scale; }
    void addRow(std::string_view colours);
    /// The range to ask for, or nothing when the present one is good or hasn't shown enough yet.
    /// \a secondsInScale is the time since setScale().
    std::optional<LevelScale> proposal(double secondsInScale) const;

private:
    struct Seen {
        int lowest = 255, highest = 0;
        bool clippedHigh = false;
        unsigned long long pixels = 0, atLowEnd = 0;
    };
    double shareAtLowEnd() const;
    bool isClippedLow() const;
    std::optional<LevelScale> tightened(double largestShare) const;

    LevelScale m_scale;
    Seen m_seen;
    bool m_hadClippedPeaks = false;
    bool m_zeroesAreHoles = false;
    double m_shareBeforeLowering = 0.0; ///< of the pixels at the low end; 0 when not lowered
};

} // namespace monitor
