#include "platform/base/krexception.h"
#include "valueclasses/xml/xmltext.h"
#include "valuetree/path.h"
#include "valuetree/xmldocument_p.h"

#include <QXmlStreamReader>

#include <algorithm>

namespace values {

namespace {

// The root, the items, and below the deepest of them a group with its fields.
constexpr std::size_t kDeepest = 1 + TreePathHelpers::kMaximumDepth + 2;

[[noreturn]] void fail(const QString &reason, qint64 line, qint64 column)
{
    throw KRException(QStringLiteral("Parse error: %1 at line %2 in column %3.")
                          .arg(reason)
                          .arg(line)
                          .arg(column),
                      __FILE__, "VtXml", "FromXml", __LINE__);
}

/// Whether the tag at the begin of \a text has more attributes than an element may have.
bool isCrowded(QStringView text)
{
    int attributes = 0;
    QChar quote;
    for (const QChar c : text) {
        if (!quote.isNull())
            quote = c == quote ? QChar() : quote;
        else if (c == u'"' || c == u'\'')
            quote = c;
        else if (c == u'>')
            return false;
        else if (c == u'=' && ++attributes > kMostAttributes)
            return true;
    }
    return false;
}

/// Counts the elements by their tags, and refuses declarations, before a parser takes memory for
/// each: it would compare every attribute of an element with every other, too.
class TagCount {
public:
    explicit TagCount(QStringView xml) : m_xml(xml) {}

    /// \throws KRException for more than a document may have.
    std::size_t run()
    {
        if (m_xml.size() > kLongestDocument)
            failAt(
                0,
                QStringLiteral("The document has more than %1 characters").arg(kLongestDocument));
        for (qsizetype at = m_xml.indexOf(u'<'); at >= 0;)
            at = take(at);
        return m_elements;
    }

private:
    /// Returns where the next tag begins, or -1.
    qsizetype take(qsizetype at)
    {
        const QStringView tag = m_xml.mid(at + 1);
        if (tag.startsWith(u"!--"))
            return behind(u"-->", at + 4);
        if (tag.startsWith(u"![CDATA["))
            return behind(u"]]>", at + 9);
        if (tag.startsWith(u'?'))
            return behind(u"?>", at + 2);
        const qsizetype next = m_xml.indexOf(u'<', at + 1); // no tag can hold one
        const qsizetype length = (next < 0 ? m_xml.size() : next) - at - 1;
        if (tag.startsWith(u'/'))
            return next;
        if (tag.startsWith(u'!')) {
            const QStringView declaration = tag.left(length);
            // In quotes it may hold what looks like a comment.
            if (declaration.contains(u'"') || declaration.contains(u'\''))
                failAt(at, QStringLiteral("The document type has an identifier"));
            if (m_hasType || declaration.contains(u'['))
                failAt(at, QStringLiteral("The document type has declarations of its own"));
            m_hasType = true;
            return next;
        }
        if (++m_elements > kMostElements)
            failAt(at, QStringLiteral("There are more than %1 elements").arg(kMostElements));
        if (length > 4 * kMostAttributes && isCrowded(tag.left(length)))
            failAt(at,
                   QStringLiteral("An element has more than %1 attributes").arg(kMostAttributes));
        return next;
    }
    qsizetype behind(QStringView end, qsizetype from) const
    {
        const qsizetype found = m_xml.indexOf(end, from);
        return found < 0 ? -1 : m_xml.indexOf(u'<', found + end.size());
    }
    [[noreturn]] void failAt(qsizetype at, const QString &reason) const
    {
        const QStringView before = m_xml.left(at);
        const auto lines = std::count(before.begin(), before.end(), QChar(u'\n'));
        fail(reason, 1 + lines, at - before.lastIndexOf(u'\n') - 1);
    }

    const QStringView m_xml;
    std::size_t m_elements = 0;
    bool m_hasType = false; // a "<!DOCTYPE", the one declaration that a document may have
};

} // namespace

class Parser {
public:
    Parser(XmlDocument &document, const QString &xml) : m_document(document), m_reader(xml)
    {
        m_reader.setNamespaceProcessing(false);
    }

