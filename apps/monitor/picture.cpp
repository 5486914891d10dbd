#include "apps/monitor/picture.h"

#include "apps/monitor/axisticks.h"
#include "apps/monitor/peaks.h"
#include "apps/monitor/picture_p.h"

#include <algorithm>
#include <cmath>

namespace monitor {
namespace {

constexpr double kUsualWidth = 1600.0, kUsualHeight = 1000.0;
constexpr double kCurveShare = 0.46; // of the height that both panes share

/// The widest of the levels: the noise floor stands a little above the bottom, and the strongest
/// signal leaves room for its label.
LevelAxis levelAxisFor(const SpectrumDisplay &display, const std::vector<float> &mean)
{
    const double weakest =
        std::fmin(levelQuantile(mean, 0.01), levelQuantile(display.latest(), 0.05));
    const double strongest =
        std::fmax(levelQuantile(display.highest(), 1.0), levelQuantile(display.latest(), 1.0));
    if (!std::isfinite(weakest) || !std::isfinite(strongest))
        return {0.0, 100.0};
    const double span = std::max(strongest - weakest, 10.0);
    const double step = ticksFor(0.0, span, 8).step;
    return {step * std::floor((weakest - 0.06 * span) / step),
            step * std::ceil((weakest + 1.16 * span) / step)};
}

/// Levels of the waterfall as it is painted: a column holds the strongest of its pixels, whose
/// noise lies higher than that of the mean.
std::vector<float> paintedLevels(const Scene &scene)
{
    constexpr std::size_t kRows = 64; // enough to tell the noise
    const auto &rows = scene.display.history().rows();
    std::vector<float> levels;
    for (std::size_t row = 0; row < rows.size(); row += rows.size() / kRows + 1) {
        const auto columns =
            foldToColumns(rows[row].levels, std::size_t(std::max(1.0, scene.waterfall.width())));
        levels.insert(levels.end(), columns.begin(), columns.end());
    }
    return levels;
}

/// Noise begins at black, so that it stays dark and weak signals show.
LevelAxis colourAxisFor(const Scene &scene)
{
    const double floorLevel = levelQuantile(paintedLevels(scene), 0.1);
    const double strongest = levelQuantile(scene.display.highest(), 0.999);
    if (!std::isfinite(floorLevel) || !std::isfinite(strongest))
        return {0.0, 100.0};
    const double low = std::floor(floorLevel);
    return {low, std::ceil(std::max(strongest, low + 10.0))};
}

void layOut(Scene &scene, const QSize &size)
{
    const double s = scene.scale;
    const double left = 84.0 * s, right = 92.0 * s, top = 84.0 * s, gap = 46.0 * s,
                 bottom = 26.0 * s;
    const double width = std::max(1.0, size.width() - left - right);
    const double height = std::max(2.0, size.height() - top - gap - bottom);
    const double curveHeight = std::max(1.0, std::round(kCurveShare * height));
    scene.curve = QRectF(left, top, width, curveHeight).toAlignedRect();
    scene.waterfall =
        QRectF(left, top + curveHeight + gap, width, std::max(1.0, height - curveHeight))
            .toAlignedRect();
    scene.colourBar = QRectF(scene.waterfall.right() + 18.0 * s, scene.waterfall.top(), 16.0 * s,
                             scene.waterfall.height());
}

} // namespace

double Scene::pixelWidthHz() const
{
    return display.pixels() == 0
               ? 1.0
               : (display.stopHz() - display.startHz()) / double(display.pixels());
}

double Scene::xOfFrequency(double hz) const
{
    const double span = display.stopHz() - display.startHz();
    return curve.left() + (span > 0.0 ? (hz - display.startHz()) / span : 0.0) * curve.width();
}

double Scene::yOfLevel(double dbuv) const
{
    return curve.bottom() - std::clamp(curveAxis.share(dbuv), -0.1, 1.1) * curve.height();
}

QFont Scene::font(double size, bool bold) const
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(std::max(6, int(std::lround(size * scale))));
    font.setBold(bold);
    return font;
}

Scene makeScene(const SpectrumDisplay &display, const Caption &caption, const QSize &size)
{
    Scene scene{display, caption, display.mean(), {}, {}, {}, 1.0, {}, {}, {}};
    scene.curveAxis = levelAxisFor(display, scene.mean);
    scene.scale =
        std::clamp(std::min(size.width() / kUsualWidth, size.height() / kUsualHeight), 0.6, 4.0);
    layOut(scene, size);
    scene.colourAxis = colourAxisFor(scene);
    return scene;
}

std::vector<float> foldToColumns(std::span<const float> levels, std::size_t columns)
{
    std::vector<float> folded(columns, std::nanf(""));
    if (levels.empty())
        return folded;
    for (std::size_t column = 0; column < columns; ++column) {
        const std::size_t first = column * levels.size() / columns;
        const std::size_t behind = std::max(first + 1, (column + 1) * levels.size() / columns);
        for (std::size_t i = first; i < behind; ++i)
            folded[column] = std::fmax(folded[column], levels[i]);
    }
    return folded;
}

QImage paintPicture(const SpectrumDisplay &display, const Caption &caption, const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        return image;
    image.fill(Theme::background);
    const Scene scene = makeScene(display, caption, size);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.fillRect(scene.curve, Theme::pane);
    painter.fillRect(scene.waterfall, Theme::pane);
    paintWaterfall(painter, scene);
    paintFrequencyAxis(painter, scene);
    paintLevelAxis(painter, scene);
    paintTimeAxis(painter, scene);
    paintColourBar(painter, scene);
    paintCurves(painter, scene);
    paintPeakLabels(painter, scene);
    paintLegend(painter, scene);
    paintTitle(painter, scene, size);
    return image;
}

} // namespace monitor
