#pragma once

#include "platform/base/bytes.h"

#include <QByteArray>

#include <string>

/// The bytes that hexadecimal digits name; blanks and line ends are skipped.
inline std::string fromHex(const std::string &digits)
{
    return QByteArray::fromHex(QByteArray::fromStdString(digits)).toStdString();
}

/// The image of a number.
template <typename Number>
std::string raw(Number number)
{
    std::string image;
    Kelm::appendLittleEndian(image, number);
    return image;
}
