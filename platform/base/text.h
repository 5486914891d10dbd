#pragma once

#include "platform/base/export.h"

#include <QString>

namespace Kelm {

/// True when every character is below 128; an empty string is ASCII.
SPECTREE_EXPORT bool isAsciiString(const QString &text);

} // namespace Kelm
