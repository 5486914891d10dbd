// Scan buffer messages: whatever parses is read through, written, and parses again to the same.
#include "fuzz/fuzztools.h"
#include "platform/base/krexception.h"
#include "scanbuffer/mdatatypes.h"

#include <cstdint>

namespace {

/// Unpacks what unpacks on demand; contained messages to a depth that no display uses.
void readThrough(const MData &message, int depth)
{
    if (const auto *container = dynamic_cast<const MDataContainer *>(&message)) {
        for (short i = 0; i < container->GetAdditional() && i < 100 && depth > 0; ++i)
            if (const auto contained = container->getMData(i))
                readThrough(*contained, depth - 1);
    } else if (const auto *bytes = dynamic_cast<const MDataByteArray *>(&message)) {
        bytes->GetValue();
    } else if (const auto *rows = dynamic_cast<const MDataWaterfall *>(&message)) {
        rows->GetString();
    } else if (const auto *image = dynamic_cast<const MDataAzimuth *>(&message)) {
        image->byteCount();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    try {
        const auto *bytes = reinterpret_cast<const char *>(data);
        const auto message = MData::FromBinary(bytes, std::int32_t(size));
        if (!message)
            return 0;
        const std::string image = message->GetBinary();
        require(image.size() == message->GetBinarySize());
        const auto again = MData::FromBinary(image.data(), std::int32_t(image.size()));
        require(again != nullptr && again->GetType() == message->GetType());
        require(again->GetBinary() == image);
        readThrough(*message, 3);
    } catch (const KRException &error) {
        require(error.GetReason() == QStringLiteral("RangeCheck failed for Enum"));
    }
    return 0;
}
