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

QByteArray wav(const QByteArray &format, const QByteArray &data)
{
    return wav(chunk("fmt ", format) + chunk("data", data));
}

QByteArray meta(const char *datatype, const char *more = "", const char *captures = "[]")
{
    return QByteArray("{\"global\":{\"core:version\":\"1.2.5\",\"core:sample_rate\":1e6,"
                      "\"core:datatype\":\"") +
           datatype + "\"" + more + "},\"captures\":" + captures + ",\"annotations\":[]}";
}

template <typename Work>
void expectRefusal(const char *name, Work &&work, const std::string &sentence, int code = 1)
{
    SCOPED_TRACE(name);
    const Outcome outcome = outcomeOf(work);
    EXPECT_EQ(outcome.code, code);
    EXPECT_NE(outcome.sentence.find(sentence), std::string::npos) << outcome.sentence;
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
        EXPECT_EQ(samplesOf(openRecording(path, QString::fromLatin1(c.format))), c.expected);
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
    const auto refused = [&](const QString &path, const char *format, const char *why, int code) {
        const auto open = [&] { openRecording(path, QString::fromLatin1(format)); };
        expectRefusal(why, open, why, code);
        expectRefusal("names the file", open, path.toStdString(), code);
    };
    refused(files.path("absent.cu8"), "", "No such file", 1);
    refused(files.path("."), "cu8", "is a folder", 1);
    refused(odd, "", "5 bytes, which is no whole number of cs16 samples", 1);
    refused(unknown, "", "give --format", 2);
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
    const QByteArray mono = wavFormat(1, 1, 8000, 16), quarter = images<std::int16_t>({8192});
    const struct {
        const char *name;
        QByteArray bytes;
        std::vector<float> expected;
    } cases[] = {
        {"8 bits, zero at 128", wav(wavFormat(1, 1, 8000, 8), "\x80\xC0"), {0, 0.5f}},
        {"stereo", wav(wavFormat(1, 2, 8000, 16), quarter + quarter), {0.25f, 0.25f}},
        {"24 bits", wav(wavFormat(1, 1, 8000, 24), QByteArray("\0\0\xC0", 3)), {-0.5f}},
        {"32 bits", wav(wavFormat(1, 1, 8000, 32), images<int>({-1073741824})), {-0.5f}},
        {"float", wav(wavFormat(3, 1, 8000, 32), images<float>({0.125f})), {0.125f}},
        {"extensible", wav(extensible, quarter), {0.25f}},
        {"odd unknown chunks are stepped over, padding too",
         wav(chunk("LIST", "abc") + chunk("fmt ", mono) + chunk("auxi", "x") +
             chunk("data", quarter) + chunk("bext", "behind")),
         {0.25f}},
        {"a size of 0 means to the end", wav(mono, "") + quarter + quarter, {0.25f, 0.25f}},
    };
    const Files files;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const Recording recording = openRecording(files.write("a.wav", c.bytes), QString());
        EXPECT_EQ(recording.format.complex, std::string(c.name) == "stereo") << "I and Q";
        EXPECT_EQ(recording.rate, 8000);
        EXPECT_TRUE(recording.warnings.isEmpty());
        EXPECT_EQ(samplesOf(recording), c.expected);
    }
}

TEST(WavReader, WarnsOfSamplesThatEndEarly)
{
    const QByteArray mono = wavFormat(1, 1, 8000, 16), quarter = images<std::int16_t>({8192});
    const struct {
        QByteArray bytes;
        const char *warning;
    } cases[] = {
        {wav(mono, quarter + quarter + quarter).chopped(3), "ends 3 bytes early"},
        {wav(mono, quarter + "x"), "within a sample"},
        {wav(mono, "") + quarter + "x", "within a sample"},
    };
    const Files files;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.warning);
        const Recording recording = openRecording(files.write("cut.wav", c.bytes), QString());
        ASSERT_EQ(recording.warnings.size(), 1);
        EXPECT_TRUE(recording.warnings[0].contains(QLatin1String(c.warning)));
        EXPECT_EQ(samplesOf(recording), std::vector<float>{0.25f});
    }
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
        QBuffer buffer;
        buffer.setData(c.bytes);
        buffer.open(QIODevice::ReadOnly);
        const auto read = [&] { readWavHeader(buffer, QStringLiteral("a.wav")); };
        expectRefusal(c.name, read, c.sentence);
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
    const auto global = [](const char *more) { return meta("ri8", more); };
    const auto captures = [](const char *list, const char *more = "") {
        return meta("ri8", more, list);
    };
    const struct {
        QByteArray meta;
        double center;
        KRTimeStamp start;
        std::vector<float> expected; ///< of 1, 2, 3, 4
    } cases[] = {
        {captures("[]"), 0, 0, {1, 2, 3, 4}},
        {captures(R"([{"core:sample_start":0,"core:frequency":98e6,)"
                  R"("core:datetime":"1970-01-02T00:00:01.123456789Z"}])"),
         98e6,
         86401123456,
         {1, 2, 3, 4}},
        {captures(R"([{"core:sample_start":0,"core:datetime":"1970-01-02T01:00:00+01:00"}])"),
         0,
         86400000000,
         {1, 2, 3, 4}},
        // samples counted from an offset
        {captures(R"([{"core:sample_start":1002}])", R"(,"core:offset":1000)"), 0, 0, {3, 4}},
        // ends where the frequency changes
        {captures(R"([{"core:sample_start":1,"core:frequency":1},)"
                  R"({"core:sample_start":3,"core:frequency":2}])"),
         1,
         0,
         {2, 3}},
        // bytes before and behind
        {captures(R"([{"core:sample_start":0,"core:header_bytes":2}])",
                  R"(,"core:trailing_bytes":1)"),
         0,
         0,
         {3}},
        {global(R"(,"core:num_channels":2)"), 0, 0, {1, 3}},
        {global(R"(,"x:y":{"z":[1]},"core:extensions":[{"name":"a","optional":true}])"),
         0,
         0,
         {1, 2, 3, 4}},
    };
    const Files files;
    files.write("a.sigmf-data", images<std::int8_t>({1, 2, 3, 4}));
    for (const auto &c : cases) {
        SCOPED_TRACE(c.meta.toStdString());
        const Recording recording = openRecording(files.write("a.sigmf-meta", c.meta), QString());
        EXPECT_EQ(recording.center, c.center);
        EXPECT_EQ(recording.start, c.start);
        std::vector<float> samples = samplesOf(recording);
        for (float &sample : samples)
            sample *= 128;
        EXPECT_EQ(samples, c.expected);
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
    for (const auto &c : cases)
        expectRefusal(
            c.name, [&] { parseSigMfMeta(c.json, QStringLiteral("a.sigmf-meta")); }, c.sentence);
    const Files files;
    const QString path = files.write("a.sigmf-meta", meta("ci8"));
    const auto open = [&] { openRecording(path, QString()); };
    expectRefusal("no data file", open, "samples are missing");
    files.write("a.sigmf-data", "odd");
    expectRefusal("an odd data file", open, "no whole number");
}
