// Receiver and monitor as real processes over loopback.
#include "tests/apps/programs.h"

#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QThread>
#include <gtest/gtest.h>

#include <csignal>

namespace {

using namespace programs;

/// 2000 channels of 10 kHz, noise, and two carriers that are known.
constexpr char kBand[] = "sim:channels=2000,step=10k,carriers=0,fm=0,bursts=0,hoppers=0,"
                         "carrier=95M@70,carrier=101M@50";

QString band(const char *more = "") { return QLatin1String(kBand) + QLatin1String(more); }

void expectCarrier(const QJsonObject &report, double hertz, double dbuv, double tolerance = 1.5)
{
    const QJsonObject peak = peakIn(report, {hertz, hertz});
    ASSERT_FALSE(peak.isEmpty()) << "no peak at " << hertz;
    EXPECT_NEAR(peak["level_dbuv"].toDouble(), dbuv, tolerance) << "at " << hertz;
}

void expectBand(const QJsonObject &report)
{
    EXPECT_EQ(report["channels"].toDouble(), 2000);
    EXPECT_NEAR(report["f_start_hz"].toDouble(), 88e6 - 5e3, 1.0);
    EXPECT_NEAR(report["f_stop_hz"].toDouble(), 108e6 - 5e3, 1.0);
    expectCarrier(report, 95e6, 70.0);
    expectCarrier(report, 101e6, 50.0);
}

TEST(EndToEnd, AMonitorThatComesLateSeesTheBand)
{
    const Receiver receiver({"--input", band()});
    QThread::sleep(2);
    Monitor monitor(receiver.endpoint(), {"--scans", "100", "--width", "900", "--height", "700"});
    ASSERT_EQ(monitor.waitForEnd(60), 0) << monitor.errors().toStdString();
    const QJsonObject report = monitor.report();
    expectBand(report);
    EXPECT_EQ(report["endpoint"].toString(), receiver.endpoint());
    EXPECT_GE(report["lines"].toDouble(), 100);
    EXPECT_EQ(report["lost_messages"].toDouble(), 0);
    EXPECT_GT(report["bytes"].toDouble(), 1000);
    EXPECT_NEAR(report["scans_per_second"].toDouble(), 50.0, 25.0);
    EXPECT_EQ(QImage(monitor.pngFile()).size(), QSize(900, 700));
}

TEST(EndToEnd, APartOfTheBandIsShownFiner)
{
    const Receiver receiver({"--input", QStringLiteral("sim:channels=100000,step=200,carriers=0,"
                                                       "fm=0,bursts=0,hoppers=0,carrier=95M@70")});
    Monitor monitor(receiver.endpoint(), {"--scans", "20", "--from", "94.9M", "--to", "95.1M"});
    ASSERT_EQ(monitor.waitForEnd(60), 0) << monitor.errors().toStdString();
    const QJsonObject report = monitor.report();
    EXPECT_EQ(report["f_start_hz"].toDouble(), 94.9e6);
    EXPECT_EQ(report["f_stop_hz"].toDouble(), 95.1e6);
    const QJsonObject strongest = report["peaks"].toArray().at(0).toObject();
    EXPECT_NEAR(strongest["frequency_hz"].toDouble(), 95e6, 200.0);
}

TEST(EndToEnd, AKilledMonitorComesBackToItsWindow)
{
    const Receiver receiver({"--input", band()});
    const QStringList arguments{"--scans", "50", "--window-guid",
                                "0b5e1c6e-7a0f-4b0e-9c55-3d7d1d7c2f11"};
    for (int run = 0; run < 2; ++run) {
        Monitor killed(receiver.endpoint(), {"--seconds", "60", arguments[2], arguments[3]});
        QThread::msleep(run == 0 ? 400 : 1500); // while it connects, and while it watches
        killed.signal(SIGKILL);
        Monitor next(receiver.endpoint(), arguments);
        ASSERT_EQ(next.waitForEnd(60), 0) << next.errors().toStdString();
        expectBand(next.report());
    }
}

TEST(EndToEnd, AKilledReceiverIsFoundAgain)
{
    auto receiver = std::make_unique<Receiver>(
        QStringList{"--input", band(",rate=20,scans=40"), "--wait", "yes"});
    const QString endpoint = receiver->endpoint();
    // More lines than the first receiver has.
    Monitor monitor(endpoint, {"--scans", "80", "--timeout", "60"});
    ASSERT_TRUE(receiver->waitForMessage(QStringLiteral("ended"), 30))
        << receiver->errors().toStdString();
    receiver->signal(SIGKILL);
    receiver =
        std::make_unique<Receiver>(QStringList{"--input", band(",rate=20"), "--listen", endpoint});
    EXPECT_EQ(receiver->endpoint(), endpoint);
    ASSERT_EQ(monitor.waitForEnd(90), 0) << monitor.errors().toStdString();
    EXPECT_TRUE(monitor.errors().contains(QStringLiteral("looking for it again")));
    EXPECT_TRUE(monitor.errors().contains(QStringLiteral("back")));
    EXPECT_GE(monitor.report()["lines"].toDouble(), 80);
    expectBand(monitor.report());
}

TEST(EndToEnd, ASlowMonitorLosesRowsButNoState)
{
    const Receiver receiver({"--input", band(",rate=500")});
    Monitor monitor(receiver.endpoint(), {"--seconds", "12"});
    QThread::sleep(2);
    monitor.signal(SIGSTOP);
    QThread::msleep(2500);
    monitor.signal(SIGCONT);
    ASSERT_EQ(monitor.waitForEnd(60), 0) << monitor.errors().toStdString();
    const QJsonObject report = monitor.report();
    EXPECT_GT(report["lost_messages"].toDouble(), 0);
    EXPECT_EQ(report["channels"].toDouble(), 2000);
    // The server may have halved the pixels since.
    const QJsonObject peak = peakIn(report, {95e6 - 20e3, 95e6 + 20e3});
    EXPECT_NEAR(peak["level_dbuv"].toDouble(), 70.0, 1.5);
}

TEST(EndToEnd, EverySampleTypeReachesTheMonitor)
{
    for (const char *type : {"char", "short", "level", "long", "float", "percent", "double",
                             "bearing", "minmax", "bearing-extended", "pulse", "df-spectrum"}) {
        SCOPED_TRACE(type);
        const Receiver receiver({"--input", band(",rate=100"), "--type", QLatin1String(type)});
        Monitor monitor(receiver.endpoint(), {"--scans", "100"});
        ASSERT_EQ(monitor.waitForEnd(60), 0) << monitor.errors().toStdString();
        const QJsonObject report = monitor.report();
        EXPECT_EQ(report["channels"].toDouble(), 2000);
        EXPECT_FALSE(peakIn(report, {95e6, 95e6}).isEmpty());
        EXPECT_EQ(QImage(monitor.pngFile()).size(), QSize(1600, 1000));
    }
}

TEST(EndToEnd, AServerThatIsNotThereIsTold)
{
    QElapsedTimer clock;
    clock.start();
    const QString endpoint = QStringLiteral("tcp://127.0.0.1:1");
    Monitor monitor(endpoint, {"--seconds", "60", "--timeout", "1"});
    EXPECT_EQ(monitor.waitForEnd(20), 1);
    EXPECT_LT(clock.elapsed(), 10000);
    EXPECT_TRUE(monitor.errors().contains(endpoint)) << monitor.errors().toStdString();
    EXPECT_TRUE(monitor.errors().contains(QStringLiteral("Check")));
    EXPECT_TRUE(monitor.report().isEmpty());
}

TEST(EndToEnd, APortThatIsTakenIsTold)
{
    const Receiver receiver({"--input", band()});
    Program second(QStringLiteral(SPECTREE_RECEIVER), {"--listen", receiver.endpoint()});
    EXPECT_EQ(second.waitForEnd(20), 1);
    EXPECT_TRUE(second.errors().contains(receiver.endpoint())) << second.errors().toStdString();
    EXPECT_TRUE(second.errors().contains(QStringLiteral("--listen")));
}

TEST(EndToEnd, FewerScansThanAskedForAreWrittenAndTold)
{
    const Receiver receiver({"--input", band(",rate=20,scans=10"), "--wait", "yes"});
    Monitor monitor(receiver.endpoint(), {"--scans", "1000", "--timeout", "2"});
    EXPECT_EQ(monitor.waitForEnd(60), 1);
    EXPECT_TRUE(monitor.errors().contains(QStringLiteral("of 1000 lines")))
        << monitor.errors().toStdString();
    expectBand(monitor.report());
}

TEST(EndToEnd, ASignalEndsTheRunEarlyWithItsFiles)
{
    const Receiver receiver({"--input", band()});
    Monitor monitor(receiver.endpoint(), {"--seconds", "600"});
    ASSERT_TRUE(monitor.waitForMessage(QStringLiteral(": [1-9].* lines, "), 60));
    monitor.signal(SIGTERM);
    EXPECT_EQ(monitor.waitForEnd(20), 0) << monitor.errors().toStdString();
    expectBand(monitor.report());
}

TEST(EndToEnd, APictureThatCannotBeWrittenLeavesTheReport)
{
    const Receiver receiver({"--input", band()});
    QTemporaryDir gone;
    const QString picture = gone.filePath(QStringLiteral("picture.png"));
    Monitor monitor(receiver.endpoint(), {"--seconds", "600", "--png", picture});
    ASSERT_TRUE(monitor.waitForMessage(QStringLiteral(": [1-9].* lines, "), 60));
    ASSERT_TRUE(gone.remove());
    monitor.signal(SIGINT);
    EXPECT_EQ(monitor.waitForEnd(60), 1);
    EXPECT_TRUE(monitor.errors().contains(picture)) << monitor.errors().toStdString();
    expectBand(monitor.report());
}

TEST(EndToEnd, AFolderIsNoFileToWrite)
{
    const QTemporaryDir folder;
    for (const char *option : {"--png", "--json"}) {
        Monitor monitor(QStringLiteral("tcp://127.0.0.1:1"),
                        {"--seconds", "60", "--timeout", "20", option, folder.path()});
        EXPECT_EQ(monitor.waitForEnd(60), 1);
        EXPECT_TRUE(monitor.errors().contains(folder.path() + QStringLiteral("\": it is a folder")))
            << option << monitor.errors().toStdString();
    }
}

TEST(EndToEnd, OnlyListedKeysAreLetIn)
{
    const QTemporaryDir folder;
    const auto at = [&folder](const char *name) { return folder.filePath(QLatin1String(name)); };
    for (const char *name : {"server", "known", "unknown"})
        for (const int code : {0, 1}) { // the second time it would replace a key
            Program make(QStringLiteral(SPECTREE_MONITOR), {"--make-key", at(name)});
            EXPECT_EQ(make.waitForEnd(20), code) << make.errors().toStdString();
        }
    EXPECT_EQ(QFile::permissions(at("server")) & (QFile::ReadGroup | QFile::ReadOther), 0);
    const Receiver receiver(
        {"--input", band(), "--server-key", at("server"), "--client-keys", at("known.pub")});
    const struct {
        const char *name;
        QStringList keys;
        int code;
    } cases[] = {
        {"known", {"--server-key", at("server.pub"), "--client-key", at("known")}, 0},
        {"unknown", {"--server-key", at("server.pub"), "--client-key", at("unknown")}, 1},
        {"of another server", {"--server-key", at("known.pub"), "--client-key", at("known")}, 1},
        {"no key", {}, 1},
        {"still served", {"--server-key", at("server.pub"), "--client-key", at("known")}, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QElapsedTimer clock;
        clock.start();
        Monitor monitor(receiver.endpoint(),
                        QStringList{"--scans", "20", "--timeout", "3"} + c.keys);
        ASSERT_EQ(monitor.waitForEnd(30), c.code) << monitor.errors().toStdString();
        EXPECT_LT(clock.elapsed(), 10000);
        EXPECT_EQ(monitor.errors().contains(QStringLiteral("keys are right")), c.code == 1)
            << monitor.errors().toStdString();
        EXPECT_EQ(monitor.report().isEmpty(), c.code == 1);
    }
    EXPECT_TRUE(receiver.isRunning());
}

TEST(EndToEnd, TheCommandLineIsExplained)
{
    const struct {
        QStringList arguments;
        int code;
    } cases[] = {{{"--help"}, 0}, {{"--version"}, 0}, {{}, 2}, {{"--connect", "here"}, 2}};
    for (const auto &c : cases) {
        Program program(QStringLiteral(SPECTREE_MONITOR), c.arguments);
        EXPECT_EQ(program.waitForEnd(20), c.code);
        EXPECT_EQ(program.output().isEmpty(), c.code != 0);
        EXPECT_EQ(program.errors().contains(QStringLiteral("--help")), c.code != 0);
    }
}

} // namespace
