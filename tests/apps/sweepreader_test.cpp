#include "apps/receiver/sweepreader.h"
#include "tests/apps/inputtools.h"

#include <QBuffer>

using namespace receiver;
using namespace receivertest;

namespace {

struct Sweeps {
    Grid grid;
    std::vector<Scan> scans;
    std::vector<std::string> notes;
    std::uint64_t broken = 0;
};

std::unique_ptr<SweepReader> open(const std::string &text, std::vector<std::string> *notes,
                                  double fullScale = 0)
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(text.data(), int(text.size()));
    buffer->open(QIODevice::ReadOnly);
    return std::make_unique<SweepReader>(std::move(buffer), QStringLiteral("a.csv"), fullScale,
                                         [notes](const QString &note) {
                                             if (notes)
                                                 notes->push_back(note.toStdString());
                                         });
}

Sweeps readSweeps(const std::string &text)
{
    Sweeps sweeps;
    const auto reader = open(text, &sweeps.notes);
    sweeps.grid = reader->grid();
    sweeps.scans = readAll(*reader);
    sweeps.broken = reader->brokenLines();
    return sweeps;
}

/// Levels as text, "-" for none: "1 2 - 4".
std::string levelsOf(const Scan &scan)
{
    std::string text;
    for (const float level : scan.levels)
        text += (text.empty() ? "" : " ") +
                (std::isnan(level) ? "-" : QString::number(level).toStdString());
    return text;
}

// 20 Msps, 20 points: 5 values of 1 MHz a line.
std::string hackrf(const char *time, int lowMhz, const char *levels)
{
    return "2026-11-21, " + std::string(time) + ", " + std::to_string(lowMhz) + "000000, " +
           std::to_string(lowMhz + 5) + "000000, 1000000.00, 20, " + levels + "\n";
}

std::string rtl(const char *time, const char *rest)
{
    return "2026-11-21, " + std::string(time) + ", " + rest + "\n";
}

} // namespace

struct GridCase {
    const char *name;
    std::string text;
    double firstCenter, step;
    std::uint32_t count;
    const char *levels;
};

TEST(SweepReader, PlacesTheChannelsOfEachWriter)
{
    const GridCase cases[] = {
        {"rtl_power centres a channel on the low end and repeats the last value",
         rtl("10:00:00", "1000, 1400, 100.00, 9, 1, 2, 3, 4, 4"), 1000, 100, 4, "1 2 3 4"},
        {"a fork that repeats nothing", rtl("10:00:00", "1000, 1400, 100.00, 9, 1, 2, 3, 3"), 1000,
         100, 4, "1 2 3 3"},
        {"hackrf_sweep has the lower edge there", hackrf("10:00:00.5", 100, "1, 2, 3, 4, 5"),
         100.5e6, 1e6, 5, "1 2 3 4 5"},
        {"the rounded step is worked out from the width",
         "2017-02-16, 09:41:03, 0, 5000000, 454545.45, 44, 1,2,3,4,5,6,7,8,9,10,11\n", 5e6 / 11 / 2,
         5e6 / 11, 11, "1 2 3 4 5 6 7 8 9 10 11"},
        {"a cropped hop has more values than its band",
         rtl("10:00:00", "1000, 1600, 100.00, 9, 1, 2, 3, 4, 5, 6, 7, 8, 8"), 900, 100, 8,
         "1 2 3 4 5 6 7 8"},
        {"one giant bin stands twice", rtl("10:00:00", "1000000, 3000000, 2000000.00, 9, 7, 7"),
         2e6, 2e6, 1, "7"},
        {"numbers as floats", rtl("10:00:00", "1e3, 1.4E3, 100.0, 9, 1, 2, 3, +4.5"), 1000, 100, 4,
         "1 2 3 4.5"},
        {"no value", rtl("10:00:00", "0, 60, 10, 9, -inf, nan, -nan, -nan(ind), inf, 6"), 0, 10, 6,
         "- - - - - 6"},
        {"equal gaps at the end are the repeat", rtl("10:00:00", "0, 20, 10, 9, 5, nan, nan"), 0,
         10, 2, "5 -"},
        {"line ends of the other system", "2026-11-21, 10:00:00, 0, 20, 10, 9, 5, 6\r\n", 0, 10, 2,
         "5 6"},
        {"a byte-order mark", "\xEF\xBB\xBF" + rtl("10:00:00", "0, 20, 10, 9, 5, 6, 6"), 0, 10, 2,
         "5 6"},
        {"a byte-order mark before a header",
         "\xEF\xBB\xBF"
         "date,time\n" +
             rtl("10:00:00", "0, 20, 10, 9, 5, 6, 6"),
         0, 10, 2, "5 6"},
        {"no line end at all", "2026-11-21,10:00:00,0,20,10,9,5,6", 0, 10, 2, "5 6"},
    };
    for (const GridCase &c : cases) {
        SCOPED_TRACE(c.name);
        const Sweeps sweeps = readSweeps(c.text);
        ASSERT_EQ(sweeps.grid.size(), 1u);
        EXPECT_NEAR(sweeps.grid[0].firstCenter, c.firstCenter, 1e-3);
        EXPECT_NEAR(sweeps.grid[0].step, c.step, 1e-6);
        EXPECT_EQ(sweeps.grid[0].count, c.count);
        ASSERT_EQ(sweeps.scans.size(), 1u);
        EXPECT_EQ(levelsOf(sweeps.scans[0]), c.levels);
        EXPECT_TRUE(sweeps.notes.empty());
    }
}

