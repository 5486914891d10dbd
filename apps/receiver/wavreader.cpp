#include "apps/receiver/wavreader.h"

#include "apps/common/failure.h"
#include "platform/base/bytes.h"

#include <QIODevice>

#include <algorithm>

namespace receiver {

using apps::Failure;

namespace {

constexpr std::uint16_t kPcm = 1, kFloat = 3, kExtensible = 0xFFFE;
constexpr std::uint32_t kUnknownSize = 0xFFFFFFFF;

struct Chunk {
    QByteArray id;
    std::uint32_t size = 0;
    qint64 begin = 0; // of its content
};

struct WavFormat {
    std::uint16_t code = 0, channels = 0, bits = 0;
    std::uint32_t rate = 0;
};

Failure broken(const QString &name, const QString &what)
{
    return {Failure::Runtime,
            QStringLiteral("%1 can't be used as a WAV file: %2.").arg(name, what)};
}

bool nextChunk(QIODevice &device, qint64 position, Chunk &chunk)
{
    if (position > device.size() - 8 || !device.seek(position))
        return false;
    const QByteArray head = device.read(8);
    if (head.size() < 8)
        return false;
    const char *cursor = head.constData() + 4;
    chunk.id = head.left(4);
    chunk.size = Kelm::readLittleEndian<std::uint32_t>(&cursor);
    chunk.begin = position + 8;
    return true;
}

WavFormat readFormat(const QByteArray &bytes, const QString &name)
{
    WavFormat format;
    if (bytes.size() < 16)
        throw broken(name, QStringLiteral("its format chunk is cut off"));
    const char *cursor = bytes.constData();
    const Kelm::ReadScope scope(cursor, std::size_t(bytes.size()));
    format.code = Kelm::readLittleEndian<std::uint16_t>(&cursor);
    format.channels = Kelm::readLittleEndian<std::uint16_t>(&cursor);
    format.rate = Kelm::readLittleEndian<std::uint32_t>(&cursor);
    cursor += 6; // byte rate and block size follow from the rest
    format.bits = Kelm::readLittleEndian<std::uint16_t>(&cursor);
    if (format.code == kExtensible && bytes.size() >= 26) {
        cursor = bytes.constData() + 24; // the sub-format begins with the real code
        format.code = Kelm::readLittleEndian<std::uint16_t>(&cursor);
    }
    return format;
}

SampleFormat sampleFormatOf(const WavFormat &wav, const QString &name)
{
    if (wav.channels != 1 && wav.channels != 2)
        throw broken(name, QStringLiteral("it has %1 channels, where one (real samples) or two (I "
                                          "and Q) are read")
                               .arg(wav.channels));
    if (wav.rate == 0)
        throw broken(name, QStringLiteral("its sample rate is 0"));
    const auto kind = [&]() -> std::optional<NumberKind> {
        if (wav.code == kFloat)
            return wav.bits == 32   ? std::optional(NumberKind::f32)
                   : wav.bits == 64 ? std::optional(NumberKind::f64)
                                    : std::nullopt;
        if (wav.code != kPcm)
            return std::nullopt;
        switch (wav.bits) {
        case 8:
            return NumberKind::u8;
        case 16:
            return NumberKind::i16;
        case 24:
            return NumberKind::i24;
        case 32:
            return NumberKind::i32;
        default:
            return std::nullopt;
        }
    }();
    if (!kind)
        throw broken(name, QStringLiteral("its format %1 with %2 bits is neither PCM nor float: "
                                          "convert it to 16 bits PCM")
                               .arg(wav.code)
                               .arg(wav.bits));
    SampleFormat format = makeFormat(*kind, wav.channels == 2);
    if (*kind == NumberKind::u8)
        format.zero = format.fullScale = 128; // WAV's zero, where a bare u8 has it at 127.5
    return format;
}

/// Bytes of whole samples in the data chunk.
std::int64_t dataSize(const Chunk &chunk, qint64 fileSize, Recording &recording)
{
    const std::int64_t there = std::max<std::int64_t>(fileSize - chunk.begin, 0);
    std::int64_t size = chunk.size;
    if (chunk.size == 0 || chunk.size == kUnknownSize) {
        size = there; // a writer that was stopped, or that could not seek
    } else if (size > there) {
        recording.warnings << QStringLiteral("%1 ends %2 bytes early: what is there is used.")
                                  .arg(recording.dataFile)
                                  .arg(size - there);
        size = there;
    }
    const std::int64_t rest = size % std::int64_t(recording.format.bytesPerSample());
    if (rest != 0 && recording.warnings.isEmpty())
        recording.warnings << QStringLiteral("%1 ends within a sample: the ones before are used.")
                                  .arg(recording.dataFile);
    return size - rest;
}

} // namespace

bool isWav(QIODevice &device)
{
    const QByteArray head = device.peek(12);
    return head.startsWith("RIFF") && head.mid(8) == "WAVE";
}

Recording readWavHeader(QIODevice &device, const QString &name)
{
    if (!isWav(device))
        throw broken(name, QStringLiteral("it does not begin with RIFF and WAVE"));
    WavFormat wav;
    Chunk chunk;
    for (qint64 position = 12; nextChunk(device, position, chunk);) {
        if (chunk.id == "fmt ")
            wav = readFormat(device.read(std::min<qint64>(chunk.size, 64)), name);
        if (chunk.id == "data") {
            if (wav.code == 0)
                throw broken(name, QStringLiteral("its samples come before their format"));
            Recording recording;
            recording.dataFile = name;
            recording.offset = chunk.begin;
            recording.format = sampleFormatOf(wav, name);
            recording.rate = wav.rate;
            recording.size = dataSize(chunk, device.size(), recording);
            return recording;
        }
        position = chunk.begin + chunk.size + chunk.size % 2;
    }
    throw broken(name, QStringLiteral("it holds no samples (no data chunk)"));
}

} // namespace receiver
