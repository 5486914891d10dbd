#include "platform/axis/axisdefinition.h"
#include "platform/base/bytes.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

constexpr double kInfinite = std::numeric_limits<double>::infinity();

axisDefinition axisOf(double min, double max, short pixels)
{
    axisDefinition axis;
    EXPECT_EQ(axis.init(min, max, pixels), 0);
    return axis;
}

TEST(Axis, GivesEachPixelAHalfOpenStretch)
{
    struct Case {
        const char *name;
        double min, max;
        short pixels;
        double value;
        int pixel;
        bool inside;
    };
    for (const Case &c : {Case{"minimum", 10, 20, 10, 10, 0, true},
                          {"inside", 10, 20, 10, 13.5, 3, true},
                          {"a pixel's start belongs to it", 10, 20, 10, 14, 4, true},
                          {"just below a start", 10, 20, 10, std::nextafter(14.0, 0.0), 3, true},
                          {"maximum belongs to the last", 10, 20, 10, 20, 9, true},
                          {"below", 10, 20, 10, 9.9, 0, false},
                          {"above", 10, 20, 10, 20.1, 9, false},
                          {"no number", 10, 20, 10, std::nan(""), 0, false},
                          {"a start that the width's rounding would miss", 0, 1, 10, 0.3, 3, true},
                          {"negative limits", -180, 180, 360, -0.5, 179, true},
                          {"one pixel", 1e7, 1.1e7, 1, 1.1e7, 0, true}}) {
        SCOPED_TRACE(c.name);
        const axisDefinition axis = axisOf(c.min, c.max, c.pixels);
        bool inside = !c.inside;
        EXPECT_EQ(axis.ToPixel(c.value, inside), c.pixel);
        EXPECT_EQ(inside, c.inside);
        EXPECT_EQ(axis.InRange(c.value), c.inside ? 0 : -1);
    }
}

TEST(Axis, FindsThePixelOfItsOwnStartsAndCentres)
{
    for (const auto &axis : {axisOf(1e7, 1.1e7, 1000), axisOf(-1.0, 1.0, 7), axisOf(0.1, 0.7, 999),
                             axisOf(8.8e7, 1.0800000001e8, 32767), axisOf(-1e-300, 1e300, 2)}) {
        bool inside = false;
        int last = -1;
        for (int pixel = 0; pixel < axis.GetPixelCnt(); ++pixel) {
            ASSERT_EQ(axis.ToPixel(axis.GetPixelStart(pixel), inside), pixel);
            ASSERT_EQ(axis.ToPixel(axis.GetPixelCenter(pixel), inside), pixel);
            ASSERT_GT(pixel, last);
            last = pixel;
        }
        EXPECT_EQ(axis.GetPixelStart(axis.GetPixelCnt()), axis.GetMax());
    }
}

TEST(Axis, ClipsAPairOfValues)
{
    struct Case {
        const char *name;
        double from, to;
        bool hit;
        int fromPixel, toPixel;
    };
    const axisDefinition axis = axisOf(10, 20, 10);
    for (const Case &c : {Case{"inside", 11, 15, true, 1, 5},
                          {"wider than the axis", 0, 99, true, 0, 9},
                          {"over the lower end", 5, 12, true, 0, 2},
                          {"touches the upper end", 20, 30, true, 9, 9},
                          {"falling", 15, 11, true, 5, 1},
                          {"below", 1, 9.9, false, -7, -7},
                          {"above", 20.1, 30, false, -7, -7},
                          {"no number", 12, std::nan(""), false, -7, -7}}) {
        SCOPED_TRACE(c.name);
        int from = -7, to = -7;
        EXPECT_EQ(axis.ToPixels(c.from, c.to, from, to), c.hit);
        EXPECT_EQ(from, c.fromPixel);
        EXPECT_EQ(to, c.toPixel);
    }
}