struct SweepCase {
    const char *name;
    std::string text;
    std::size_t ranges;
    std::vector<std::string> scans;
};

TEST(SweepReader, PutsHopsTogetherIntoSweeps)
{
    const SweepCase cases[] = {
        {"hops come out of order, the clock moves on inside a sweep",
         hackrf("10:00:00.1", 0, "1,1,1,1,1") + hackrf("10:00:00.1", 10, "3,3,3,3,3") +
             hackrf("10:00:00.2", 5, "2,2,2,2,2") + hackrf("10:00:00.2", 0, "4,4,4,4,4"),
         1,
         {"1 1 1 1 1 2 2 2 2 2 3 3 3 3 3", "4 4 4 4 4 - - - - - - - - - -"}},
        {"a sweep whose first line was lost begins with the hop that repeats",
         hackrf("10:00:00", 0, "1,1,1,1,1") + hackrf("10:00:00", 5, "2,2,2,2,2") +
             hackrf("10:00:00", 5, "3,3,3,3,3"),
         1,
         {"1 1 1 1 1 2 2 2 2 2", "- - - - - 3 3 3 3 3"}},
        {"a hop that the first sweep lost has its place in all",
         hackrf("10:00:00", 0, "1,1,1,1,1") + hackrf("10:00:01", 0, "2,2,2,2,2") +
             hackrf("10:00:01", 5, "3,3,3,3,3"),
         1,
         {"1 1 1 1 1 - - - - -", "2 2 2 2 2 3 3 3 3 3"}},
        {"rtl_power's clock ends a sweep",
         rtl("10:00:00", "0, 20, 10, 9, 1, 2, 2") + rtl("10:00:00", "20, 40, 10, 9, 3, 4, 4") +
             rtl("10:00:01", "20, 40, 10, 9, 5, 6, 6"),
         1,
         {"1 2 3 4", "- - 5 6"}},
        {"equal stamps, the first hop comes again",
         rtl("10:00:00", "0, 20, 10, 9, 1, 2, 2") + rtl("10:00:00", "0, 20, 10, 9, 3, 4, 4"),
         1,
         {"1 2", "3 4"}},
        {"two pieces of the band are two ranges",
         rtl("10:00:00", "500, 520, 10, 9, 1, 2, 2") + rtl("10:00:00", "0, 20, 10, 9, 3, 4, 4"),
         2,
         {"3 4 1 2"}},
        {"another step is another range",
         rtl("10:00:00", "0, 20, 10, 9, 1, 2, 2") + rtl("10:00:00", "20, 40, 20, 9, 3, 3"),
         2,
         {"1 2 3"}},
    };
    for (const SweepCase &c : cases) {
        SCOPED_TRACE(c.name);
        const Sweeps sweeps = readSweeps(c.text);
        EXPECT_EQ(sweeps.grid.size(), c.ranges);
        std::vector<std::string> scans;
        for (const Scan &scan : sweeps.scans)
            scans.push_back(levelsOf(scan));
        EXPECT_EQ(scans, c.scans);
    }
}

