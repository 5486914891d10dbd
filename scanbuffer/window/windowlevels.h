#pragma once

#include "platform/base/export.h"

#include <limits>
#include <map>
#include <utility>
#include <vector>

namespace sbs {

/// The y ranges, the threshold and the reference line of a display window.
///
/// Levels are doubles in the unit of the dimension that they belong to. The threshold is the same
/// for all pixels, also as a line; the reference is a line of one value a pixel, and 0 beyond it.
/// Threads: none of its own; the window's thread owns it.
class SPECTREE_EXPORT WindowLevels {
public:
    using Range = std::pair<double, double>; ///< low and high; low above high turns the scale

    WindowLevels();

    /// The range of a dimension; 0 and 255 for one that was never set.
    Range GetYRange(short dimension) const;
    /// False when the range was the same before.
    bool SetYRange(Range range, short dimension);

    /// Makes both lines \a pixels long: the threshold everywhere, and the reference 0.
    void init(std::size_t pixels);

    /// Stores the scalar; the line takes it while the threshold is active.
    void SetThreshold(double threshold);
    /// Switches the threshold of all dimensions but 0. On: the line takes the scalar. Off: the line
    /// goes below every level.
    void SetThresholdActive(bool active);
    /// Switches the threshold of dimension 0.
    void SetThresholdActiveForLevel(bool active) { m_thresholdActiveForLevel = active; }
    bool GetThresholdActive() const { return m_thresholdActive; }
    bool GetThresholdActiveForLevel() const { return m_thresholdActiveForLevel; }
    bool GetThresholdActive(short dimension) const
    {
        return dimension == 0 ? m_thresholdActiveForLevel : m_thresholdActive;
    }
    /// The same for all pixels.
    double GetThreshold(int pixel) const;
    const std::vector<double> &GetThresholdLine() const { return m_thresholdLine; }

    /// 0.0 beyond the line.
    double GetRefLine(int pixel) const;

    /// True when an active threshold hides \a value at \a pixel: it is not above the threshold.
    /// With \a useReference its distance from the reference is what counts.
    bool filteredByThreshold(double value, int pixel, bool useReference) const;

private:
    std::map<short, Range> m_yRanges;
    double m_threshold = -double(std::numeric_limits<float>::max());
    bool m_thresholdActive = true, m_thresholdActiveForLevel = true;
    std::vector<double> m_thresholdLine, m_referenceLine;
};

} // namespace sbs
