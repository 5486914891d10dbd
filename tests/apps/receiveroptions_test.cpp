#include "apps/common/keyfiles.h"
#include "apps/receiver/options.h"
#include "tests/apps/inputtools.h"

#include <QProcess>

using namespace receiver;
using namespace receivertest;

namespace {

Options parse(const QString &line)
{
    return parseOptions(QStringList{QStringLiteral("spectree-receiver")} +
                        QProcess::splitCommand(line));
}

} // namespace

TEST(ReceiverOptions, AreAllRead)
{
    const Options options = parse(QStringLiteral(
        "--input iq:dir/a:b.cu8 --rate 2.4M --center 98.5e6 --format cs8 --fft 1000 --average 7 "
        "--window flattop --speed 0 --loop --wait yes --full-scale-dbuv -10.5 --stats "
        "--ranges 97M:98M,99000k:0.1G --type df-spectrum --listen tcp://0.0.0.0:5555 "
        "--allow-remote"));
    EXPECT_EQ(options.inputText, QStringLiteral("dir/a:b.cu8"));
    EXPECT_EQ(options.rate, 2.4e6);
    EXPECT_EQ(options.center, 98.5e6);
    EXPECT_EQ(options.spectrum.fft * options.spectrum.average, 7000);
    EXPECT_EQ(options.spectrum.window, Window::flattop);
    EXPECT_EQ(options.spectrum.fullScaleDbuv, -10.5);
    EXPECT_TRUE(options.speed == 0 && options.loop && options.wait && options.stats);
    ASSERT_EQ(options.ranges.size(), 2u);
    EXPECT_EQ(options.ranges[1].start, 99e6);
    EXPECT_EQ(options.ranges[1].stop, 100e6);
    EXPECT_EQ(options.type, SampleType::dfSpectrum);
    EXPECT_EQ(parse(QStringLiteral("--type 111")).type, SampleType::pulse);
    EXPECT_EQ(parse(QStringLiteral("--ranges 98M:98M")).ranges.size(), 1u) << "a single channel";
    EXPECT_EQ(parse(QStringLiteral("--ranges 1M:2M:5k")).ranges.at(0).step, 5e3);
    EXPECT_FALSE(parse(QString()).wait) << "a simulation never runs out";
    EXPECT_TRUE(parse(QStringLiteral("--input sweep:a.csv")).wait);
    EXPECT_FALSE(parse(QStringLiteral("--input iq:a.wav --wait no")).wait);
}

struct BadLine {
    const char *line;
    const char *sentence;
};

