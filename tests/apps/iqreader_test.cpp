#include "apps/receiver/iqreader.h"
#include "apps/receiver/sigmf.h"
#include "apps/receiver/wavreader.h"
#include "tests/apps/inputtools.h"

#include <QBuffer>

using namespace receiver;
using namespace receivertest;

namespace {

std::vector<float> samplesOf(const Recording &recording)
{
    IqReader reader(recording);
    std::vector<float> floats(1000);
    const std::size_t samples = reader.read(floats.data(), 400);
    floats.resize(samples * (recording.format.complex ? 2 : 1));
    return floats;
}

QByteArray chunk(const char *id, const QByteArray &content)
{
    return QByteArray(id, 4) + images<std::uint32_t>({std::uint32_t(content.size())}) + content +
           QByteArray(content.size() % 2, '\0');
}

QByteArray wavFormat(int code, int channels, int rate, int bits)
{
    return images<std::uint16_t>({std::uint16_t(code), std::uint16_t(channels)}) +
           images<std::uint32_t>({std::uint32_t(rate), 0}) +
           images<std::uint16_t>({0, std::uint16_t(bits)});
}

QByteArray wav(const QByteArray &chunks)
{
    return "RIFF" + images<std::uint32_t>({std::uint32_t(chunks.size() + 4)}) + "WAVE" + chunks;
}

QByteArray meta(const char *datatype, const char *more = "", const char *captures = "[]")
{
    return QByteArray("{\"global\":{\"core:version\":\"1.2.5\",\"core:sample_rate\":1e6,"
                      "\"core:datatype\":\"") +
           datatype + "\"" + more + "},\"captures\":" + captures + ",\"annotations\":[]}";
}

} // namespace

TEST(IqReader, ScalesEachPlainFormatToOne)
{
    const struct {
        const char *format;
        QByteArray bytes;
        std::vector<float> expected;
    } cases[] = {
        {"cu8", images<std::uint8_t>({0, 255, 127, 128}), {-1, 1, -0.5f / 127.5f, 0.5f / 127.5f}},
        {"cs8", images<std::int8_t>({-128, 127, 0, 64}), {-1, 127 / 128.0f, 0, 0.5f}},
        {"cs16", images<std::int16_t>({-32768, 16384}), {-1, 0.5f}},
        {"cf32", images<float>({-0.25f, NAN, INFINITY, 2}), {-0.25f, 0, 0, 2}},
    };
    const Files files;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.format);
        const QString path = files.write("plain.bin", c.bytes);
        const Recording recording = openRecording(path, QString::fromLatin1(c.format));
        EXPECT_EQ(samplesOf(recording), c.expected);
        // The ending tells the format as well.
        const QString named = files.write((std::string("a.") + c.format).c_str(), c.bytes);
        EXPECT_EQ(samplesOf(openRecording(named, QString())), c.expected);
    }
}

TEST(IqReader, ReadsAcrossItsOwnBlocksAndAgainAfterRewind)
{
    QByteArray bytes;
    for (int i = 0; i < 100000; ++i)
        bytes += images<std::int16_t>({std::int16_t(i % 30000), std::int16_t(-(i % 30000))});
    const Files files;
    IqReader reader(openRecording(files.write("long.cs16", bytes), QString()));
    for (int pass = 0; pass < 2; ++pass) {
        std::vector<float> all(2 * 100000), part(2 * 7001);
        std::size_t done = 0;
        while (const std::size_t got = reader.read(part.data(), 7001)) {
            std::copy_n(part.begin(), 2 * got, all.begin() + std::ptrdiff_t(2 * done));
            done += got;
        }
        ASSERT_EQ(done, 100000u);
        for (int i = 0; i < 100000; i += 997)
            ASSERT_EQ(all[std::size_t(2 * i + 1)], float(-(i % 30000)) / 32768) << i;
        reader.rewind();
    }
}