TEST(Axis, RefusesWhatMakesNoAxisAndStaysAsItWas)
{
    axisDefinition axis = axisOf(10, 20, 10);
    const axisDefinition before = axis;
    struct Case {
        double min, max;
        short pixels;
    };
    for (const Case &c : {Case{20, 10, 10},
                          {10, 10, 10},
                          {10, 20, 0},
                          {10, 20, -1},
                          {std::nan(""), 20, 10},
                          {10, kInfinite, 10},
                          {-1e308, 1e308, 10},
                          {0, 1e307, 32767}}) {
        EXPECT_EQ(axis.init(c.min, c.max, c.pixels), -1);
        AxisData data;
        data.min = c.min;
        data.max = c.max;
        data.pixelCount = c.pixels;
        EXPECT_FALSE(axis.ApplyAxisDefinitionSet(data));
        EXPECT_EQ(axis, before);
    }
}

TEST(Axis, IsInvalidWhileItsLimitsMakeNone)
{
    axisDefinition axis;
    bool inside = true;
    EXPECT_FALSE(axis.valid());
    EXPECT_EQ(axis.ToPixel(0, inside), -1);
    EXPECT_FALSE(inside);
    EXPECT_EQ(axis.InRange(0), -1);
    EXPECT_EQ(axis.GetStopPix(-1), -1);
    axis.SetMin(30);
    axis.SetPixelCnt(100000);
    EXPECT_FALSE(axis.valid());
    axis.SetMax(40);
    EXPECT_TRUE(axis.valid());
    EXPECT_EQ(axis.GetPixelCnt(), 32767);
    axis.SetPixelCnt(-5);
    EXPECT_FALSE(axis.valid());
    axis.SetPixelCnt(10);
    axis.invalidate();
    EXPECT_FALSE(axis.valid());
    EXPECT_TRUE(axis.GetPixSections().empty());
    EXPECT_TRUE(axis.recalc());
}

TEST(Axis, IsOneSectionAndTakesNoOthers)
{
    axisDefinition axis = axisOf(10, 20, 10);
    EXPECT_EQ(axis.GetMin(0), 10);
    EXPECT_EQ(axis.GetMax(0), 20);
    EXPECT_TRUE(std::isnan(axis.GetMin(1)));
    EXPECT_EQ(axis.GetStartPix(0), 0);
    EXPECT_EQ(axis.GetStopPix(0), 9);
    EXPECT_EQ(axis.GetStopPix(1), -1);
    EXPECT_EQ(axis.GetBasePoints(), (std::set<double>{10, 20}));
    EXPECT_EQ(axis.GetPixSections().size(), 1U);
    section stretches;
    EXPECT_TRUE(axis.SetZoomSection(stretches));
    EXPECT_EQ(stretches.hash(), 0.0);
    stretches.Add(12, 14, 2.0);
    EXPECT_FALSE(axis.SetZoomSection(stretches));
    EXPECT_FALSE(axis.SetSuppressSection(stretches));
    EXPECT_FALSE(axis.AddSuppress(12, 14, 0.5, false));
    EXPECT_TRUE(axis.GetZoomSection().empty());
    section others;
    others.Add(12, 14, 3.0);
    EXPECT_NE(stretches.hash(), others.hash());
    EXPECT_NE(stretches.hash(), 0.0);
    AxisData foreign = axis.GetAxisDefinitionSet(true);
    foreign.sectionHash = stretches.hash();
    EXPECT_FALSE(axis.ApplyAxisDefinitionSet(foreign));
}

TEST(AxisData, HasTheBytesWrittenDown)
{
    axisDefinition axis = axisOf(1.0, 2.5, 1000);
    axis.SetSkipSuppressRanges(true);
    const AxisData data = axis.GetAxisDefinitionSet(true);
    const std::string expected("\x00\x00\x00\x00\x00\x00\xf0\x3f"
                               "\x00\x00\x00\x00\x00\x00\x04\x40"
                               "\xe8\x03\x01\x00\x00\x00\x00\x00"
                               "\x00\x00\x00\x00\x00\x00\x00\x00",
                               32);
    char image[AxisData::kImageSize];
    EXPECT_EQ(data.ToBinary(image), image + sizeof image);
    EXPECT_EQ(std::string(image, sizeof image), expected);

    const char *cursor = expected.data();
    axisDefinition other;
    EXPECT_TRUE(other.ApplyAxisDefinitionSet(AxisData::FromBinary(&cursor)));
    EXPECT_EQ(cursor, expected.data() + 32);
    EXPECT_EQ(other, axis);
}

} // namespace
