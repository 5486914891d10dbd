// A subtree to text, in one pass.
#include "platform/base/xmlwriter.h"
#include "valueclasses/xml/xmltext.h"
#include "valueclasses/xmlvaluefactory.h"
#include "valuetree/valueitem.h"
#include "valuetree/vtxml.h"
#include "valuetree/vtxml_p.h"

namespace values {

namespace {

class StreamSink final : public XmlFieldSink {
public:
    explicit StreamSink(Kelm::XmlWriter &writer) : m_writer(writer) {}
    void Text(QStringView tag, QStringView text, QStringView exact) override
    {
        m_writer.WriteTextElement(tag, text, exact);
    }
    void BeginGroup(QStringView tag) override { m_writer.StartElement(tag); }
    void EndGroup() override { m_writer.EndElement(); }

private:
    Kelm::XmlWriter &m_writer;
};

class TreeWriter {
public:
    explicit TreeWriter(QString &out) : m_writer(out), m_sink(m_writer) {}

    void writeDocument(Node &node)
    {
        m_writer.WriteDoctype(u"Vt");
        m_writer.StartElement(u"Vt");
        m_writer.WriteAttribute(u"Version", VtXml::GetVersion());
        writeChildren(node);
        m_writer.EndElement();
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
    StreamSink m_sink;
};

} // namespace

QString VtXml::ToXml(Node *node)
{
    if (node == nullptr)
        VtXmlParts::fail(QStringLiteral("There is no node to write."), "ToXml");
    QString out;
    TreeWriter(out).writeDocument(*node);
    return out;
}

} // namespace values
