#pragma once

#include "apps/monitor/colourmap.h"
#include "apps/monitor/picture.h"

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QRectF>

#include <cstddef>
#include <span>
#include <vector>

/// What the parts of a picture share: where things stand, what is on the axes, and the colours.
namespace monitor {

namespace Theme {
inline const QColor background{0x0e, 0x12, 0x18};
inline const QColor pane{0x13, 0x19, 0x22};
inline const QColor frame{0x46, 0x52, 0x62};
inline const QColor grid{0x8f, 0xa3, 0xbd, 38};
inline const QColor text{0xe6, 0xec, 0xf3};
inline const QColor quietText{0x9a, 0xa8, 0xb9};
inline const QColor mean{0x7f, 0xe3, 0xff};
inline const QColor highest{0xff, 0xb4, 0x54, 190};
inline const QColor latest{0x9a, 0xa8, 0xb9, 105};
} // namespace Theme

struct LevelAxis {
    double low = 0.0;
    double high = 1.0;
    double share(double level) const { return (level - low) / (high - low); }
};

/// Everything that the painting functions need; made once a picture.
struct Scene {
    const SpectrumDisplay &display;
    const Caption &caption;
    std::vector<float> mean;
    LevelAxis curveAxis;  ///< the level axis of the curves
    LevelAxis colourAxis; ///< the levels of the colour map's ends
    ColourMap colours;
    double scale = 1.0; ///< of texts and margins; 1 for a picture of usual size
    QRectF curve, waterfall, colourBar;

    double xOfFrequency(double hz) const;
    double yOfLevel(double dbuv) const;
    double pixelWidthHz() const;
    QFont font(double size, bool bold = false) const;
};

Scene makeScene(const SpectrumDisplay &display, const Caption &caption, const QSize &size);

/// The highest level of each of \a columns columns that divide \a levels evenly; NaN where nothing
/// is known. With more columns than levels, each level fills several.
std::vector<float> foldToColumns(std::span<const float> levels, std::size_t columns);

void paintTitle(QPainter &painter, const Scene &scene, const QSize &size);
void paintFrequencyAxis(QPainter &painter, const Scene &scene);
void paintLevelAxis(QPainter &painter, const Scene &scene);
void paintTimeAxis(QPainter &painter, const Scene &scene);
void paintColourBar(QPainter &painter, const Scene &scene);
void paintCurves(QPainter &painter, const Scene &scene);
void paintPeakLabels(QPainter &painter, const Scene &scene);
void paintLegend(QPainter &painter, const Scene &scene);
void paintWaterfall(QPainter &painter, const Scene &scene);

/// Seconds that the waterfall spans from top to bottom; 0 without rows.
double waterfallSeconds(const RowHistory &history);

} // namespace monitor
