#include "apps/common/failure.h"
#include "apps/receiver/sweepreader.h"

#include <QBuffer>

#include <cstdlib>

/// A sweep file with any content gives scans of its grid's size, or a sentence.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    auto buffer = std::make_unique<QBuffer>();
    buffer->setData(reinterpret_cast<const char *>(data), int(size));
    buffer->open(QIODevice::ReadOnly);
    try {
        receiver::SweepReader reader(std::move(buffer), QStringLiteral("fuzz.csv"), 107,
                                     [](const QString &) {});
        const std::size_t channels = receiver::channelCount(reader.grid());
        receiver::Scan scan;
        while (reader.read(scan))
            if (scan.levels.size() != channels || channels == 0)
                std::abort();
    } catch (const apps::Failure &) {
        // Most inputs are no sweep file.
    }
    return 0;
}
