#include "apps/monitor/axisticks.h"
#include "apps/monitor/peaks.h"
#include "apps/monitor/picture_p.h"

#include <QLinearGradient>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace monitor {
namespace {

constexpr std::size_t kMostLabels = 7;
constexpr double kLabelProminenceDb = 6.0;

/// Runs of points between holes.
using Lines = std::vector<QPolygonF>;

/// The curve as lines through the middles of its columns; where a pixel is several columns wide, as
/// steps, which show how wide a channel is.
Lines curveLines(const Scene &scene, std::span<const float> levels)
{
    const auto columns = std::min<std::size_t>(levels.size(), std::size_t(scene.curve.width()));
    const std::vector<float> folded = foldToColumns(levels, columns);
    const double width = scene.curve.width() / double(std::max<std::size_t>(columns, 1));
    const double half = width >= 4.0 ? 0.5 * width : 0.0;
    Lines lines;
    bool open = false;
    for (std::size_t i = 0; i < columns; ++i) {
        if (std::isnan(folded[i])) {
            open = false;
            continue;
        }
        if (!open)
            lines.emplace_back();
        open = true;
        const double x = scene.curve.left() + (double(i) + 0.5) * width;
        const double y = scene.yOfLevel(folded[i]);
        lines.back() << QPointF(x - half, y);
        if (half > 0.0)
            lines.back() << QPointF(x + half, y);
    }
    return lines;
}

void drawLines(QPainter &painter, const Lines &lines, const QColor &colour, double width)
{
    painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const QPolygonF &line : lines) {
        painter.drawPolyline(line);
        if (line.size() == 1)
            painter.drawPoint(line.front());
    }
}

/// The area below the mean in the waterfall's colours ties the two panes together.
void fillBelow(QPainter &painter, const Scene &scene, const Lines &lines)
{
    QLinearGradient gradient(0.0, scene.yOfLevel(scene.colourAxis.high), 0.0,
                             scene.yOfLevel(scene.colourAxis.low));
    for (int i = 0; i <= 16; ++i) {
        QColor colour = QColor::fromRgb(scene.colours.at(1.0 - i / 16.0));
        colour.setAlphaF(0.42);
        gradient.setColorAt(i / 16.0, colour);
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    for (QPolygonF area : lines) {
        area << QPointF(area.back().x(), scene.curve.bottom())
             << QPointF(area.front().x(), scene.curve.bottom());
        painter.drawPolygon(area);
    }
    painter.setBrush(Qt::NoBrush);
}

/// The strongest level between two places of the curve.
double topBetween(const Scene &scene, double left, double right)
{
    const auto &highest = scene.display.highest();
    const auto pixelAt = [&](double x) {
        const double share = (x - scene.curve.left()) / scene.curve.width();
        return std::size_t(std::clamp(share, 0.0, 1.0) * double(highest.size()));
    };
    float top = std::nanf("");
    for (std::size_t i = pixelAt(left); i < std::min(pixelAt(right) + 1, highest.size()); ++i)
        top = std::fmax(top, highest[i]);
    return double(top);
}

/// Paints what a peak is called, clear of the traces around it, unless a label in \a taken is
/// there.
void paintLabel(QPainter &painter, const Scene &scene, const Peak &peak, std::vector<QRectF> &taken)
{
    const double s = scene.scale;
    // The middle of a pixel needs one digit more than its width.
    const double resolution = std::min(0.1 * scene.pixelWidthHz(), 1e6);
    const QString frequency = frequencyText(peak.frequencyHz, resolution);
    const QString level = QString::number(peak.levelDbuv, 'f', 1) + QStringLiteral(" dBµV");
    painter.setFont(scene.font(11));
    const double width = std::max(painter.fontMetrics().horizontalAdvance(frequency),
                                  painter.fontMetrics().horizontalAdvance(level)) +
                         4.0;
    const double line = 14.0 * s, least = scene.curve.left() + 2.0;
    const double x = scene.xOfFrequency(peak.frequencyHz);
    const double left =
        std::clamp(x - 0.5 * width, least, std::max(least, scene.curve.right() - width - 2.0));
    const double top = std::fmax(topBetween(scene, left, left + width), peak.levelDbuv);
    const double y =
        std::max(scene.yOfLevel(top) - 5.0 * s, scene.curve.top() + 2.0 * line + 9.0 * s);
    const QRectF box(left, y - 7.0 * s - 2.0 * line, width, 2.0 * line);
    for (const QRectF &other : taken)
        if (other.intersects(box))
            return;
    taken.push_back(box);
    const double own =
        scene.yOfLevel(std::fmax(scene.display.highest()[peak.pixel], peak.levelDbuv));
    painter.setPen(QPen(Theme::quietText, 1.0, Qt::DotLine));
    if (own > y + 8.0 * s)
        painter.drawLine(QPointF(x, y), QPointF(x, own));
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::text);
    painter.drawPolygon(
        QPolygonF({{x - 4.0 * s, y - 6.0 * s}, {x + 4.0 * s, y - 6.0 * s}, {x, y}}));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(Theme::text);
    painter.drawText(box.adjusted(0.0, 0.0, 0.0, -line), Qt::AlignCenter, frequency);
    painter.setPen(Theme::quietText);
    painter.drawText(box.adjusted(0.0, line, 0.0, 0.0), Qt::AlignCenter, level);
}

} // namespace

void paintCurves(QPainter &painter, const Scene &scene)
{
    painter.save();
    painter.setClipRect(scene.curve);
    const Lines mean = curveLines(scene, scene.mean);
    fillBelow(painter, scene, mean);
    drawLines(painter, curveLines(scene, scene.display.latest()), Theme::latest, 1.0);
    drawLines(painter, curveLines(scene, scene.display.highest()), Theme::highest, 1.0);
    drawLines(painter, mean, Theme::mean, 1.4 * scene.scale);
    painter.restore();
}

void paintPeakLabels(QPainter &painter, const Scene &scene)
{
    const SpectrumDisplay &display = scene.display;
    const auto peaks = strongestPeaks(scene.mean, display.startHz(), display.stopHz(), 200);
    const double labelWidth = 110.0 * scene.scale;
    const auto separation =
        std::size_t(labelWidth / scene.curve.width() * double(display.pixels())) + 1;
    std::vector<QRectF> taken;
    for (const Peak &peak : labelledPeaks(peaks, levelQuantile(scene.mean, 0.2), kLabelProminenceDb,
                                          separation, kMostLabels))
        paintLabel(painter, scene, peak, taken);
}

void paintLegend(QPainter &painter, const Scene &scene)
{
    struct Entry {
        const char *name;
        QColor colour;
    };
    const double s = scene.scale;
    painter.setFont(scene.font(12));
    double right = scene.curve.right();
    const double y = scene.curve.top() - 13.0 * s;
    for (const auto &[name, colour] :
         {Entry{"latest", Theme::latest}, Entry{"highest", Theme::highest},
          Entry{"mean", Theme::mean}}) {
        const QString text = QString::fromLatin1(name);
        const double width = painter.fontMetrics().horizontalAdvance(text);
        painter.setPen(Theme::quietText);
        painter.drawText(QRectF(right - width, y - 10.0 * s, width + 2.0, 20.0 * s),
                         Qt::AlignLeft | Qt::AlignVCenter, text);
        painter.setPen(QPen(colour, 2.0 * s));
        painter.drawLine(QPointF(right - width - 30.0 * s, y), QPointF(right - width - 8.0 * s, y));
        right -= width + 48.0 * s;
    }
}

} // namespace monitor
