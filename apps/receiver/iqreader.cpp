#include "apps/receiver/iqreader.h"

#include "apps/common/failure.h"
#include "apps/receiver/sigmf.h"
#include "apps/receiver/wavreader.h"
#include "platform/base/bytes.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace receiver {

using apps::Failure;

namespace {

constexpr std::size_t kSamplesPerRead = 16384;

template <typename T>
T load(const char *from, bool bigEndian)
{
    T value;
    std::memcpy(&value, from, sizeof value);
    if (bigEndian != (std::endian::native == std::endian::big)) {
        using Bits = typename Kelm::Detail::UintOf<sizeof(T)>::type;
        value = std::bit_cast<T>(Kelm::Detail::swapBytes(std::bit_cast<Bits>(value)));
    }
    return value;
}

std::int32_t load24(const char *from, bool bigEndian)
{
    const auto byte = [from](int i) { return std::uint32_t(std::uint8_t(from[i])); };
    const std::uint32_t word = bigEndian ? byte(0) << 24 | byte(1) << 16 | byte(2) << 8
                                         : byte(2) << 24 | byte(1) << 16 | byte(0) << 8;
    return std::int32_t(word) >> 8;
}

/// Calls \a loadOne for each number of the first channel of each sample.
template <typename Load>
void decodeWith(const SampleFormat &format, const char *bytes, std::size_t samples, float *out,
                Load loadOne)
{
    const std::size_t numbers = format.complex ? 2 : 1, width = bytesOf(format.kind);
    const std::size_t stride = format.bytesPerSample();
    const double zero = format.zero, scale = 1 / format.fullScale;
    for (std::size_t i = 0; i < samples; ++i, bytes += stride)
        for (std::size_t part = 0; part < numbers; ++part)
            *out++ = float((double(loadOne(bytes + part * width)) - zero) * scale);
}

template <typename T>
void decodeAs(const SampleFormat &format, const char *bytes, std::size_t samples, float *out)
{
    const bool bigEndian = format.bigEndian;
    decodeWith(format, bytes, samples, out, [bigEndian](const char *from) {
        const T value = load<T>(from, bigEndian);
        if constexpr (std::is_floating_point_v<T>)
            return std::isfinite(value) ? value : T(0);
        else
            return value;
    });
}

void decode(const SampleFormat &format, const char *bytes, std::size_t samples, float *out)
{
    switch (format.kind) {
    case NumberKind::u8:
        return decodeAs<std::uint8_t>(format, bytes, samples, out);
    case NumberKind::i8:
        return decodeAs<std::int8_t>(format, bytes, samples, out);
    case NumberKind::u16:
        return decodeAs<std::uint16_t>(format, bytes, samples, out);
    case NumberKind::i16:
        return decodeAs<std::int16_t>(format, bytes, samples, out);
    case NumberKind::u32:
        return decodeAs<std::uint32_t>(format, bytes, samples, out);
    case NumberKind::i32:
        return decodeAs<std::int32_t>(format, bytes, samples, out);
    case NumberKind::f32:
        return decodeAs<float>(format, bytes, samples, out);
    case NumberKind::f64:
        return decodeAs<double>(format, bytes, samples, out);
    case NumberKind::i24:
        return decodeWith(format, bytes, samples, out,
                          [&format](const char *from) { return load24(from, format.bigEndian); });
    }
}

Failure unreadable(const QFile &file)
{
    return {Failure::Runtime,
            QStringLiteral("%1 can't be read: %2. Check the path and its permissions.")
                .arg(file.fileName(), file.errorString())};
}

Recording plainSamples(const QString &path, const QString &formatName)
{
    const QString name = formatName.isEmpty() ? QFileInfo(path).suffix().toLower() : formatName;
    const auto format = formatByName(name);
    if (!format)
        throw Failure(
            Failure::Usage,
            QStringLiteral("How %1 stores its samples is unknown: give --format cu8, cs8, "
                           "cs16 or cf32.")
                .arg(path));
    Recording recording;
    recording.dataFile = path;
    recording.size = QFileInfo(path).size();
    recording.format = *format;
    const auto bytes = std::int64_t(format->bytesPerSample());
    if (recording.size % bytes != 0)
        throw Failure(
            Failure::Runtime,
            QStringLiteral("%1 has %2 bytes, which is no whole number of %3 samples of %4 "
                           "bytes: it is cut off, or --format is wrong.")
                .arg(path)
                .arg(recording.size)
                .arg(name)
                .arg(bytes));
    return recording;
}

} // namespace

std::size_t bytesOf(NumberKind kind)
{
    constexpr std::size_t kBytes[] = {1, 1, 2, 2, 3, 4, 4, 4, 8};
    return kBytes[std::size_t(kind)];
}

SampleFormat makeFormat(NumberKind kind, bool complex)
{
    SampleFormat format;
    format.kind = kind;
    format.complex = complex;
    switch (kind) {
    case NumberKind::u8:
        break;
    case NumberKind::u16:
        format.zero = format.fullScale = 32768;
        break;
    case NumberKind::u32:
        format.zero = format.fullScale = 2147483648.0;
        break;
    default:
        format.zero = 0;
        const bool isFloat = kind == NumberKind::f32 || kind == NumberKind::f64;
        format.fullScale = isFloat ? 1 : std::ldexp(1.0, int(8 * bytesOf(kind)) - 1);
    }
    return format;
}

std::optional<SampleFormat> formatByName(const QString &name)
{
    if (name == QLatin1String("cu8"))
        return makeFormat(NumberKind::u8, true);
    if (name == QLatin1String("cs8"))
        return makeFormat(NumberKind::i8, true);
    if (name == QLatin1String("cs16"))
        return makeFormat(NumberKind::i16, true);
    if (name == QLatin1String("cf32"))
        return makeFormat(NumberKind::f32, true);
    return std::nullopt;
}

Recording openRecording(const QString &path, const QString &formatName)
{
    QFile file(path);
    if (QFileInfo(path).isDir())
        throw Failure(Failure::Runtime, QStringLiteral("%1 is a folder: name a file.").arg(path));
    if (!file.open(QIODevice::ReadOnly))
        throw unreadable(file);
    if (!formatName.isEmpty())
        return plainSamples(path, formatName);
    if (isWav(file))
        return readWavHeader(file);
    if (const QString meta = sigMfMetaFor(path); !meta.isEmpty())
        return readSigMf(meta);
    return plainSamples(path, formatName);
}

IqReader::IqReader(const Recording &recording)
    : m_recording(recording), m_file(recording.dataFile),
      m_bytes(kSamplesPerRead * recording.format.bytesPerSample())
{
    if (!m_file.open(QIODevice::ReadOnly))
        throw unreadable(m_file);
    rewind();
}

void IqReader::rewind()
{
    if (!m_file.seek(m_recording.offset))
        throw unreadable(m_file);
    m_left = m_recording.size;
}

std::size_t IqReader::read(float *out, std::size_t count)
{
    const auto width = std::int64_t(m_recording.format.bytesPerSample());
    const std::size_t floats = m_recording.format.complex ? 2 : 1;
    std::size_t done = 0;
    while (done < count && m_left >= width) {
        const auto wanted = std::int64_t(std::min(count - done, kSamplesPerRead));
        const std::int64_t bytes = std::min(wanted * width, m_left / width * width);
        if (m_file.read(m_bytes.data(), bytes) != bytes)
            throw unreadable(m_file);
        const auto samples = std::size_t(bytes / width);
        decode(m_recording.format, m_bytes.data(), samples, out + done * floats);
        done += samples;
        m_left -= bytes;
    }
    return done;
}

} // namespace receiver
