#include "platform/base/xmlwriter.h"

namespace Kelm {

bool isXmlCharacter(QStringView text, qsizetype index)
{
    const QChar c = text[index];
    if (c.unicode() < 0x20)
        return c == u'\t' || c == u'\n' || c == u'\r';
    if (c.isHighSurrogate())
        return index + 1 < text.size() && text[index + 1].isLowSurrogate();
    if (c.isLowSurrogate())
        return index > 0 && text[index - 1].isHighSurrogate();
    return c.unicode() < 0xFFFE;
}

void XmlWriter::appendEscaped(QStringView text)
{
    qsizetype written = 0;
    const auto replace = [&](qsizetype at, QStringView by) {
        append(text.mid(written, at - written));
        append(by);
        written = at + 1;
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c > u'>' && c < 0xD800)
            continue;
        switch (c) {
        case u'&':
            replace(i, u"&amp;");
            break;
        case u'<':
            replace(i, u"&lt;");
            break;
        case u'>':
            replace(i, u"&gt;");
            break;
        case u'"':
            replace(i, u"&quot;");
            break;
        case u'\r':
            replace(i, u"&#13;"); // a reader makes a line feed of a bare one
            break;
        default:
            if (!isXmlCharacter(text, i))
                replace(i, u"\uFFFD");
        }
    }
    append(text.mid(written));
}

void XmlWriter::breakLine()
{
    m_out.append(QLatin1Char('\n'));
    for (std::size_t i = 0; i < m_open.size(); ++i)
        m_out.append(QLatin1Char(' '));
}

void XmlWriter::closeTag()
{
    if (m_tagOpen)
        m_out.append(QLatin1Char('>'));
    m_tagOpen = false;
}

void XmlWriter::WriteDoctype(QStringView name)
{
    append(u"<!DOCTYPE ");
    append(name);
    append(u">");
}

void XmlWriter::StartElement(QStringView name)
{
    closeTag();
    const bool mixed = !m_open.empty() && m_open.back().hasText;
    if (!mixed && !m_out.isEmpty())
        breakLine();
    if (!m_open.empty())
        m_open.back().hasChildren = true;
    m_out.append(QLatin1Char('<'));
    m_open.push_back({m_out.size(), int(name.size()), false, false});
    append(name);
    m_tagOpen = true;
}

void XmlWriter::WriteAttribute(QStringView name, QStringView value)
{
    m_out.append(QLatin1Char(' '));
    append(name);
    append(u"=\"");
    appendEscaped(value);
    m_out.append(QLatin1Char('"'));
}

void XmlWriter::WriteText(QStringView text)
{
    closeTag();
    m_open.back().hasText = true;
    appendEscaped(text);
}

void XmlWriter::EndElement()
{
    const Open element = m_open.back();
    m_open.pop_back();
    if (m_tagOpen) {
        append(u"/>");
        m_tagOpen = false;
    } else {
        if (element.hasChildren && !element.hasText)
            breakLine();
        append(u"</");
        m_out.append(QStringView(m_out).mid(element.nameAt, element.nameLength).toString());
        m_out.append(QLatin1Char('>'));
    }
    if (m_open.empty())
        m_out.append(QLatin1Char('\n'));
}

void XmlWriter::WriteTextElement(QStringView name, QStringView text, QStringView exact)
{
    closeTag();
    breakLine();
    m_open.back().hasChildren = true;
    m_out.append(QLatin1Char('<'));
    append(name);
    if (!exact.isEmpty())
        WriteAttribute(u"exact", exact);
    if (text.isEmpty()) {
        append(u"/>");
        return;
    }
    m_out.append(QLatin1Char('>'));
    appendEscaped(text);
    append(u"</");
    append(name);
    m_out.append(QLatin1Char('>'));
}

} // namespace Kelm
