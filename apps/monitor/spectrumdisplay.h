#pragma once

#include "apps/monitor/rowhistory.h"
#include "platform/base/types.h"

#include <cstddef>
#include <span>
#include <vector>

namespace monitor {

/// What one display window shows: the axis, the waterfall, and the mean, highest and latest level
/// of each pixel.
///
/// Levels are dBuV; NaN marks a pixel without channels or without data. The mean is a mean of
/// powers (10^(level/10)), as in an averaged spectrum, so that a burst weighs what its energy
/// weighs and a signal too weak for a single scan rises above the noise. Not thread-safe: one
/// owner, one thread.
class SpectrumDisplay {
public:
    /// Sets the axis. A different one drops all levels, since its pixels mean other frequencies;
    /// the same one again (a link that came back) keeps them.
    void setAxis(double startHz, double stopHz, std::size_t pixels);

    /// One waterfall row, oldest first. A row with the time of the newest one is that scan again,
    /// further along, and takes its place. A row of the wrong width is refused (false).
    bool addRow(KRTimeStamp time, std::span<const float> levels);
    /// The latest trace: the newest row, or a curve of its own. False if its width is wrong.
    bool setLatest(std::span<const float> levels);
    /// Adds what is still growing to mean, highest and history. For the end of a run.
    void finishRow();

    double startHz() const { return m_startHz; }
    double stopHz() const { return m_stopHz; }
    std::size_t pixels() const { return m_pixels; }
    /// Different rows since the program started, over all axes.
    std::size_t rowCount() const { return m_rowCount; }
    /// Without finishRow() these three leave out the newest row.
    std::vector<float> mean() const;
    const std::vector<float> &highest() const { return m_highest; }
    const RowHistory &history() const { return m_history; }
    const std::vector<float> &latest() const { return m_latest; }

private:
    void dropLevels();

    double m_startHz = 0.0, m_stopHz = 0.0;
    std::size_t m_pixels = 0;
    std::vector<double> m_powerSum;
    std::vector<unsigned> m_powerCount;
    std::vector<float> m_highest, m_latest, m_growing;
    KRTimeStamp m_growingTime = 0; ///< valid while m_growing isn't empty
    RowHistory m_history;
    std::size_t m_rowCount = 0;
};

} // namespace monitor
