#pragma once

#include <QRgb>

#include <array>

namespace monitor {

/// 256 colours from night blue over violet and orange to pale yellow. The perceived lightness rises
/// in equal steps, so that equal level differences look equally large and the map survives a
/// black-and-white print.
class ColourMap {
public:
    ColourMap();
    /// The colour of \a share of the way from lowest to highest; clipped to 0 .. 1.
    QRgb at(double share) const;
    QRgb operator[](unsigned char index) const { return m_colours[index]; }

private:
    std::array<QRgb, 256> m_colours;
};

} // namespace monitor
