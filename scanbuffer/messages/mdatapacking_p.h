#pragma once

#include <cstddef>
#include <string>

/// The zstd packing that message payloads share.
namespace MDataPacking {

/// The frame of \a data in a buffer that the thread keeps for the next call.
const std::string &pack(const char *data, std::size_t size);
/// Replaces \a plain by the content of a frame. Traces and returns false, with \a plain untouched,
/// when it is malformed or declares more than its bytes can stand for.
bool unpack(const char *data, std::size_t size, std::string &plain);

} // namespace MDataPacking
