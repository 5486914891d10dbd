#pragma once

#include "platform/base/export.h"

#include <cstddef>
#include <string>

/// zstd at level 1, with one kept context a thread, so that packing a line costs no set-up.
namespace Kelm {

/// No message unpacks to more than this; a frame that declares more is refused before any memory
/// is taken.
inline constexpr std::size_t kMaxUnpackedBytes = std::size_t(1) << 28;

/// Appends the compressed \a data to \a out. \throws KRException when zstd fails.
SPECTREE_EXPORT void zstdCompress(const char *data, std::size_t size, std::string &out);
/// Replaces \a out by the content of the frame \a data. Returns false, with \a out untouched, when
/// the frame is malformed, declares no size, or declares more than \a limit. An empty frame of
/// bytes gives an empty content.
SPECTREE_EXPORT bool zstdDecompress(const char *data, std::size_t size, std::string &out,
                                    std::size_t limit = kMaxUnpackedBytes);

} // namespace Kelm
