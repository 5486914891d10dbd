#include "apps/monitor/picture.h"
#include "apps/monitor/picture_p.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <set>

namespace {

using namespace monitor;

constexpr double kStart = 88e6, kStop = 108e6;
constexpr KRTimeStamp kNoon = 1'795'262'400'000'000; // 2026-11-21 12:00:00 UTC

/// Noise, and a station of 72 dBuV at half of the band.
void fillBand(SpectrumDisplay &display, std::size_t pixels, int rows)
{
    std::mt19937 random(7);
    std::uniform_real_distribution<float> noise(0.0F, 20.0F);
    display.setAxis(kStart, kStop, pixels);
    std::vector<float> levels(pixels);
    for (int row = 0; row < rows; ++row) {
        for (float &level : levels)
            level = noise(random);
        std::fill_n(levels.begin() + std::ptrdiff_t(pixels) / 2 - 4, 8, 72.0F);
        display.addRow(kNoon + KRTimeStamp(row) * 40'000, levels);
        display.setLatest(levels);
    }
    display.finishRow();
}

Caption caption() { return {QStringLiteral("tcp://127.0.0.1:40123"), 10000, 25.0, 400, 0}; }

/// Number of different colours in a part of an image: 1 is a blank.
std::size_t coloursIn(const QImage &image, const QRectF &part)
{
    std::set<QRgb> colours;
    const QRect rect = part.toAlignedRect().intersected(image.rect());
    for (int y = rect.top(); y <= rect.bottom(); ++y)
        for (int x = rect.left(); x <= rect.right(); ++x)
            colours.insert(image.pixel(x, y));
    return colours.size();
}

TEST(Picture, HasAxesOnAllSidesAndFollowsTheData)
{
    SpectrumDisplay display;
    fillBand(display, 2000, 400);
    const QSize size(1600, 1000);
    const QImage image = paintPicture(display, caption(), size);
    ASSERT_EQ(image.size(), size);
    const Scene scene = makeScene(display, caption(), size);
    const QRectF curve = scene.curve, waterfall = scene.waterfall;
    const struct {
        const char *name;
        QRectF part;
    } parts[] = {
        {"title", QRectF(curve.left(), 0, curve.width(), 60)},
        {"level axis", QRectF(30, curve.top(), curve.left() - 34, curve.height())},
        {"frequency axis", QRectF(curve.left(), curve.bottom() + 8, curve.width(), 26)},
        {"time axis", QRectF(30, waterfall.top(), curve.left() - 34, waterfall.height())},
        {"colour bar", scene.colourBar},
        {"colour bar's labels", QRectF(scene.colourBar.right() + 6, waterfall.top(), 60, 300)},
        {"curve", curve},
    };
    for (const auto &[name, part] : parts)
        EXPECT_GT(coloursIn(image, part), 8u) << name;

    // The station at half of the band is the strongest: its column has the top of the colour map.
    const int y = int(waterfall.center().y());
    const int station = int(scene.xOfFrequency(98e6));
    EXPECT_GT(qGreen(image.pixel(station, y)), 200);
    EXPECT_LT(qGreen(image.pixel(station + 60, y)), 80) << "noise is dark";
    // Its curve reaches the level that the axis tells.
    const int top = int(scene.yOfLevel(72.0));
    EXPECT_GT(coloursIn(image, QRectF(station - 3, top - 3, 6, 6)), 3u);
}

TEST(Picture, NewestScanStandsAtTheTopAndPausesStayEmpty)
{
    SpectrumDisplay display;
    display.setAxis(kStart, kStop, 100);
    const std::vector<float> quiet(100, 10.0F), loud(100, 60.0F);
    for (int row = 0; row < 20; ++row)
        display.addRow(kNoon + KRTimeStamp(row) * 100'000, quiet);
    for (int row = 0; row < 20; ++row)
        display.addRow(kNoon + 18'000'000 + KRTimeStamp(row) * 100'000, loud);
    display.finishRow();
    const QSize size(800, 600);
    const QImage image = paintPicture(display, caption(), size);
    const QRectF pane = makeScene(display, caption(), size).waterfall;
    const int x = int(pane.center().x());
    const QRgb newest = image.pixel(x, int(pane.top()) + 3);
    const QRgb oldest = image.pixel(x, int(pane.bottom()) - 3);
    EXPECT_GT(qRed(newest), qRed(oldest) + 50);
    EXPECT_EQ(image.pixel(x, int(pane.center().y())), Theme::pane.rgb());
    EXPECT_NE(oldest, Theme::pane.rgb());
}

TEST(Picture, StandsAnyDisplay)
{
    const float nothing = std::numeric_limits<float>::quiet_NaN();
    const struct {
        const char *name;
        std::vector<float> row;
        int rows;
        QSize size;
    } cases[] = {
        {"no pixels", {}, 0, {640, 480}},
        {"no rows", std::vector<float>(500, 1.0F), 0, {640, 480}},
        {"one pixel, one row", {42.0F}, 1, {640, 480}},
        {"a few wide channels", {20, 25, 50, nothing, 22, 60, 21, 20, 19, 30}, 3, {800, 600}},
        {"only holes", std::vector<float>(50, nothing), 5, {640, 480}},
        {"one level", std::vector<float>(4000, -7.0F), 3000, {320, 240}},
        {"huge numbers", {1e30F, -1e30F, 0.0F}, 2, {640, 480}},
        {"a tiny picture", std::vector<float>(4000, 12.0F), 10, {1, 1}},
        {"a flat picture", std::vector<float>(4000, 12.0F), 10, {3000, 2}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        SpectrumDisplay display;
        if (!c.row.empty())
            display.setAxis(kStart, kStop, c.row.size());
        for (int row = 0; row < c.rows; ++row)
            display.addRow(kNoon + KRTimeStamp(row) * 1000, c.row);
        display.finishRow();
        const QImage image = paintPicture(display, Caption{}, c.size);
        EXPECT_EQ(image.size(), c.size);
    }
}

TEST(Picture, FoldingKeepsTheStrongestOfAColumn)
{
    const float nothing = std::numeric_limits<float>::quiet_NaN();
    const std::vector<float> levels{1, 7, 2, nothing, nothing, 5};
    EXPECT_EQ(foldToColumns(levels, 3)[0], 7.0F);
    EXPECT_EQ(foldToColumns(levels, 3)[1], 2.0F);
    EXPECT_EQ(foldToColumns(levels, 3)[2], 5.0F);
    EXPECT_EQ(foldToColumns(levels, 12)[3], 7.0F) << "a level fills several columns";
    EXPECT_TRUE(std::isnan(foldToColumns(levels, 6)[3]));
    EXPECT_TRUE(std::isnan(foldToColumns({}, 2)[1]));
}

TEST(ColourMap, LightnessRisesInEqualSteps)
{
    const ColourMap colours;
    double last = -1.0;
    for (int i = 0; i < 256; ++i) {
        const QRgb c = colours[static_cast<unsigned char>(i)];
        const double luma = 0.2126 * qRed(c) + 0.7152 * qGreen(c) + 0.0722 * qBlue(c);
        EXPECT_GT(luma, last - 0.8) << i; // rounding to bytes may cost a part of a step
        last = std::fmax(last, luma);
    }
    EXPECT_EQ(colours.at(-1.0), colours[0]);
    EXPECT_EQ(colours.at(std::nan("")), colours[0]);
    EXPECT_EQ(colours.at(9.0), colours[255]);
}

} // namespace