TEST(ReceiverOptions, BadOnesGiveASentenceAndCode2)
{
    const BadLine cases[] = {
        {"--unknown", "Unknown option 'unknown'"},
        {"--rate", "Missing value"},
        {"recording.wav", "\"recording.wav\" belongs to no option"},
        {"--input file.csv", "begins with none of sim:, iq: and sweep:"},
        {"--input iq:", "names no file"},
        {"--input sim:chanels=5", "has no key \"chanels\""},
        {"--input sim:channels=0", "\"0\" is no good value of channels"},
        {"--input sim:channels=1.5", "\"1.5\" is no good value"},
        {"--input sim:channels", "\"\" is no good value of channels"},
        {"--input sim:rate=inf", "\"inf\" is no good value"},
        {"--input sim:carrier=98M@x", "\"98M@x\" is no good value"},
        {"--input sim:carrier=98M@5@400", "is no good value of carrier"},
        {"--fft 1024", "--fft is for an iq: input only"},
        {"--input sweep:a.csv --rate 2M", "--rate is for an iq: input only"},
        {"--input iq:a --fft 0", "--fft \"0\" is no whole number from 16"},
        {"--input iq:a --fft 1025", "--fft 1025 is odd"},
        {"--input iq:a --fft 99999999999", "--fft"},
        {"--input iq:a --average 0", "--average \"0\""},
        {"--input iq:a --rate 0", "--rate \"0\" is no frequency"},
        {"--input iq:a --rate nan", "--rate \"nan\""},
        {"--input iq:a --center 98MHz", "--center \"98MHz\""},
        {"--input iq:a --format cu9", "--format \"cu9\" is unknown"},
        {"--input iq:a --window box", "--window \"box\""},
        {"--speed -1", "--speed \"-1\""},
        {"--speed nan", "--speed \"nan\""},
        {"--full-scale-dbuv loud", "--full-scale-dbuv \"loud\""},
        {"--wait maybe", "neither yes nor no"},
        {"--type waves", "--type \"waves\" is unknown"},
        {"--type 109", "--type 109 (elevation over azimuth) has no scan buffer"},
        {"--type elev-over-azi", "has no scan buffer"},
        {"--ranges 98M", "is not START:STOP"},
        {"--ranges 99M:98M", "is not START:STOP"},
        {"--ranges 1:2:0", "is not START:STOP"},
        {"--input sweep:a --ranges 1:2:3", "is for sim: only"},
        {"--listen 127.0.0.1:5000", "not of the form tcp://"},
        {"--listen tcp://*:5000", "--allow-remote"},
        {"--listen tcp://192.168.1.5:5000", "--allow-remote"},
        {"--listen tcp://127.0.0.1:99999", "a number up to 65535"},
        {"--listen tcp://127.0.0.1:http", "a number up to 65535"},
        {"--server-key a", "go together"},
    };
    for (const BadLine &c : cases) {
        SCOPED_TRACE(c.line);
        const Outcome outcome = outcomeOf([&c] { parse(QString::fromLatin1(c.line)); });
        EXPECT_EQ(outcome.code, 2);
        EXPECT_NE(outcome.sentence.find(c.sentence), std::string::npos) << outcome.sentence;
    }
}

TEST(ReceiverOptions, LoopbackAddressesNeedNoPermission)
{
    for (const char *endpoint :
         {"tcp://127.0.0.1:*", "tcp://127.1.2.3:80", "tcp://localhost:5000", "tcp://[::1]:5000"})
        EXPECT_NO_THROW(parse(QStringLiteral("--listen ") + endpoint)) << endpoint;
    EXPECT_EQ(parse(QStringLiteral("--listen tcp://*:5000 --server-key a --client-keys b"))
                  .clientKeysFile,
              QStringLiteral("b"));
}

TEST(ReceiverOptions, HelpNamesEachKeyOfTheSimulation)
{
    EXPECT_EQ(parse(QStringLiteral("--version")).request.action, apps::Action::showVersion);
    EXPECT_EQ(parse(QStringLiteral("--make-key a")).request.keyFile, QStringLiteral("a"));
    const apps::Request request = parse(QStringLiteral("--help")).request;
    EXPECT_EQ(request.action, apps::Action::showHelp);
    for (const char *word : {"--input", "--full-scale-dbuv", "hoppers", "Exit codes"})
        EXPECT_TRUE(request.help.contains(QLatin1String(word))) << word;
}

TEST(KeyFiles, HoldKeysAndComments)
{
    const QByteArray key = "Ki@^ySR{JArR2pk&d6btKM0u:q[8>C0}bcENF#g]"; // with a "#" of its own
    const struct {
        QByteArray text;
        int keys; ///< 0: refused
        const char *sentence;
    } cases[] = {
        {"# Alice\n" + key + "\n\n #Bob:\n\t" + key + " # a comment\r\n", 2, ""},
        {QByteArray(64, 'a') + " #comment", 1, ""},
        {"# nothing\n", 0, "holds no key"},
        {key.left(39), 0, "is no CURVE key"},
        {key + key, 0, "is no CURVE key"},
    };
    const Files files;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        const QString path = files.write("keys", c.text);
        int keys = 0;
        const Outcome outcome = outcomeOf([&] { keys = apps::readKeys(path).size(); });
        EXPECT_EQ(keys, c.keys);
        EXPECT_EQ(outcome.code, c.keys ? 0 : 1);
        EXPECT_NE(outcome.sentence.find(c.sentence), std::string::npos) << outcome.sentence;
    }
    EXPECT_EQ(outcomeOf([&] { apps::readKey(files.path("absent")); }).code, 1);
}
