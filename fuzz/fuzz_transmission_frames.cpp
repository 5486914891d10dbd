// Any bytes as a frame of either side: parsed without a fault, and what parses has one image only.
#include "platform/transmission/frames_p.h"

#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace sbs::frames;
    const std::string input(reinterpret_cast<const char *>(data), size);
    if (const auto frame = parseFromConsumer(input.data(), input.size())) {
        const auto *hello = std::get_if<Hello>(&*frame);
        if (!(hello && hello->version != kVersion) && encode(*frame) != input)
            std::abort();
    }
    if (const auto frame = parseFromServer(input.data(), input.size()))
        if (encode(*frame) != input)
            std::abort();
    return 0;
}
