#include "platform/base/krexception.h"
#include "valuetree/path.h"
#include "valuetree/xmldocument_p.h"

#include <QXmlStreamReader>

namespace values {

namespace {

// The root, the items, and below the deepest of them a group with its fields.
constexpr std::size_t kDeepest = 1 + TreePathHelpers::kMaximumDepth + 2;

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
        if (!m_reader.hasError() && m_refused.isEmpty())
            return;
        throw KRException(QStringLiteral("Parse error: %1 at line %2 in column %3.")
                              .arg(m_refused.isEmpty() ? m_reader.errorString() : m_refused)
                              .arg(m_reader.lineNumber())
                              .arg(m_reader.columnNumber()),
                          __FILE__, "VtXml", "FromXml", __LINE__);
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
        case QXmlStreamReader::EndElement:
            m_document.m_elements[m_open.back()].end = int(m_document.m_elements.size());
            m_open.pop_back();
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
        dropTextOfParent();
        XmlDocument::Element element;
        element.name = m_document.store(m_reader.qualifiedName());
        for (const QXmlStreamAttribute &attribute : m_reader.attributes())
            takeAttribute(element, attribute);
        element.text.at = m_document.m_texts.size();
        m_open.push_back(m_document.m_elements.size());
        m_document.m_elements.push_back(element);
    }

    void takeAttribute(XmlDocument::Element &element, const QXmlStreamAttribute &attribute)
    {
        const QStringRef name = attribute.qualifiedName();
        if (m_open.empty() && name == QLatin1String("Version"))
            m_document.m_version = attribute.value().toString();
        else if (name == QLatin1String("exact"))
            element.exact = m_document.store(attribute.value());
        else if (name == QLatin1String("type"))
            element.role = attribute.value() == QLatin1String("node")    ? XmlDocument::Role::Node
                           : attribute.value() == QLatin1String("value") ? XmlDocument::Role::Value
                                                                         : XmlDocument::Role::Other;
    }

    /// What stands between elements is no text of theirs, and mostly blanks.
    void dropTextOfParent()
    {
        if (m_open.empty())
            return;
        XmlDocument::Element &parent = m_document.m_elements[m_open.back()];
        if (m_open.back() + 1 == m_document.m_elements.size()) {
            m_document.m_texts.truncate(parent.text.at);
            parent.text.length = 0;
        }
    }

    void addText()
    {
        if (m_open.empty() || m_open.back() + 1 != m_document.m_elements.size())
            return;
        m_document.m_elements.back().text.length += m_document.store(m_reader.text()).length;
    }

    XmlDocument &m_document;
    QXmlStreamReader m_reader;
    QString m_refused;
    std::vector<std::size_t> m_open;
};

XmlDocument::XmlDocument(const QString &xml) : m_version(QStringLiteral("0.0"))
{
    Parser(*this, xml).run();
}

XmlDocument::Slice XmlDocument::store(QStringView text)
{
    const Slice slice{m_texts.size(), int(text.size())};
    m_texts.append(text.data(), int(text.size()));
    return slice;
}

} // namespace values
