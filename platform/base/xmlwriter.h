#pragma once

#include "platform/base/export.h"

#include <QLatin1String>
#include <QString>
#include <QStringView>

#include <vector>

namespace Kelm {

/// Writes an XML text in one pass: an element a line, one blank of indentation a level, a text
/// between its tags on the same line.
///
/// Names are written as given. In texts and attributes the markup characters are escaped, and what
/// XML can't bear becomes U+FFFD. The caller keeps starts and ends in balance.
class SPECTREE_EXPORT XmlWriter {
public:
    /// Appends to \a out, which must outlive the writer.
    explicit XmlWriter(QString &out) : m_out(out) {}

    void WriteDoctype(QStringView name);
    void StartElement(QStringView name);
    /// Only directly behind StartElement.
    void WriteAttribute(QStringView name, QStringView value);
    /// \pre the element has no child elements, or has mixed content anyway
    void WriteText(QStringView text);
    void EndElement();
    /// An element with a text, and an attribute "exact" unless \a exact is empty.
    void WriteTextElement(QStringView name, QStringView text, QStringView exact = {});

private:
    struct Open {
        int nameAt; // in the output
        int nameLength;
        bool hasChildren;
        bool hasText;
    };

    void closeTag();
    void breakLine();
    void append(QStringView text) { m_out.append(text.data(), int(text.size())); }
    void appendEscaped(QStringView text);

    QString &m_out;
    std::vector<Open> m_open;
    bool m_tagOpen = false;
};

/// Whether XML 1.0 allows the character of \a text at \a index, alone or as half of a pair.
SPECTREE_EXPORT bool isXmlCharacter(QStringView text, qsizetype index);

} // namespace Kelm
