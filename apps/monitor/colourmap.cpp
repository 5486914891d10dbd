#include "apps/monitor/colourmap.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace monitor {
namespace {

struct Linear {
    double red, green, blue;
};

/// Oklab (B. Ottosson, "A perceptual color space for image processing", 2020) in its polar form,
/// to linear light of sRGB's primaries.
Linear fromOklch(double lightness, double chroma, double hueDegrees)
{
    const double hue = hueDegrees * std::numbers::pi / 180.0;
    const double a = chroma * std::cos(hue);
    const double b = chroma * std::sin(hue);
    const double l = std::pow(lightness + 0.3963377774 * a + 0.2158037573 * b, 3);
    const double m = std::pow(lightness - 0.1055613458 * a - 0.0638541728 * b, 3);
    const double s = std::pow(lightness - 0.0894841775 * a - 1.2914855480 * b, 3);
    return {4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s,
            -1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s,
            -0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s};
}

bool isDisplayable(const Linear &c)
{
    const auto inside = [](double v) { return v >= -1e-4 && v <= 1.0 + 1e-4; };
    return inside(c.red) && inside(c.green) && inside(c.blue);
}

int toByte(double linear)
{
    const double v = std::clamp(linear, 0.0, 1.0);
    const double encoded = v <= 0.0031308 ? 12.92 * v : 1.055 * std::pow(v, 1.0 / 2.4) - 0.055;
    return int(std::lround(255.0 * encoded));
}

QRgb colourFor(double share)
{
    const double lightness = 0.15 + 0.82 * share;
    const double hue = 264.0 + 202.0 * std::pow(share, 1.1); // blue, violet, red, orange, yellow
    double chroma = 0.05 + 0.15 * std::sin(std::numbers::pi * std::pow(share, 0.9));
    // Less colourful rather than clipped: clipping would bend hue and lightness.
    while (chroma > 0.0 && !isDisplayable(fromOklch(lightness, chroma, hue)))
        chroma -= 0.002;
    const Linear c = fromOklch(lightness, std::max(chroma, 0.0), hue);
    return qRgb(toByte(c.red), toByte(c.green), toByte(c.blue));
}

} // namespace

ColourMap::ColourMap()
{
    for (std::size_t i = 0; i < m_colours.size(); ++i)
        m_colours[i] = colourFor(double(i) / double(m_colours.size() - 1));
}

QRgb ColourMap::at(double share) const
{
    if (!(share > 0.0)) // NaN too
        return m_colours.front();
    return m_colours[std::size_t(std::lround(std::min(share, 1.0) * 255.0))];
}

} // namespace monitor
