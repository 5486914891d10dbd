#pragma once

#include "apps/receiver/input.h"

#include <memory>
#include <vector>

namespace receiver {

/// A piece of the spectrum in Hz, both ends inclusive.
struct FrequencyRange {
    double start = 0;
    double stop = 0;
    double step = 0; ///< channel spacing, 0 for the input's own
};

/// Passes on the channels whose centres lie in one of several frequency ranges.
class RangeFilter : public Input {
public:
    /// The grid is each wanted range in turn, cut out of the input's ranges.
    /// \throws Failure (usage) when a wanted range holds no channel
    RangeFilter(std::unique_ptr<Input> source, const std::vector<FrequencyRange> &wanted);

    const Grid &grid() const override { return m_grid; }
    bool read(Scan &scan) override;
    void rewind() override { m_source->rewind(); }
    double period() const override { return m_source->period(); }

private:
    struct Piece {
        std::size_t from, count; // channels of the source
    };
    void cut(const FrequencyRange &wanted);

    std::unique_ptr<Input> m_source;
    Grid m_grid;
    std::vector<Piece> m_pieces; // one a range of the grid
    Scan m_whole;
};

} // namespace receiver
