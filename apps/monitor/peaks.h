#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace monitor {

/// One local maximum of a spectrum.
struct Peak {
    std::size_t pixel = 0;
    double frequencyHz = 0.0; ///< the middle of its pixel
    double levelDbuv = 0.0;
};

/// The at most \a count strongest local maxima of \a levels (dBuV, one a pixel, the pixels dividing
/// startHz .. stopHz evenly), strongest first; equally strong ones by rising frequency.
///
/// A maximum is above its neighbours; at an edge of the spectrum or beside a pixel without data
/// (NaN) there is one neighbour less. A flat top counts once, in its middle. A spectrum without
/// any slope has no maximum.
std::vector<Peak> strongestPeaks(std::span<const float> levels, double startHz, double stopHz,
                                 std::size_t count);

/// Of \a peaks (strongest first), those worth a label: at least \a prominenceDb above \a floorDbuv
/// and at least \a separation pixels from every stronger one; at most \a count.
std::vector<Peak> labelledPeaks(std::span<const Peak> peaks, double floorDbuv, double prominenceDb,
                                std::size_t separation, std::size_t count);

/// The level below which the given share (0 .. 1) of the pixels with data lies; NaN without any.
double levelQuantile(std::span<const float> levels, double share);

} // namespace monitor