TEST(SweepReader, SkipsAndCountsBrokenLinesWithTheirNumbers)
{
    const std::string good = rtl("10:00:00", "0, 20, 10, 9, 1, 2, 2");
    struct {
        const char *name;
        std::string bad, note;
    } const cases[] = {
        {"cut off in the levels", "2026-11-21, 10:00:01, 0, 20, 10, 9, 1", "fewer levels"},
        {"cut off in the head", "2026-11-21, 10:00:01, 0, 20", "first six fields"},
        {"cut off in the date", "2026", "no date and time"},
        {"no levels", "2026-11-21, 10:00:01, 0, 20, 10, 9", "no levels"},
        {"a level that is no number", "2026-11-21, 10:00:01, 0, 20, 10, 9, 1, x2, 2", "no number"},
        {"an empty level", "2026-11-21, 10:00:01, 0, 20, 10, 9, 1, , 2", "no number"},
        {"too many levels", "2026-11-21, 10:00:01, 0, 20, 10, 9, 1, 2, 3, 4", "number of levels"},
        {"falling frequencies", "2026-11-21, 10:00:01, 20, 0, 10, 9, 1, 2, 2", "do not rise"},
        {"a step of nothing", "2026-11-21, 10:00:01, 0, 20, 0, 9, 1, 2, 2", "do not rise"},
        {"an endless frequency", "2026-11-21, 10:00:01, 0, inf, 10, 9, 1, 2", "first six fields"},
        {"no time", "2026-11-21, , 0, 20, 10, 9, 1, 2, 2", "date and time"},
        {"a day that never was", "2026-02-30, 10:00:01, 0, 20, 10, 9, 1, 2, 2", "date and time"},
        {"a second header", "date, time, low, high, step, samples, db", "first six fields"},
        {"bytes of another world", std::string("\0\xff,\x80,", 5), "first six fields"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const Sweeps sweeps = readSweeps("header\n" + good + c.bad + "\n" + good);
        EXPECT_EQ(sweeps.broken, 1u);
        EXPECT_EQ(sweeps.scans.size(), 2u);
        ASSERT_EQ(sweeps.notes.size(), 1u);
        EXPECT_NE(sweeps.notes[0].find("a.csv, line 3"), std::string::npos) << sweeps.notes[0];
        EXPECT_NE(sweeps.notes[0].find(c.note), std::string::npos) << sweeps.notes[0];
    }
}

TEST(SweepReader, TakesOnlyAFirstLineWithoutNumbersForAHeader)
{
    const struct {
        const char *line;
        std::uint64_t broken;
    } cases[] = {
        {"date,time,inf", 0},
        {"3 columns", 0},
        {"x, 10:00:00, 0, 20, 10, 9, 8, 8, 8", 1},
        {"21.11.2026, 10:00:00, 0, 20, 10, 9, 8, 8, 8", 1},
        {"2026", 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.line);
        const Sweeps sweeps =
            readSweeps(c.line + ("\n" + rtl("10:00:00", "0, 20, 10, 9, 1, 2, 2")));
        EXPECT_EQ(sweeps.broken, c.broken);
        ASSERT_EQ(sweeps.scans.size(), 1u);
        EXPECT_EQ(levelsOf(sweeps.scans[0]), "1 2");
    }
}

TEST(SweepReader, GivesAHopTheLevelsOfMostOfItsLines)
{
    const std::string good = rtl("10:00:00", "0, 20, 10, 9, 1, 2, 2"),
                      tooMany = rtl("10:00:00", "0, 20, 10, 9, 7, 7, 7, 7"),
                      other = rtl("10:00:00", "20, 40, 10, 9, 3, 4, 4");
    const struct {
        const char *name;
        std::string text;
        std::vector<std::string> notedLines; ///< that are skipped
        const char *firstScan;
    } cases[] = {
        {"the first line is the odd one", tooMany + other + good + good, {"1"}, "- - 3 4"},
        {"the first line is cut short", rtl("10:00:00", "0, 20, 10, 9, 7") + good, {"1"}, "1 2"},
        {"so are two of five, and broken lines keep their order",
         tooMany + "2026\n" + tooMany + good + good + good,
         {"1", "2", "3"},
         "1 2"},
        {"as many of each: the first counts", good + tooMany, {"2"}, "1 2"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const Sweeps sweeps = readSweeps(c.text);
        EXPECT_EQ(sweeps.broken, c.notedLines.size());
        ASSERT_EQ(sweeps.notes.size(), c.notedLines.size());
        for (std::size_t i = 0; i < c.notedLines.size(); ++i)
            EXPECT_NE(sweeps.notes[i].find("line " + c.notedLines[i] + " is"), std::string::npos)
                << sweeps.notes[i];
        ASSERT_FALSE(sweeps.scans.empty());
        EXPECT_EQ(levelsOf(sweeps.scans[0]), c.firstScan);
    }
}

TEST(SweepReader, SumsUpManyBrokenLines)
{
    std::string text = rtl("10:00:00", "0, 20, 10, 9, 1, 2, 2");
    for (int i = 0; i < 1000; ++i)
        text += "7, broken\n";
    const Sweeps sweeps = readSweeps(text);
    EXPECT_EQ(sweeps.broken, 1000u);
    EXPECT_LT(sweeps.notes.size(), 10u);
    EXPECT_NE(sweeps.notes.back().find("1000 broken lines"), std::string::npos);
}

TEST(SweepReader, RefusesAFileWithoutASweep)
{
    for (const char *text : {"", "\n\n", "date,time,low\n", "no\nsweep\nhere\n"}) {
        SCOPED_TRACE(text);
        const Outcome outcome = outcomeOf([text] { open(text, nullptr); });
        EXPECT_EQ(outcome.code, 1);
        EXPECT_NE(outcome.sentence.find("a.csv holds no sweep"), std::string::npos);
    }
}

TEST(SweepReader, AddsTheFullScaleAndReadsTheSameAgainAfterRewind)
{
    const auto reader = open(rtl("10:00:00", "0, 20, 10, 9, -57.5, -60, -60") +
                                 rtl("10:00:01", "0, 20, 10, 9, -47.5, -50, -50"),
                             nullptr, 107);
    for (int pass = 0; pass < 3; ++pass) {
        SCOPED_TRACE(pass);
        const auto scans = readAll(*reader);
        ASSERT_EQ(scans.size(), 2u);
        EXPECT_EQ(levelsOf(scans[0]), "49.5 47");
        EXPECT_EQ(levelsOf(scans[1]), "59.5 57");
        EXPECT_EQ(scans[1].time - scans[0].time, 1000000u);
        reader->rewind();
    }
}

TEST(SweepReader, ReadsLocalTimesToTheMicrosecond)
{
    qputenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3");
    tzset();
    struct {
        const char *stamp;
        std::optional<KRTimeStamp> expected;
    } const cases[] = {
        {"1970-01-01, 00:00:07", 0}, // a clock that was never set, further west
        {"1970-01-02, 01:00:00", 86400000000u},
        {"2026-06-15, 13:48:13.555047", 1781524093555047u},
        {"2026-06-15, 13:48:13.6", 1781524093600000u},
        {"2026-11-21,10:00:00", 1795251600000000u},
        {"2026-13-21, 10:00:00", std::nullopt},
        {"2026-11-21, 25:00:00", std::nullopt},
        {"2026-11-21, 10:00:00.x", std::nullopt},
        {"2026-11-21, 10:00:00.1e30", std::nullopt},
        {"", std::nullopt},
    };
    SweepStamps stamps;
    for (const auto &c : cases)
        EXPECT_EQ(stamps.read(c.stamp), c.expected) << c.stamp;
    qunsetenv("TZ");
    tzset();
}
