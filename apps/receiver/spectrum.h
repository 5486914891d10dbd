#pragma once

#include "apps/receiver/input.h"
#include "apps/receiver/iqreader.h"
#include "apps/receiver/recording.h"

#include <fftw3.h>

#include <memory>
#include <vector>

namespace receiver {

/// The weighting of samples before a transform.
///
/// | Window          | Scalloping | Equivalent noise bandwidth | Side lobes |
/// | hann            | 1.42 dB    | 1.50 channels              | -31 dB     |
/// | blackman-harris | 0.83 dB    | 2.00 channels              | -92 dB     |
/// | flattop         | 0.01 dB    | 3.77 channels              | -93 dB     |
///
/// Scalloping is by how much a sine between two channels reads too low; figures and coefficients
/// after F. J. Harris, "On the use of windows for harmonic analysis with the discrete Fourier
/// transform" (1978); flattop after G. D'Antona and A. Ferrero, "Digital Signal Processing for
/// Measurement Systems" (2006).
enum class Window { hann, blackmanHarris, flattop };

/// The window's \a size values, periodic, scaled so that they sum to 1: a sine of amplitude A then
/// has a line of magnitude A, whatever the size.
std::vector<float> makeWindow(Window window, std::size_t size);

struct SpectrumSettings {
    int fft = 4096;  ///< samples a transform, even
    int average = 1; ///< transforms a scan, whose powers are averaged
    Window window = Window::hann;
    double fullScaleDbuv = 107.0; ///< level of a sine of amplitude 1
};

/// Turns the samples of a recording into scans.
///
/// Complex samples give `fft` channels around the centre; real ones give fft / 2 channels from the
/// dial frequency upwards. The channel spacing is rate / fft. Transforms don't overlap. At the end
/// of the recording a last scan averages the transforms that are left; samples that fill no
/// transform are dropped.
class SpectrumInput : public Input {
public:
    /// \throws Failure when the recording holds no whole transform
    SpectrumInput(const Recording &recording, const SpectrumSettings &settings);
    ~SpectrumInput() override;

    const Grid &grid() const override { return m_grid; }
    bool read(Scan &scan) override;
    void rewind() override;
    double period() const override;

private:
    struct PlanDeleter {
        void operator()(fftwf_plan plan) const { fftwf_destroy_plan(plan); }
    };
    struct BufferDeleter {
        void operator()(void *buffer) const { fftwf_free(buffer); }
    };

    void makePlan();
    /// Reads, weights and transforms the next samples into m_lines; false at the end.
    bool transform();
    void addPowers();
    void writeLevels(int transforms, Scan &scan) const;

    Recording m_recording;
    SpectrumSettings m_settings;
    IqReader m_reader;
    Grid m_grid;
    std::vector<float> m_window;
    std::vector<float> m_powers; // in the order of the transform
    std::unique_ptr<float, BufferDeleter> m_samples;
    std::unique_ptr<fftwf_complex, BufferDeleter> m_lines;
    std::unique_ptr<std::remove_pointer_t<fftwf_plan>, PlanDeleter> m_plan;
    std::uint64_t m_position = 0; // samples read so far
};

} // namespace receiver
