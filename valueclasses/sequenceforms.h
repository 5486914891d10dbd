#pragma once

#include "platform/base/bytes.h"
#include "valueclasses/commands/streamformat.h"

#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

/// What the forms of lists and vectors share.
namespace values::Sequence {

/// The largest count that a command can hold.
inline constexpr std::size_t kMaxCount = 0xFFFF;

/// Reads an element count. \throws KRException for one that the bytes left can't hold.
SPECTREE_EXPORT std::size_t readCount(const char **pos, int mode);
SPECTREE_EXPORT void appendCount(std::string &out, std::size_t count, int mode);

template <typename T>
bool isSame(const T &left, const T &right);

template <typename Fields, std::size_t... i>
bool areSameFields(const Fields &left, const Fields &right, std::index_sequence<i...> /*all*/)
{
    return (isSame(std::get<i>(left), std::get<i>(right)) && ...);
}

/// Two numbers that are NaN are the same element, so that it is found again; also in a record.
template <typename T>
bool isSame(const T &left, const T &right)
{
    if constexpr (std::is_floating_point_v<T>) {
        return left == right || (left != left && right != right);
    } else if constexpr (requires { T::Fields(left); }) {
        using Fields = decltype(T::Fields(left));
        return areSameFields(T::Fields(left), T::Fields(right),
                             std::make_index_sequence<std::tuple_size_v<Fields>>());
    } else {
        return left == right;
    }
}

/// Calls \a use with each line of \a text, up to the first empty one.
template <typename Use>
void forEachLine(const QString &text, Use use)
{
    for (int begin = 0; begin < text.size();) {
        int end = text.indexOf(QLatin1Char('\n'), begin);
        if (end < 0)
            end = text.size();
        if (end == begin)
            return;
        use(text.mid(begin, end - begin));
        begin = end + 1;
    }
}

/// Count and elements: a ";" between two fields in text only. The command closes them.
template <typename S, typename Iterator>
void append(std::string &out, Iterator item, std::size_t count, int mode)
{
    using Element = typename std::iterator_traits<Iterator>::value_type;
    appendCount(out, count, mode);
    for (; count > 0; --count, ++item) {
        if (isTextMode(mode))
            out += ';';
        const Element &element = *item;
        AppendField<S>(out, element, mode);
    }
}

/// Reads what append wrote.
template <typename Items, typename S>
Items read(const char **pos, int mode)
{
    Items items;
    for (std::size_t count = readCount(pos, mode); count > 0; --count) {
        if (isTextMode(mode))
            Kelm::readTerminator(pos, "ValueBase", "EatSemicolon");
        items.push_back(S::FromStream(pos, mode));
    }
    return items;
}

} // namespace values::Sequence
