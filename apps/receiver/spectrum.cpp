#include "apps/receiver/spectrum.h"

#include "apps/common/failure.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace receiver {

using apps::Failure;

namespace {

std::vector<double> cosineTerms(Window window)
{
    switch (window) {
    case Window::hann:
        return {0.5, 0.5};
    case Window::blackmanHarris:
        return {0.35875, 0.48829, 0.14128, 0.01168};
    case Window::flattop:
        return {0.21557895, 0.41663158, 0.277263158, 0.083578947, 0.006947368};
    }
    return {1};
}

} // namespace

std::vector<float> makeWindow(Window window, std::size_t size)
{
    const std::vector<double> terms = cosineTerms(window);
    std::vector<double> values(size);
    for (std::size_t i = 0; i < size; ++i)
        for (std::size_t k = 0; k < terms.size(); ++k)
            values[i] += (k % 2 == 0 ? 1 : -1) * terms[k] *
                         std::cos(2 * std::numbers::pi * double(k * i) / double(size));
    const double sum = std::accumulate(values.begin(), values.end(), 0.0);
    std::vector<float> scaled(size);
    std::transform(values.begin(), values.end(), scaled.begin(),
                   [sum](double value) { return float(value / sum); });
    return scaled;
}

SpectrumInput::SpectrumInput(const Recording &recording, const SpectrumSettings &settings)
    : m_recording(recording), m_settings(settings), m_reader(recording),
      m_window(makeWindow(settings.window, std::size_t(settings.fft)))
{
    const auto samples = recording.size / std::int64_t(recording.format.bytesPerSample());
    if (samples < settings.fft)
        throw Failure(Failure::Runtime,
                      QStringLiteral("%1 holds %2 samples, fewer than one transform of %3: give a "
                                     "smaller --fft.")
                          .arg(recording.dataFile)
                          .arg(samples)
                          .arg(settings.fft));
    const double step = recording.rate / settings.fft;
    const bool complex = recording.format.complex;
    const auto channels = std::uint32_t(complex ? settings.fft : settings.fft / 2);
    m_grid = {{recording.center - (complex ? recording.rate / 2 : 0), step, channels}};
    m_powers.resize(channels);
    makePlan();
}

SpectrumInput::~SpectrumInput() = default;

void SpectrumInput::makePlan()
{
    const auto size = std::size_t(m_settings.fft);
    m_samples.reset(static_cast<float *>(fftwf_malloc(2 * size * sizeof(float))));
    m_lines.reset(static_cast<fftwf_complex *>(fftwf_malloc(size * sizeof(fftwf_complex))));
    if (!m_samples || !m_lines)
        throw std::bad_alloc();
    // An estimated plan is the same in each run, and so are the levels to the last digit.
    if (m_recording.format.complex)
        m_plan.reset(fftwf_plan_dft_1d(m_settings.fft,
                                       reinterpret_cast<fftwf_complex *>(m_samples.get()),
                                       m_lines.get(), FFTW_FORWARD, FFTW_ESTIMATE));
    else
        m_plan.reset(
            fftwf_plan_dft_r2c_1d(m_settings.fft, m_samples.get(), m_lines.get(), FFTW_ESTIMATE));
}

bool SpectrumInput::transform()
{
    const std::size_t size = m_window.size();
    float *samples = m_samples.get();
    if (m_reader.read(samples, size) < size)
        return false;
    m_position += size;
    if (m_recording.format.complex) {
        for (std::size_t i = 0; i < size; ++i) {
            samples[2 * i] *= m_window[i];
            samples[2 * i + 1] *= m_window[i];
        }
    } else {
        for (std::size_t i = 0; i < size; ++i)
            samples[i] *= m_window[i];
    }
    fftwf_execute(m_plan.get());
    return true;
}

void SpectrumInput::addPowers()
{
    const fftwf_complex *lines = m_lines.get();
    for (std::size_t i = 0; i < m_powers.size(); ++i)
        m_powers[i] += lines[i][0] * lines[i][0] + lines[i][1] * lines[i][1];
}

void SpectrumInput::writeLevels(int transforms, Scan &scan) const
{
    const std::size_t channels = m_powers.size();
    const bool complex = m_recording.format.complex;
    // Half of a real sine's amplitude lies at its negative frequency.
    const double lines = complex ? 1 : 4;
    const auto offset = float(m_settings.fullScaleDbuv + 10 * std::log10(lines / transforms));
    const std::size_t first = complex ? channels / 2 : 0; // the most negative frequency
    // Silence has a floor that every sample type can hold, instead of minus infinity.
    constexpr float kSilence = 1e-30f;
    scan.levels.resize(channels);
    for (std::size_t i = 0; i < channels; ++i) {
        const std::size_t line = first + i < channels ? first + i : first + i - channels;
        scan.levels[i] = 10 * std::log10(std::max(m_powers[line], kSilence)) + offset;
    }
    if (!complex)
        scan.levels[0] -= 10 * std::log10(4.0f); // the line at 0 Hz has no mirror image
}

bool SpectrumInput::read(Scan &scan)
{
    const std::uint64_t begin = m_position;
    std::fill(m_powers.begin(), m_powers.end(), 0.0f);
    int transforms = 0;
    while (transforms < m_settings.average && transform()) {
        addPowers();
        ++transforms;
    }
    if (transforms == 0)
        return false;
    scan.time = m_recording.start + KRTimeStamp(double(begin) / m_recording.rate * 1e6);
    scan.directions.clear();
    writeLevels(transforms, scan);
    return true;
}

void SpectrumInput::rewind()
{
    m_reader.rewind();
    m_position = 0;
}

double SpectrumInput::period() const
{
    return 1e6 * m_settings.fft * m_settings.average / m_recording.rate;
}

} // namespace receiver
