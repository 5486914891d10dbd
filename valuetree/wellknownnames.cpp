#include "valuetree/wellknownnames.h"

#include <cstddef>
#include <iterator>

namespace wellknown {
namespace {

/// A text in the form that a QString refers to without a copy. QStringLiteral makes the same, but
/// with a cast that the compiler can't evaluate, so that a constant would wait for its turn at
/// start.
template <std::size_t lengthWithZero>
struct Text {
    QStringData header;
    char16_t characters[lengthWithZero];
};

} // namespace

#define SPECTREE_DEFINE(constant, text)                                                            \
    static const Text<std::size(u"" text)> constant##Text{                                         \
        {Q_STATIC_STRING_DATA_HEADER_INITIALIZER(int(std::size(u"" text)) - 1)}, u"" text};        \
    constinit const QString constant{                                                              \
        QStringDataPtr{const_cast<QStringData *>(&constant##Text.header)}};

#define SPECTREE_DEFINE_NAME(name) SPECTREE_DEFINE(k##name, #name)
SPECTREE_FOR_EACH_WELL_KNOWN_NAME(SPECTREE_DEFINE_NAME)
#undef SPECTREE_DEFINE_NAME

#define SPECTREE_DEFINE_PATH(name, path) SPECTREE_DEFINE(kPath_##name, path)
SPECTREE_FOR_EACH_WELL_KNOWN_PATH(SPECTREE_DEFINE_PATH)
#undef SPECTREE_DEFINE_PATH
#undef SPECTREE_DEFINE

} // namespace wellknown
