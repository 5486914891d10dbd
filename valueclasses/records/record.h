#pragma once

#include "valueclasses/commands/streamformat.h"

#include <string>
#include <tuple>

/// What every record of a list has: a static `Fields(record)` that names its fields in the order of
/// all of its forms, equality of all fields, and a format class with GetString and GetValue.
///
/// The binary image is the fields one after the other, numbers little-endian, a QString as uint32
/// count of UTF-16 units and the units, a std::string as uint32 count and bytes, a sequence as
/// uint32 count and its elements. It loses nothing and doesn't depend on the mode. docs/lists.md
/// tells text and image of each record.
///
/// GetValue throws KRException for a text with too few or too many fields and for a field that
/// isn't a number of its width.
namespace values {

/// A record that is printed in text mode; what it prints must not hold a ";".
template <typename T, typename F>
class PrintedStreamFormat {
public:
    static T FromStream(const char **pos, int mode)
    {
        return isTextMode(mode) ? F::GetValue(Format::ReadToken(pos))
                                : Kelm::fromCharStream<T>(pos);
    }
    static std::string ToStream(const T &value, int mode)
    {
        return isTextMode(mode) ? F::GetString(value).toStdString() : Kelm::toStandardString(value);
    }
    static void Append(std::string &out, const T &value, int mode) { out += ToStream(value, mode); }
};

} // namespace values

/// Declares the image of a structure, in the global namespace.
#define SPECTREE_DECLARE_RECORD_IMAGE(T)                                                           \
    template <>                                                                                    \
    SPECTREE_EXPORT std::string Kelm::toStandardString<T>(const T &record);                        \
    template <>                                                                                    \
    SPECTREE_EXPORT T Kelm::fromCharStream<T>(const char **cursor);
/// Declares the forms of a record, in the global namespace. The record is its image in commands of
/// every mode, unless another stream form is given.
#define SPECTREE_DECLARE_RECORD_AS(T, FormatClass, ...)                                            \
    SPECTREE_DECLARE_RECORD_IMAGE(T)                                                               \
    template <>                                                                                    \
    struct values::Detail::DefaultFormat<T> {                                                      \
        using type = FormatClass;                                                                  \
    };                                                                                             \
    template <>                                                                                    \
    class values::StreamFormat<T, FormatClass> : public __VA_ARGS__ {                              \
    };
#define SPECTREE_DECLARE_RECORD(T, FormatClass)                                                    \
    SPECTREE_DECLARE_RECORD_AS(T, FormatClass, values::StreamFormat<T, void>)
#define SPECTREE_DECLARE_PRINTED_RECORD(T, FormatClass)                                            \
    SPECTREE_DECLARE_RECORD_AS(T, FormatClass, values::PrintedStreamFormat<T, FormatClass>)
