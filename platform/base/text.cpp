#include "platform/base/text.h"

#include <algorithm>

bool Kelm::isAsciiString(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 128; });
}
