#pragma once

#include <QString>

#include <optional>
#include <string_view>

namespace values {

/// Takes the text up to the next ";" off, and the ";" too; nothing, with \a text as it was, where
/// none follows.
inline std::optional<QString> takeToken(std::string_view &text)
{
    const std::size_t end = text.find(';');
    if (end == std::string_view::npos)
        return std::nullopt;
    const QString token = QString::fromLatin1(text.data(), int(end));
    text.remove_prefix(end + 1);
    return token;
}

} // namespace values
