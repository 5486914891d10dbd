#pragma once

#include "byteimages.h"
#include "valueclasses/records/sequencekinds.h"

namespace values {

/// Gives a field, or every field of a record, a value that differs with \a i.
template <typename T>
void vary(T &field, int i)
{
    if constexpr (requires { T::Fields(field); })
        std::apply(
            [&](auto &...each) {
                int n = i;
                (vary(each, (n += 2)), ...);
            },
            T::Fields(field));
    else if constexpr (std::is_same_v<T, std::vector<int>>)
        field.assign(2, i);
    else if constexpr (std::is_same_v<T, std::vector<FrequencyMaskPoint>>)
        field.assign(2, {true, i});
    else if constexpr (std::is_same_v<T, BinaryBuffer<36>>)
        field = RectangleNColor(i, i + 0.5, -i, 2 * i, 0xFF000000U + unsigned(i)).GetBuffer();
    else if constexpr (std::is_same_v<T, QString>)
        field = QStringLiteral("text %1").arg(i);
    else if constexpr (std::is_same_v<T, std::string>)
        field = "text " + std::to_string(i);
    else if constexpr (std::is_same_v<T, bool>)
        field = i % 2 != 0;
    else if constexpr (std::is_floating_point_v<T>)
        field = T(i) + T(0.25);
    else if constexpr (std::is_same_v<T, char>)
        field = char('A' + i);
    else
        field = T(i);
}

/// An element: those of different \a i differ, as far as the type can.
template <typename T>
T sample(int i)
{
    T element{};
    vary(element, i);
    return element;
}

} // namespace values