TEST(IqReader, RefusesPlainFilesThatCannotBeRight)
{
    const Files files;
    const QString odd = files.write("odd.cs16", QByteArray(5, 'x'));
    const QString unknown = files.write("recording.dat", QByteArray(8, 'x'));
    const struct {
        const char *name;
        QString path, format;
        int code;
        const char *sentence;
    } cases[] = {
        {"missing", files.path("absent.cu8"), QString(), 1, "No such file"},
        {"a folder", files.path("."), QStringLiteral("cu8"), 1, "is a folder"},
        {"odd length", odd, QString(), 1, "5 bytes, which is no whole number of cs16 samples"},
        {"no format", unknown, QString(), 2, "give --format"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const Outcome outcome = outcomeOf([&c] { openRecording(c.path, c.format); });
        EXPECT_EQ(outcome.code, c.code);
        EXPECT_NE(outcome.sentence.find(c.sentence), std::string::npos) << outcome.sentence;
        EXPECT_NE(outcome.sentence.find(c.path.toStdString()), std::string::npos);
    }
}

TEST(IqReader, NoticesAFileThatShrinksWhileItIsRead)
{
    const Files files;
    const QString path = files.write("a.cu8", QByteArray(1000, '\x80'));
    IqReader reader(openRecording(path, QString()));
    ASSERT_TRUE(QFile::resize(path, 100));
    std::vector<float> samples(2 * 500);
    EXPECT_EQ(outcomeOf([&] { reader.read(samples.data(), 500); }).code, 1);
}

TEST(WavReader, ReadsEachKindOfSamples)
{
    const QByteArray sub = QByteArray("\x16\0\x10\0\0\0\0\0", 8);
    const QByteArray extensible =
        wavFormat(0xFFFE, 1, 8000, 16) + sub + images<std::uint16_t>({1}) + QByteArray(14, 'g');
    const struct {
        const char *name;
        QByteArray bytes;
        bool complex;
        std::vector<float> expected;
    } cases[] = {
        {"8 bits, zero at 128",
         wav(chunk("fmt ", wavFormat(1, 1, 8000, 8)) + chunk("data", "\x80\xC0")),
         false,
         {0, 0.5f}},
        {"16 bits stereo: I and Q",
         wav(chunk("fmt ", wavFormat(1, 2, 8000, 16)) +
             chunk("data", images<std::int16_t>({16384, -16384}))),
         true,
         {0.5f, -0.5f}},
        {"24 bits with a sign",
         wav(chunk("fmt ", wavFormat(1, 1, 8000, 24)) +
             chunk("data", QByteArray("\0\0\xC0\0\0\x40", 6))),
         false,
         {-0.5f, 0.5f}},
        {"32 bits",
         wav(chunk("fmt ", wavFormat(1, 1, 8000, 32)) +
             chunk("data", images<std::int32_t>({-1073741824}))),
         false,
         {-0.5f}},
        {"float",
         wav(chunk("fmt ", wavFormat(3, 1, 8000, 32)) + chunk("data", images<float>({0.125f}))),
         false,
         {0.125f}},
        {"extensible",
         wav(chunk("fmt ", extensible) + chunk("data", images<std::int16_t>({8192}))),
         false,
         {0.25f}},
        {"odd unknown chunks are stepped over, padding too",
         wav(chunk("LIST", "abc") + chunk("fmt ", wavFormat(1, 1, 8000, 16)) + chunk("auxi", "x") +
             chunk("data", images<std::int16_t>({8192})) + chunk("bext", "behind")),
         false,
         {0.25f}},
        {"a size of 0 means to the end",
         wav(chunk("fmt ", wavFormat(1, 1, 8000, 16)) + chunk("data", "")) +
             images<std::int16_t>({8192, 16384}) + "x",
         false,
         {0.25f, 0.5f}},
    };
    const Files files;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const Recording recording = openRecording(files.write("a.wav", c.bytes), QString());
        EXPECT_EQ(recording.format.complex, c.complex);
        EXPECT_EQ(recording.rate, 8000);
        EXPECT_TRUE(recording.warnings.isEmpty());
        EXPECT_EQ(samplesOf(recording), c.expected);
    }
}

TEST(WavReader, WarnsOfSamplesThatEndEarly)
{
    QByteArray bytes = wav(chunk("fmt ", wavFormat(1, 1, 8000, 16)) +
                           chunk("data", images<std::int16_t>({8192, 8192, 8192})));
    bytes.chop(3);
    const Files files;
    const Recording recording = openRecording(files.write("cut.wav", bytes), QString());
    EXPECT_EQ(recording.warnings.size(), 1);
    EXPECT_EQ(samplesOf(recording), std::vector<float>{0.25f});
}

