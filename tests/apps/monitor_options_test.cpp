#include "apps/common/failure.h"
#include "apps/monitor/options.h"

#include <QProcess>
#include <gtest/gtest.h>

namespace {

using namespace monitor;
using apps::Failure;

const QStringList kBase{
    "spectree-monitor", "--connect", "tcp://127.0.0.1:40123", "--seconds", "5", "--png", "a.png"};

TEST(MonitorOptions, ReadsEverything)
{
    const Options options = parseOptions(
        kBase + QProcess::splitCommand(QStringLiteral(
                    "--json - --scans 100 --width 800 --height 600 --from 88.5M --to 1.08e8 "
                    "--window-guid {0b5e1c6e-7a0f-4b0e-9c55-3d7d1d7c2f11} --timeout 2.5 "
                    "--server-key s.key --client-key c.key --quiet")));
    EXPECT_EQ(options.seconds, 5.0);
    EXPECT_EQ(options.scans, 100u);
    EXPECT_EQ(options.size, QSize(800, 600));
    EXPECT_EQ(options.fromHz, 88.5e6);
    EXPECT_EQ(options.toHz, 108e6);
    EXPECT_EQ(options.windowGuid, QStringLiteral("0b5e1c6e-7a0f-4b0e-9c55-3d7d1d7c2f11"));
    EXPECT_EQ(options.timeoutSeconds, 2.5);
    EXPECT_EQ(options.serverKeyFile + options.clientKeyFile, QStringLiteral("s.keyc.key"));
    EXPECT_NE(parseOptions(kBase).windowGuid, parseOptions(kBase).windowGuid) << "a new one each";
}

struct UsageCase {
    const char *name;
    QStringList arguments;
    const char *named; ///< what the sentence must name
};
const UsageCase kUsageCases[] = {
    {"no server", {"m", "--seconds", "5", "--png", "a"}, "--connect"},
    {"no end", {"m", "--connect", "tcp://h:1", "--png", "a"}, "--seconds"},
    {"no output", {"m", "--connect", "tcp://h:1", "--seconds", "5"}, "--png"},
    {"a wildcard server", kBase + QStringList{"--connect", "tcp://*:5"}, "tcp://*:5"},
    {"no port", kBase + QStringList{"--connect", "tcp://host"}, "tcp://host"},
    {"a port too large", kBase + QStringList{"--connect", "tcp://host:70000"}, "70000"},
    {"seconds that are no number", kBase + QStringList{"--seconds", "soon"}, "--seconds"},
    {"negative seconds", kBase + QStringList{"--seconds=-1"}, "--seconds"},
    {"no scans", kBase + QStringList{"--scans", "0"}, "--scans"},
    {"a picture too small", kBase + QStringList{"--width", "10"}, "--width"},
    {"a picture too large", kBase + QStringList{"--height", "1000000"}, "--height"},
    {"a frequency in words", kBase + QStringList{"--from", "low"}, "--from"},
    {"an endless frequency", kBase + QStringList{"--to", "1e999"}, "--to"},
    {"frequencies turned round", kBase + QStringList{"--from", "2M", "--to", "1M"}, "--from"},
    {"a window that is no GUID", kBase + QStringList{"--window-guid", "main"}, "--window-guid"},
    {"half of the keys", kBase + QStringList{"--client-key", "c"}, "--server-key"},
    {"an unknown option", kBase + QStringList{"--gain", "3"}, "gain"},
    {"a stray word", kBase + QStringList{"tcp://h:1"}, "tcp://h:1"},
};

TEST(MonitorOptions, NamesWhatIsWrong)
{
    for (const UsageCase &c : kUsageCases) {
        SCOPED_TRACE(c.name);
        try {
            parseOptions(c.arguments);
            ADD_FAILURE() << "was accepted";
        } catch (const Failure &failure) {
            EXPECT_EQ(failure.code(), Failure::Usage);
            EXPECT_TRUE(failure.sentence().contains(QLatin1String(c.named))) << failure.what();
        }
    }
}

} // namespace
