#include "apps/common/failure.h"
#include "apps/receiver/sigmf.h"
#include "apps/receiver/wavreader.h"

#include <QBuffer>

#include <cstdlib>

namespace {

void readWav(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    const receiver::Recording recording =
        receiver::readWavHeader(buffer, QStringLiteral("fuzz.wav"));
    const bool inside = recording.offset >= 0 && recording.size >= 0 &&
                        recording.offset + recording.size <= bytes.size() &&
                        recording.size % qint64(recording.format.bytesPerSample()) == 0;
    if (!inside || !(recording.rate > 0))
        std::abort();
}

void readSigMf(const QByteArray &bytes)
{
    const receiver::SigMfMeta meta =
        receiver::parseSigMfMeta(bytes, QStringLiteral("fuzz.sigmf-meta"));
    if (meta.format.bytesPerSample() == 0 || meta.firstSample < 0 || meta.headerBytes < 0)
        std::abort();
}

} // namespace

/// Qt 5.15's JSON reader loses the first of two values with the same key.
extern "C" const char *__lsan_default_suppressions() { return "leak:libQt5Core\n"; }

/// Headers of recordings give places inside the file, or a sentence.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    for (auto *read : {&readWav, &readSigMf})
        try {
            read(bytes);
        } catch (const apps::Failure &) {
            // Most inputs are neither.
        }
    return 0;
}
