#pragma once

#include "platform/base/export.h"

#include <string>

/// The binary image of a structure: its fields in declaration order, little-endian, without
/// padding. Each structure specialises both beside its own declaration.
namespace Kelm {

template <typename T>
std::string toStandardString(const T &structure);

/// Reads an image and advances the cursor. \throws KRException when the bytes end before it does or
/// a terminator is missing.
template <typename T>
T fromCharStream(const char **cursor);

} // namespace Kelm
