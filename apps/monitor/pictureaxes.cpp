#include "apps/monitor/axisticks.h"
#include "apps/monitor/picture_p.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>

namespace monitor {
namespace {

/// A line of one device pixel: without antialiasing it would smear over two.
void thinLine(QPainter &painter, double x1, double y1, double x2, double y2)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.drawLine(QLineF(x1, y1, x2, y2));
    painter.restore();
}

void frame(QPainter &painter, const QRectF &rect)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(Theme::frame);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect.adjusted(-1.0, -1.0, 0.0, 0.0));
    painter.restore();
}

void axisTitle(QPainter &painter, const Scene &scene, const QRectF &pane, const QString &text)
{
    painter.save();
    painter.setFont(scene.font(13));
    painter.setPen(Theme::quietText);
    painter.translate(18.0 * scene.scale, pane.center().y());
    painter.rotate(-90.0);
    painter.drawText(
        QRectF(-0.5 * pane.height(), -10.0 * scene.scale, pane.height(), 20.0 * scene.scale),
        Qt::AlignCenter, text);
    painter.restore();
}

/// A label that ends at \a right, centred on \a y.
void labelLeftOf(QPainter &painter, const Scene &scene, double right, double y, const QString &text)
{
    painter.setPen(Theme::text);
    painter.drawText(QRectF(0.0, y - 10.0 * scene.scale, right, 20.0 * scene.scale),
                     Qt::AlignRight | Qt::AlignVCenter, text);
}

int ticksThatFit(double extent, double distance) { return std::max(1, int(extent / distance)); }

QString endTime(const RowHistory &history)
{
    if (history.rows().empty())
        return QString();
    const auto ms = qint64(history.rows().back().last / 1000);
    return QDateTime::fromMSecsSinceEpoch(ms, Qt::UTC)
        .toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

QString figures(const Scene &scene)
{
    const Caption &caption = scene.caption;
    const double span = scene.display.stopHz() - scene.display.startHz();
    QStringList parts{caption.source, QStringLiteral("span ") + frequencyText(span, span / 1000.0),
                      countText(caption.channels, "channel")};
    if (caption.scansPerSecond > 0.0) {
        const double rate = caption.scansPerSecond;
        parts << (rate < 100.0 ? QString::number(rate, 'f', 1)
                               : groupedNumber(quint64(std::llround(rate)))) +
                     QStringLiteral(" scans/s");
    }
    parts << countText(caption.lines, "line");
    if (caption.lostMessages > 0)
        parts << countText(caption.lostMessages, "message") + QStringLiteral(" lost");
    return parts.join(QStringLiteral("   ·   "));
}

} // namespace

void paintTitle(QPainter &painter, const Scene &scene, const QSize &size)
{
    const double s = scene.scale;
    const double resolution = (scene.display.stopHz() - scene.display.startHz()) / 1000.0;
    const EngineeringUnit unit = frequencyUnit(scene.display.startHz(), scene.display.stopHz());
    const QString range =
        tickLabel(scene.display.startHz(), resolution, unit) + QStringLiteral(" – ") +
        tickLabel(scene.display.stopHz(), resolution, unit) + QLatin1Char(' ') + unit.name;
    const QRectF line(scene.curve.left(), 12.0 * s, size.width() - scene.curve.left() - 24.0 * s,
                      26.0 * s);
    painter.setFont(scene.font(19, true));
    painter.setPen(Theme::text);
    const bool known = scene.display.pixels() > 0;
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                     known ? range : QStringLiteral("No spectrum received"));
    painter.setFont(scene.font(13));
    painter.setPen(Theme::quietText);
    const QString end = endTime(scene.display.history());
    if (!end.isEmpty())
        painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, end + QStringLiteral(" UTC"));
    painter.drawText(line.translated(0.0, 28.0 * s), Qt::AlignLeft | Qt::AlignVCenter,
                     known ? figures(scene) : scene.caption.source);
}