TEST(WavReader, RefusesWhatItCannotRead)
{
    const QByteArray data = chunk("data", QByteArray(8, '\0'));
    const struct {
        const char *name;
        QByteArray bytes;
        const char *sentence;
    } cases[] = {
        {"not RIFF", QByteArray(100, 'x'), "RIFF"},
        {"only a beginning", QByteArray("RIFF\0\0\0\0WAVE", 12), "no samples"},
        {"no format", wav(data), "before their format"},
        {"a short format", wav(chunk("fmt ", QByteArray(10, '\1')) + data), "cut off"},
        {"a law", wav(chunk("fmt ", wavFormat(7, 1, 8000, 8)) + data), "neither PCM nor float"},
        {"12 bits", wav(chunk("fmt ", wavFormat(1, 1, 8000, 12)) + data), "neither PCM nor float"},
        {"six channels", wav(chunk("fmt ", wavFormat(1, 6, 8000, 16)) + data), "6 channels"},
        {"no rate", wav(chunk("fmt ", wavFormat(1, 1, 0, 16)) + data), "sample rate is 0"},
        {"a chunk that goes on for ever",
         wav(QByteArray("junk") + images<std::uint32_t>({0xFFFFFFFF}) + data), "no samples"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QBuffer buffer;
        buffer.setData(c.bytes);
        buffer.open(QIODevice::ReadOnly);
        const Outcome outcome = outcomeOf([&] { readWavHeader(buffer, QStringLiteral("a.wav")); });
        EXPECT_EQ(outcome.code, 1);
        EXPECT_NE(outcome.sentence.find(c.sentence), std::string::npos) << outcome.sentence;
    }
}

TEST(SigMf, ReadsEachDatatype)
{
    const struct {
        const char *datatype;
        QByteArray bytes;
        std::vector<float> expected;
        int warnings;
    } cases[] = {
        {"ci8", images<std::int8_t>({64, -64}), {0.5f, -0.5f}, 0},
        {"cu8", images<std::uint8_t>({255, 0}), {1, -1}, 0},
        {"ci16_le", images<std::int16_t>({16384, -16384}), {0.5f, -0.5f}, 0},
        {"ci16_be", QByteArray("\x40\0\xC0\0", 4), {0.5f, -0.5f}, 0},
        {"ci16", images<std::int16_t>({16384, -16384}), {0.5f, -0.5f}, 1},
        {"cu16_le", images<std::uint16_t>({0xC000, 0x4000}), {0.5f, -0.5f}, 0},
        {"ci32_le", images<std::int32_t>({1 << 30, -(1 << 30)}), {0.5f, -0.5f}, 0},
        {"cf32_le", images<float>({0.5f, -0.5f}), {0.5f, -0.5f}, 0},
        {"cf64_le", images<double>({0.5, -0.5}), {0.5f, -0.5f}, 0},
        {"ri16_le", images<std::int16_t>({16384, -16384}), {0.5f, -0.5f}, 0},
    };
    const Files files;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.datatype);
        files.write("a.sigmf-data", c.bytes);
        const QString path = files.write("a.sigmf-meta", meta(c.datatype));
        const Recording recording = openRecording(path, QString());
        EXPECT_EQ(recording.rate, 1e6);
        EXPECT_EQ(recording.warnings.size(), c.warnings);
        EXPECT_EQ(samplesOf(recording), c.expected);
    }
}

