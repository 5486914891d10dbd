// A subtree to text, in one pass.
#include "platform/base/xmlwriter.h"
#include "valueclasses/xml/xmltext.h"
#include "valueclasses/xmlvaluefactory.h"
#include "valuetree/valueitem.h"
#include "valuetree/vtxml.h"
#include "valuetree/vtxml_p.h"

#include <new>

namespace values {

namespace {

/// Counts what is written, so that no document comes about that couldn't be read again. Escapes
/// make texts longer: the end is looked at once more.
class Limits {
public:
    explicit Limits(const QString &out) : m_out(out) {}
    /// One more element, with texts of that length. \throws KRException where there is no place.
    void take(qsizetype length)
    {
        if (++m_elements > kMostElements)
            VtXmlParts::fail(
                QStringLiteral("The tree has more than the %1 elements that a document may have.")
                    .arg(kMostElements),
                "ToXml");
        requireRoomFor(length);
    }
    void requireRoomFor(qsizetype length) const
    {
        if (m_out.size() + length > kLongestDocument)
            VtXmlParts::fail(
                QStringLiteral("The tree has more than the %1 characters that a document may have.")
                    .arg(kLongestDocument),
                "ToXml");
    }

private:
    const QString &m_out;
    std::size_t m_elements = 0;
};

class StreamSink final : public XmlFieldSink {
public:
    StreamSink(Kelm::XmlWriter &writer, Limits &limits) : m_writer(writer), m_limits(limits) {}
    void Text(QStringView tag, QStringView text, QStringView exact) override
    {
        if (exact.size() > XmlTextForms::kLongestExact)
            VtXmlParts::fail(QStringLiteral("A text of %1 characters can't be kept in \"%2\".")
                                 .arg(text.size())
                                 .arg(tag),
                             "ToXml");
        m_limits.take(text.size() + exact.size());
        m_writer.WriteTextElement(tag, text, exact);
    }
    void BeginGroup(QStringView tag) override
    {
        m_limits.take(0);
        m_writer.StartElement(tag);
    }
    void EndGroup() override { m_writer.EndElement(); }

private:
    Kelm::XmlWriter &m_writer;
    Limits &m_limits;
};

class TreeWriter {
public:
    explicit TreeWriter(QString &out) : m_writer(out), m_limits(out), m_sink(m_writer, m_limits) {}

    void writeDocument(Node &node)
    {
        m_limits.take(0);
        m_writer.WriteDoctype(u"Vt");
        m_writer.StartElement(u"Vt");
        m_writer.WriteAttribute(u"Version", VtXml::GetVersion());
        writeChildren(node);
        m_writer.EndElement();
        m_limits.requireRoomFor(0);
    }

private:
    void writeChildren(Node &node)
    {
        for (TreeItem *const child : node.GetTreeItems())
            if (VtXmlParts::canKeep(*child))
                writeItem(*child);
    }

    void writeItem(TreeItem &item)
    {
        m_limits.take(0);
        m_writer.StartElement(XmlTextForms::EncodeName(item.GetName()));
        if (Node *const node = item.AsNode()) {
            m_writer.WriteAttribute(u"type", u"node");
            if (const QString key = VtXmlParts::descriptorKey(*node); !key.isEmpty())
                m_sink.Text(u"ValueDescriptor", key, XmlTextForms::ExactText(key));
            writeChildren(*node);
        } else {
            m_writer.WriteAttribute(u"type", u"value");
            ValueBase &value = *item.AsValueItem()->GetValue();
            XmlValueFactory::Instance().HandlerFor(value).Write(value, m_sink);
        }
        m_writer.EndElement();
    }

    Kelm::XmlWriter m_writer;
    Limits m_limits;
    StreamSink m_sink;
};

} // namespace

QString VtXml::ToXml(Node *node)
{
    if (node == nullptr)
        VtXmlParts::fail(QStringLiteral("There is no node to write."), "ToXml");
    QString out;
    try {
        TreeWriter(out).writeDocument(*node);
    } catch (const std::bad_alloc &) {
        VtXmlParts::fail(QStringLiteral("There is no memory for the document."), "ToXml");
    }
    return out;
}

} // namespace values