void paintFrequencyAxis(QPainter &painter, const Scene &scene)
{
    const double s = scene.scale;
    const double start = scene.display.startHz(), stop = scene.display.stopHz();
    const EngineeringUnit unit = frequencyUnit(start, stop);
    const Ticks ticks = ticksFor(start, stop, ticksThatFit(scene.curve.width(), 105.0 * s));
    const double middle = 0.5 * (scene.curve.bottom() + scene.waterfall.top());
    painter.setFont(scene.font(13));
    for (const double hz : ticks.values) {
        const double x = std::round(scene.xOfFrequency(hz));
        painter.setPen(Theme::grid);
        thinLine(painter, x, scene.curve.top(), x, scene.curve.bottom());
        painter.setPen(Theme::frame);
        thinLine(painter, x, scene.curve.bottom(), x, scene.curve.bottom() + 5.0 * s);
        thinLine(painter, x, scene.waterfall.top() - 6.0 * s, x, scene.waterfall.top() - 1.0);
        painter.setPen(Theme::text);
        painter.drawText(QRectF(x - 80.0 * s, middle - 12.0 * s, 160.0 * s, 24.0 * s),
                         Qt::AlignCenter, tickLabel(hz, ticks.step, unit));
    }
    painter.setPen(Theme::quietText);
    painter.drawText(QRectF(scene.curve.right() + 18.0 * s, middle - 12.0 * s, 60.0 * s, 24.0 * s),
                     Qt::AlignLeft | Qt::AlignVCenter, unit.name);
    frame(painter, scene.curve);
    frame(painter, scene.waterfall);
}

void paintLevelAxis(QPainter &painter, const Scene &scene)
{
    const Ticks ticks = ticksFor(scene.curveAxis.low, scene.curveAxis.high,
                                 ticksThatFit(scene.curve.height(), 36.0 * scene.scale));
    painter.setFont(scene.font(13));
    for (const double level : ticks.values) {
        const double y = std::round(scene.yOfLevel(level));
        painter.setPen(Theme::grid);
        thinLine(painter, scene.curve.left(), y, scene.curve.right(), y);
        labelLeftOf(painter, scene, scene.curve.left() - 9.0 * scene.scale, y,
                    tickLabel(level, ticks.step, {}));
    }
    axisTitle(painter, scene, scene.curve, QStringLiteral("Level [dBµV]"));
}

void paintTimeAxis(QPainter &painter, const Scene &scene)
{
    const double seconds = waterfallSeconds(scene.display.history());
    const EngineeringUnit unit = durationUnit(seconds);
    const QRectF &pane = scene.waterfall;
    axisTitle(painter, scene, pane, QStringLiteral("Age [%1]").arg(unit.name));
    if (!(seconds > 0.0))
        return;
    const Ticks ticks =
        ticksFor(0.0, seconds / unit.divisor, ticksThatFit(pane.height(), 44.0 * scene.scale));
    painter.setFont(scene.font(13));
    for (const double age : ticks.values) {
        const double y = pane.top() + age * unit.divisor / seconds * pane.height();
        painter.setPen(Theme::frame);
        thinLine(painter, pane.left() - 6.0 * scene.scale, y, pane.left() - 1.0, y);
        labelLeftOf(painter, scene, pane.left() - 9.0 * scene.scale, y,
                    tickLabel(age, ticks.step, {}));
    }
}

void paintColourBar(QPainter &painter, const Scene &scene)
{
    const QRectF &bar = scene.colourBar;
    const int height = std::max(1, int(bar.height()));
    QImage column(1, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        column.setPixel(0, y, scene.colours.at(1.0 - (y + 0.5) / height));
    painter.drawImage(bar, column);
    frame(painter, bar);
    const LevelAxis &axis = scene.colourAxis;
    const Ticks ticks =
        ticksFor(axis.low, axis.high, ticksThatFit(bar.height(), 40.0 * scene.scale));
    painter.setFont(scene.font(12));
    for (const double level : ticks.values) {
        const double y = bar.bottom() - axis.share(level) * bar.height();
        painter.setPen(Theme::frame);
        thinLine(painter, bar.right(), y, bar.right() + 4.0 * scene.scale, y);
        painter.setPen(Theme::text);
        painter.drawText(QRectF(bar.right() + 8.0 * scene.scale, y - 10.0 * scene.scale,
                                60.0 * scene.scale, 20.0 * scene.scale),
                         Qt::AlignLeft | Qt::AlignVCenter, tickLabel(level, ticks.step, {}));
    }
    painter.setPen(Theme::quietText);
    painter.drawText(QRectF(bar.left(), bar.bottom() + 4.0 * scene.scale, 70.0 * scene.scale,
                            18.0 * scene.scale),
                     Qt::AlignLeft | Qt::AlignVCenter, QStringLiteral("dBµV"));
}

} // namespace monitor