TEST(SigMf, TakesFrequencyTimeAndPlaceFromTheFirstSegment)
{
    const struct {
        const char *name, *more, *captures;
        double center;
        KRTimeStamp start;
        std::vector<float> expected;
    } cases[] = {
        {"no capture", "", "[]", 0, 0, {0.125f, 0.25f, 0.375f, 0.5f}},
        {"a time in UTC with microseconds",
         "",
         R"([{"core:sample_start":0,"core:frequency":98e6,"core:datetime":"1970-01-02T00:00:01.123456789Z"}])",
         98e6,
         86401123456,
         {0.125f, 0.25f, 0.375f, 0.5f}},
        {"a time with an offset",
         "",
         R"([{"core:sample_start":0,"core:datetime":"1970-01-02T01:00:00+01:00"}])",
         0,
         86400000000,
         {0.125f, 0.25f, 0.375f, 0.5f}},
        {"samples counted from an offset",
         R"(,"core:offset":1000)",
         R"([{"core:sample_start":1002}])",
         0,
         0,
         {0.375f, 0.5f}},
        {"ends where the frequency changes",
         "",
         R"([{"core:sample_start":1,"core:frequency":1},{"core:sample_start":3,"core:frequency":2}])",
         1,
         0,
         {0.25f, 0.375f}},
        {"bytes before and behind",
         R"(,"core:trailing_bytes":1)",
         R"([{"core:sample_start":0,"core:header_bytes":2}])",
         0,
         0,
         {0.375f}},
        {"the first of two channels", R"(,"core:num_channels":2)", "[]", 0, 0, {0.125f, 0.375f}},
        {"keys of other namespaces",
         R"(,"x:y":{"z":[1]},"core:extensions":[{"name":"antenna","version":"1","optional":true}])",
         "[]",
         0,
         0,
         {0.125f, 0.25f, 0.375f, 0.5f}},
    };
    const Files files;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const bool padded = std::string(c.name).find("bytes") == 0;
        files.write("a.sigmf-data", padded ? images<std::int8_t>({9, 9, 48, 9})
                                           : images<std::int8_t>({16, 32, 48, 64}));
        const QString path = files.write("a.sigmf-meta", meta("ri8", c.more, c.captures));
        const Recording recording = openRecording(path, QString());
        EXPECT_EQ(recording.center, c.center);
        EXPECT_EQ(recording.start, c.start);
        EXPECT_EQ(samplesOf(recording), c.expected);
    }
}

TEST(SigMf, FindsItsDataByOtherNames)
{
    for (const char *ending : {"iq", "raw", "bin", "cfile"}) {
        SCOPED_TRACE(ending);
        const Files files;
        files.write("b.sigmf-meta", meta("ci8"));
        const QString data =
            files.write((std::string("b.") + ending).c_str(), images<std::int8_t>({64, 64}));
        const Recording recording = openRecording(data, QString());
        EXPECT_EQ(recording.dataFile, data);
        EXPECT_EQ(recording.warnings.size(), 1);
    }
    const Files files;
    files.write("other.xyz", images<std::int8_t>({64, 64}));
    const QString path = files.write("b.sigmf-meta", meta("ci8", R"(,"core:dataset":"other.xyz")"));
    EXPECT_EQ(samplesOf(openRecording(path, QString())), (std::vector<float>{0.5f, 0.5f}));
}

TEST(SigMf, RefusesWhatItCannotRead)
{
    const struct {
        const char *name;
        QByteArray json;
        const char *sentence;
    } cases[] = {
        {"nothing", "", "no JSON"},
        {"no JSON", "{\"global\":", "no JSON"},
        {"another JSON", "[1, 2]", "no \"global\""},
        {"no datatype", "{\"global\":{}}", "core:datatype"},
        {"an unknown datatype", meta("ci12_le"), "core:datatype \"ci12_le\""},
        {"an extension that it needs",
         meta("ci8", R"(,"core:extensions":[{"name":"new","version":"1","optional":false}])"),
         "extension \"new\""},
        {"no channels", meta("ci8", R"(,"core:num_channels":0)"), "core:num_channels"},
        {"half a channel", meta("ci8", R"(,"core:num_channels":1.5)"), "core:num_channels"},
        {"a negative start", meta("ci8", "", R"([{"core:sample_start":-5}])"), "core:sample_start"},
        {"a path", meta("ci8", R"(,"core:dataset":"../../etc/passwd")"), "core:dataset"},
        {"without samples", meta("ci8", R"(,"core:metadata_only":true)"), "without samples"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const Outcome outcome =
            outcomeOf([&c] { parseSigMfMeta(c.json, QStringLiteral("a.sigmf-meta")); });
        EXPECT_EQ(outcome.code, 1);
        EXPECT_NE(outcome.sentence.find(c.sentence), std::string::npos) << outcome.sentence;
    }
    const Files files;
    const QString path = files.write("a.sigmf-meta", meta("ci8"));
    EXPECT_NE(
        outcomeOf([&] { openRecording(path, QString()); }).sentence.find("samples are missing"),
        std::string::npos);
    files.write("a.sigmf-data", "odd");
    EXPECT_NE(outcomeOf([&] { openRecording(path, QString()); }).sentence.find("no whole number"),
              std::string::npos);
}
