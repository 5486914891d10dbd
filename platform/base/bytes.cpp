#include "platform/base/bytes.h"

#include "platform/base/krexception.h"

#include <cstdint>
#include <limits>

namespace Kelm {
namespace {

// The model spares the lookup that a shared library otherwise makes for each access.
thread_local const ReadScope *innermost __attribute__((tls_model("initial-exec"))) = nullptr;

[[noreturn]] void throwNotTerminated(const char *className, const char *functionName)
{
    throw KRException(QStringLiteral("Command string is not terminated with ';'"), __FILE__,
                      className, functionName, __LINE__);
}

} // namespace

ReadScope::ReadScope(const char *begin, std::size_t size)
    : m_begin(begin), m_end(begin + size), m_outer(innermost)
{
    innermost = this;
}

ReadScope::~ReadScope() { innermost = m_outer; }

std::size_t bytesLeft(const char *position)
{
    // Compared as numbers: pointers into different buffers have no order of their own.
    const auto at = reinterpret_cast<std::uintptr_t>(position);
    for (const ReadScope *scope = innermost; scope != nullptr; scope = scope->m_outer) {
        const auto end = reinterpret_cast<std::uintptr_t>(scope->m_end);
        if (at >= reinterpret_cast<std::uintptr_t>(scope->m_begin) && at <= end)
            return end - at;
    }
    return std::numeric_limits<std::size_t>::max();
}

void requireBytes(const char *position, std::size_t count, std::size_t size)
{
    const std::size_t left = bytesLeft(position);
    if (size != 0 && count > left / size)
        throwNotTerminated("Kelm", "requireBytes");
}

const char *findByte(const char *position, char terminator)
{
    const std::size_t left = bytesLeft(position);
    const void *found = left == std::numeric_limits<std::size_t>::max()
                            ? rawmemchr(position, terminator)
                            : std::memchr(position, terminator, left);
    if (found == nullptr)
        throwNotTerminated("Kelm", "findByte");
    return static_cast<const char *>(found);
}

std::string readBytes(const char **cursor, std::size_t count)
{
    requireBytes(*cursor, count);
    std::string bytes(*cursor, count);
    *cursor += count;
    return bytes;
}

void readTerminator(const char **cursor, const char *className, const char *functionName)
{
    if (bytesLeft(*cursor) == 0 || **cursor != ';')
        throwNotTerminated(className, functionName);
    ++*cursor;
}

} // namespace Kelm
