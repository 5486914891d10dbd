#include "platform/base/errorhandler.h"
#include "platform/base/zstdcodec.h"
#include "scanbuffer/messages/mdatapacking_p.h"

#include <algorithm>

namespace MDataPacking {
namespace {

/// The most that a frame of this size can unpack to: a block takes 4 bytes at least (a header of
/// three, one byte to repeat) and holds 128 KiB at most.
std::size_t mostContent(std::size_t size) { return (size / 4 + 1) << 17; }

} // namespace

const std::string &pack(const char *data, std::size_t size)
{
    thread_local std::string buffer;
    buffer.clear();
    Kelm::zstdCompress(data, size, buffer);
    return buffer;
}

bool unpack(const char *data, std::size_t size, std::string &plain)
{
    const std::size_t limit = std::min(mostContent(size), Kelm::kMaxUnpackedBytes);
    if (Kelm::zstdDecompress(data, size, plain, limit))
        return true;
    SPECTREE_TRACE(TraceWarnings, QStringLiteral("The payload of a MData Object doesn't unpack"));
    return false;
}

} // namespace MDataPacking
