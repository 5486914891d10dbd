#pragma once

#include "platform/base/krexception.h"

namespace values::Detail {

/// What \a read returns. An error of its goes on as one of the command that reads, under that one's
/// tags, and with \a reason where there is one: the readers of bytes know no commands.
template <typename Read>
auto withCommandTags(const char *className, const char *functionName, Read read,
                     const char *reason = nullptr)
{
    try {
        return read();
    } catch (const KRException &error) {
        throw KRException(reason != nullptr ? QString::fromLatin1(reason) : error.GetReason(),
                          __FILE__, className, functionName, __LINE__);
    }
}

} // namespace values::Detail
