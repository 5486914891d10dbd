#pragma once

#include "valueclasses/commands/streamformat.h"
#include "valueclasses/valuetype.h"

namespace values {

/// Type number and type name of the value that holds one T: `kType` and `kTypeName`. Whoever gives
/// Value a further T specialises it beside T.
template <typename T>
struct ScalarKind;

/// The types that `Value` holds: T, its format class, type number, type name.
#define SPECTREE_FOR_EACH_SCALAR(X)                                                                \
    X(bool, FormatBool, VTYPE_ValueBoolean, "ValueBoolean")                                        \
    X(int, FormatInt, VTYPE_ValueInt, "ValueInt")                                                  \
    X(std::int64_t, FormatInt64, VTYPE_ValueInt64, "ValueInt64")                                   \
    X(double, FormatFloat, VTYPE_ValueFloat, "ValueFloat")                                         \
    X(QString, FormatString, VTYPE_ValueString, "ValueString")                                     \
    X(std::string, FormatCString, VTYPE_ValueCString, "ValueCString")                              \
    X(std::wstring, FormatWString, VTYPE_ValueWString, "ValueWString")                             \
    X(unsigned int, FormatInt, VTYPE_ValueUInt, "ValueUInt")                                       \
    X(char, FormatInt, VTYPE_ValueChar, "ValueChar")                                               \
    X(unsigned char, FormatInt, VTYPE_ValueUChar, "ValueUChar")                                    \
    X(short, FormatInt, VTYPE_ValueInt16, "ValueInt16")

/// The same for the types that `ValueNumeric` holds, with and without limits of their own.
template <typename T>
struct NumericKind;

#define SPECTREE_FOR_EACH_NUMERIC(X)                                                               \
    X(int, FormatInt, VTYPE_ValueNumericInt, "ValueNumericInt")                                    \
    X(std::int64_t, FormatInt64, VTYPE_ValueNumericInt64, "ValueNumericInt64")                     \
    X(double, FormatFloat, VTYPE_ValueNumericFloat, "ValueNumericFloat")

/// The same for the elements of `ValueStream`. Two of them share a type number.
template <typename T>
struct StreamKind;

#define SPECTREE_FOR_EACH_STREAM(X)                                                                \
    X(int, FormatInt, VTYPE_ValueStreamInt, "ValueStreamInt")                                      \
    X(float, FormatFloat, VTYPE_ValueStreamFloat, "ValueStreamFloat")                              \
    X(double, FormatFloat, VTYPE_ValueStreamDouble, "ValueStreamDouble")

#define SPECTREE_KIND(Kind, T, Type, Name)                                                         \
    template <>                                                                                    \
    struct Kind<T> {                                                                               \
        static constexpr ValueType kType = Type;                                                   \
        static constexpr const char *kTypeName = Name;                                             \
    };
#define SPECTREE_SCALAR_KIND(T, F, Type, Name) SPECTREE_KIND(ScalarKind, T, Type, Name)
#define SPECTREE_NUMERIC_KIND(T, F, Type, Name) SPECTREE_KIND(NumericKind, T, Type, Name)
#define SPECTREE_STREAM_KIND(T, F, Type, Name) SPECTREE_KIND(StreamKind, T, Type, Name)
SPECTREE_FOR_EACH_SCALAR(SPECTREE_SCALAR_KIND)
SPECTREE_FOR_EACH_NUMERIC(SPECTREE_NUMERIC_KIND)
SPECTREE_FOR_EACH_STREAM(SPECTREE_STREAM_KIND)
#undef SPECTREE_SCALAR_KIND
#undef SPECTREE_NUMERIC_KIND
#undef SPECTREE_STREAM_KIND
#undef SPECTREE_KIND

} // namespace values
