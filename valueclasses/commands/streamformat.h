#pragma once

#include "platform/base/bytes.h"
#include "valueclasses/commands/command.h"
#include "valueclasses/samples/structureimage.h"

#include <QString>

#include <concepts>
#include <string>

namespace values {

/// The printable forms of field types: GetString and GetValue. A text that isn't a number, or one
/// that the type can't hold, reads as 0.
namespace Format {

/// The text up to the next ";", on which the cursor is left. \throws KRException without one.
SPECTREE_EXPORT QString ReadToken(const char **pos);

} // namespace Format

#define SPECTREE_FORMAT_CLASS(Name)                                                                \
    template <typename T>                                                                          \
    class SPECTREE_EXPORT Name {                                                                   \
    public:                                                                                        \
        static QString GetString(const T &value);                                                  \
        static T GetValue(const QString &text);                                                    \
    };
/// Integers up to 32 bits. A `char` prints as the character that it is, and reads as a number: the
/// two don't match.
SPECTREE_FORMAT_CLASS(FormatInt)
SPECTREE_FORMAT_CLASS(FormatInt64)
/// "true" and "false"; every other text reads as false.
SPECTREE_FORMAT_CLASS(FormatBool)
/// Six decimals.
SPECTREE_FORMAT_CLASS(FormatFloat)
SPECTREE_FORMAT_CLASS(FormatCString)
SPECTREE_FORMAT_CLASS(FormatWString)
SPECTREE_FORMAT_CLASS(FormatString)
#undef SPECTREE_FORMAT_CLASS

/// The field types and their format classes.
#define SPECTREE_FOR_EACH_FIELD_TYPE(X)                                                            \
    X(char, FormatInt)                                                                             \
    X(unsigned char, FormatInt)                                                                    \
    X(short, FormatInt)                                                                            \
    X(unsigned short, FormatInt)                                                                   \
    X(int, FormatInt)                                                                              \
    X(unsigned int, FormatInt)                                                                     \
    X(Kelm::Long, FormatInt)                                                                       \
    X(std::int64_t, FormatInt64)                                                                   \
    X(std::uint64_t, FormatInt64)                                                                  \
    X(bool, FormatBool)                                                                            \
    X(float, FormatFloat)                                                                          \
    X(double, FormatFloat)                                                                         \
    X(std::string, FormatCString)                                                                  \
    X(std::wstring, FormatWString)                                                                 \
    X(QString, FormatString)

namespace Detail {
template <typename T>
struct DefaultFormat {
    using type = void; // a structure: its image alone
};
#define SPECTREE_DEFAULT_FORMAT(T, FormatClass)                                                    \
    template <>                                                                                    \
    struct DefaultFormat<T> {                                                                      \
        using type = FormatClass<T>;                                                               \
    };
SPECTREE_FOR_EACH_FIELD_TYPE(SPECTREE_DEFAULT_FORMAT)
#undef SPECTREE_DEFAULT_FORMAT
} // namespace Detail

/// One field inside a command, written and read in the form of a mode: text (-1), or binary; a
/// structure without a format class is its image in every mode. A field's text ends before its ";",
/// which belongs to the command.
/// \throws KRException from FromStream where the bytes end too early.
template <typename T, typename F = typename Detail::DefaultFormat<T>::type>
class SPECTREE_EXPORT StreamFormat {
public:
    static T FromStream(const char **pos, int mode);
    static std::string ToStream(const T &value, int mode)
    {
        std::string out;
        Append(out, value, mode);
        return out;
    }
    /// ToStream without a string of its own.
    static void Append(std::string &out, const T &value, int mode);
};

template <typename T>
class StreamFormat<T, void> {
public:
    static T FromStream(const char **pos, int /*mode*/) { return Kelm::fromCharStream<T>(pos); }
    static std::string ToStream(const T &value, int /*mode*/)
    {
        return Kelm::toStandardString(value);
    }
    static void Append(std::string &out, const T &value, int mode) { out += ToStream(value, mode); }
};

/// Appends a field in the stream format S, in place where S can.
template <typename S, typename T>
void AppendField(std::string &out, const T &value, int mode)
{
    if constexpr (requires { S::Append(out, value, mode); })
        S::Append(out, value, mode);
    else
        out += S::ToStream(value, mode);
}

#define SPECTREE_DECLARE(T, FormatClass)                                                           \
    extern template class SPECTREE_EXPORT FormatClass<T>;                                          \
    extern template class SPECTREE_EXPORT StreamFormat<T, FormatClass<T>>;
SPECTREE_FOR_EACH_FIELD_TYPE(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace values
