#pragma once

#include "valueclasses/records/record.h"

#include <array>

namespace values {

/// A block of bytes of a fixed size.
template <std::size_t Size>
struct BinaryBuffer {
    std::array<char, Size> bytes{};

    bool operator==(const BinaryBuffer &) const = default;
};

/// A rectangle of a display with its colour, in the 36 bytes of a buffer: the four limits as
/// doubles and the colour as uint32, little-endian. It is the text format of such a buffer, too.
class SPECTREE_EXPORT RectangleNColor {
public:
    using Buffer = BinaryBuffer<36>;

    RectangleNColor() = default;
    explicit RectangleNColor(const Buffer &buffer) : m_buffer(buffer) {}
    RectangleNColor(double xStart, double xStop, double yStart, double yStop, std::uint32_t color);

    double GetXStart() const { return limit(0); } ///< as a rule Hz
    double GetXStop() const { return limit(1); }
    double GetYStart() const { return limit(2); } ///< as a rule dBµV
    double GetYStop() const { return limit(3); }
    std::uint32_t GetColor() const; ///< 0xAARRGGBB
    const Buffer &GetBuffer() const { return m_buffer; }

    static QString GetString(const Buffer &buffer);
    static Buffer GetValue(const QString &text);

private:
    double limit(int index) const;

    Buffer m_buffer;
};

} // namespace values

SPECTREE_DECLARE_RECORD(values::BinaryBuffer<36>, values::RectangleNColor)
