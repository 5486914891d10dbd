// Real recordings through both programs: each signal that they are known to hold must have a peak
// in the report. They are no part of the project: the folder ../shared/data beside it, or
// SPECTREE_RECORDINGS. Skipped where there is none.
#include "tests/apps/programs.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace programs;

struct Recording {
    const char *input; ///< kind and file name
    QStringList receiver;
    const char *seconds; ///< of the monitor
    double channels;
    std::vector<Band> signals;
};

const QString kFt8Truth = QStringLiteral("hf_ft8_busy_12k.truth.txt");
constexpr double kDial = 14.074e6;

class RecordingsEndToEnd : public ::testing::Test {
protected:
    void SetUp() override
    {
        const QByteArray given = qgetenv("SPECTREE_RECORDINGS");
        m_folder = given.isEmpty() ? QStringLiteral(SPECTREE_SOURCE_DIR "/../shared/data")
                                   : QString::fromLocal8Bit(given);
        if (!QFileInfo(m_folder).isDir())
            GTEST_SKIP() << "no recordings in " << m_folder.toStdString();
    }

    void expectSignals(const Recording &recording)
    {
        const QString kind = QString::fromLatin1(recording.input).section(':', 0, 0);
        const QString file = m_folder + '/' + QString::fromLatin1(recording.input).section(':', 1);
        if (!QFileInfo::exists(file))
            GTEST_SKIP() << "no " << file.toStdString();
        const Receiver receiver(QStringList{"--input", kind + ':' + file} + recording.receiver);
        Monitor monitor(receiver.endpoint(), {"--seconds", recording.seconds});
        ASSERT_EQ(monitor.waitForEnd(120), 0) << monitor.errors().toStdString();
        const QJsonObject report = monitor.report();
        EXPECT_EQ(report["channels"].toDouble(), recording.channels);
        for (const Band &band : recording.signals)
            EXPECT_FALSE(peakIn(report, band).isEmpty())
                << "no peak between " << band.lowHz << " and " << band.highHz;
        EXPECT_EQ(QImage(monitor.pngFile()).size(), QSize(1600, 1000));
    }

    QString m_folder;
};

// A weak station, 3 dB above the noise and only in the mean: 244 transforms in all.
TEST_F(RecordingsEndToEnd, WeakStation)
{
    expectSignals({"iq:fm_98M_2Msps_ci8.sigmf-meta",
                   {"--fft", "4096", "--average", "8", "--speed", "0.25"},
                   "5",
                   4096,
                   {{98.05e6, 98.13e6}}});
}

// Pulses: their keyed spectrum has its strongest line beside the middle.
TEST_F(RecordingsEndToEnd, AircraftPulses)
{
    expectSignals({"iq:adsb_1090M_2Msps.cu8",
                   {"--format", "cu8", "--rate", "2M", "--center", "1090M", "--fft", "256",
                    "--average", "100", "--speed", "0.1"},
                   "5",
                   256,
                   {{1089.925e6, 1089.935e6}}});
}

TEST_F(RecordingsEndToEnd, BroadSweep)
{
    expectSignals({"sweep:scan_fm_88_108M_1sweep.csv",
                   {"--speed", "0"},
                   "4",
                   20,
                   {{95e6, 96e6}, {94e6, 95e6}, {99e6, 100e6}}});
}

TEST_F(RecordingsEndToEnd, ManySweeps)
{
    expectSignals(
        {"sweep:scan_fm_88M1_299sweeps.csv", {"--speed", "60"}, "8", 128, {{88.075e6, 88.125e6}}});
}

// 27 slow 8-tone signals of 50 Hz; the truth file tells where.
TEST_F(RecordingsEndToEnd, CrowdedShortWave)
{
    Recording recording{"iq:hf_ft8_busy_12k.wav",
                        {"--center", "14.074M", "--fft", "2048", "--average", "4", "--speed", "3"},
                        "8",
                        1024,
                        {}};
    QFile truth(m_folder + '/' + kFt8Truth);
    if (!truth.open(QIODevice::ReadOnly))
        GTEST_SKIP() << "no " << truth.fileName().toStdString();
    while (!truth.atEnd()) {
        const QList<QByteArray> fields = truth.readLine().simplified().split(' ');
        if (fields.size() < 4)
            continue;
        const double offset = fields[3].toDouble();
        recording.signals.push_back({kDial + offset, kDial + offset + 50.0});
    }
    ASSERT_EQ(recording.signals.size(), 27u);
    expectSignals(recording);
}

} // namespace
