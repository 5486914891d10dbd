#pragma once

#include "valueclasses/valuetype.h"
#include "valueclasses/xml/xmlfields.h"

#include <concepts>
#include <string>

/// The lossless forms in tree documents: escapes in names, and the "exact" beside a text.
namespace XmlTextForms {

/// \a name as an element name. An ASCII letter or "_", with letters, digits and "-._" behind it,
/// stays as it is; every other character becomes "_xHHHH_" with its UTF-16 number, and so does the
/// "_" of a name that looks like such an escape.
SPECTREE_EXPORT QString EncodeName(const QString &name);
/// The name that EncodeName got; what isn't an escape stays.
SPECTREE_EXPORT QString DecodeName(QStringView element);

/// The longest "exact" that a document may hold, in characters.
constexpr int kLongestExact = 1 << 24;

/// Whether it is nothing but what XML calls white space.
SPECTREE_EXPORT bool IsBlank(QStringView text);
/// Empty when XML keeps \a text as it is, otherwise the base64 of its UTF-16LE.
SPECTREE_EXPORT QString ExactText(const QString &text);
/// The text as it was. \throws KRException when "exact" isn't base64 of whole characters.
SPECTREE_EXPORT QString TextOf(const values::XmlText &field);
/// \throws KRException for more bytes than a document can hold.
SPECTREE_EXPORT QString Base64(const std::string &bytes);
/// \throws KRException for anything but base64.
SPECTREE_EXPORT std::string FromBase64(const QString &text);

/// Empty when \a printed reads as \a number, otherwise the shortest digits that do.
SPECTREE_EXPORT QString ExactNumber(double number, const std::string &printed);
/// The number of "exact", or of the text; an empty text is 0. \throws KRException for no number.
SPECTREE_EXPORT double NumberOf(const values::XmlText &field);
/// A whole number in the range of T; an empty text is 0. \throws KRException otherwise.
template <std::integral T>
T WholeNumberOf(const values::XmlText &field);
extern template SPECTREE_EXPORT int WholeNumberOf<int>(const values::XmlText &);
extern template SPECTREE_EXPORT unsigned WholeNumberOf<unsigned>(const values::XmlText &);
extern template SPECTREE_EXPORT std::int64_t WholeNumberOf<std::int64_t>(const values::XmlText &);

/// The field of a value of the scalar kind \a from as a T: true is 1, every number but 0 is true, a
/// whole number is the nearest one. An empty text is the empty T.
/// \throws KRException where that fails, as for a number out of the range of T.
template <typename T>
T ConvertedFrom(values::ValueType from, const values::XmlText &field);
/// The same for a limit; one out of the range of T becomes the last number there.
template <typename T>
T ConvertedLimit(values::ValueType from, const values::XmlText &field);

} // namespace XmlTextForms