    void run()
    {
        while (!m_reader.atEnd() && m_refused.isEmpty())
            take(m_reader.readNext());
        if (m_reader.hasError() || !m_refused.isEmpty())
            fail(m_refused.isEmpty() ? m_reader.errorString() : m_refused, m_reader.lineNumber(),
                 m_reader.columnNumber());
    }

private:
    void take(QXmlStreamReader::TokenType token)
    {
        switch (token) {
        case QXmlStreamReader::DTD:
            m_document.m_doctype = m_reader.dtdName().toString();
            if (m_reader.text().contains(QLatin1Char('[')))
                m_refused = QStringLiteral("The document type has declarations of its own");
            break;
        case QXmlStreamReader::StartElement:
            startElement();
            break;
        case QXmlStreamReader::Characters:
            addText();
            break;
        case QXmlStreamReader::Comment:
        case QXmlStreamReader::ProcessingInstruction:
            endText();
            break;
        case QXmlStreamReader::EndElement:
            endText();
            m_document.m_elements[m_open.back()].end = int(m_document.m_elements.size());
            m_open.pop_back();
            break;
        case QXmlStreamReader::EntityReference:
            m_refused = QStringLiteral("The document has an entity of its own");
            break;
        default:
            break;
        }
    }

    void startElement()
    {
        if (m_open.size() >= kDeepest) {
            m_refused = QStringLiteral("The elements nest deeper than a tree may be");
            return;
        }
        endText();
        XmlDocument::Element element;
        element.name = m_document.store(m_reader.qualifiedName());
        for (const QXmlStreamAttribute &attribute : m_reader.attributes())
            takeAttribute(element, attribute);
        element.text.at = m_blanks = m_document.m_texts.size();
        m_takesText = true;
        m_open.push_back(m_document.m_elements.size());
        m_document.m_elements.push_back(element);
    }

    void takeAttribute(XmlDocument::Element &element, const QXmlStreamAttribute &attribute)
    {
        const QStringRef name = attribute.qualifiedName();
        if (attribute.value().size() > XmlTextForms::kLongestExact)
            m_refused = QStringLiteral("An attribute has more than %1 characters")
                            .arg(XmlTextForms::kLongestExact);
        else if (m_open.empty() && name == QLatin1String("Version"))
            m_document.m_version = attribute.value().toString();
        else if (name == QLatin1String("exact"))
            element.exact = m_document.store(attribute.value());
        else if (name == QLatin1String("type"))
            element.role = attribute.value() == QLatin1String("node")    ? XmlDocument::Role::Node
                           : attribute.value() == QLatin1String("value") ? XmlDocument::Role::Value
                                                                         : XmlDocument::Role::Other;
    }

    /// What Qt's DOM has for an element's text: what it begins with. Blanks alone are none, beside
    /// a CDATA section either.
    void endText()
    {
        if (!m_takesText)
            return;
        m_takesText = false;
        dropBlanks();
        XmlDocument::Slice &text = m_document.m_elements.back().text;
        text.length = m_document.m_texts.size() - text.at;
    }

    void addText()
    {
        if (!m_takesText)
            return;
        if (m_reader.isCDATA())
            dropBlanks();
        m_document.store(m_reader.text());
        if (m_reader.isCDATA())
            m_blanks = m_document.m_texts.size();
    }

    void dropBlanks()
    {
        if (XmlTextForms::IsBlank(QStringView(m_document.m_texts).mid(m_blanks)))
            m_document.m_texts.truncate(m_blanks);
    }

    XmlDocument &m_document;
    QXmlStreamReader m_reader;
    QString m_refused;
    std::vector<std::size_t> m_open;
    bool m_takesText = false; // nothing else stands in the last element yet
    int m_blanks = 0;         // where characters begin that may be blanks alone
};

XmlDocument::XmlDocument(const QString &xml) : m_version(QStringLiteral("0.0"))
{
    m_elements.reserve(TagCount(xml).run());
    Parser(*this, xml).run();
}

XmlDocument::Slice XmlDocument::store(QStringView text)
{
    const Slice slice{m_texts.size(), int(text.size())};
    m_texts.append(text.data(), int(text.size()));
    return slice;
}

} // namespace values
