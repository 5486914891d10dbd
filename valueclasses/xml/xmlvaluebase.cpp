#include "valueclasses/xml/xmlvaluebase.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "platform/base/xmlwriter.h"
#include "valueclasses/ivaluedescriptormap.h"
#include "valueclasses/valuefactory.h"
#include "valueclasses/xml/xmltext.h"

namespace values {

namespace {

const QString kExact = QStringLiteral("exact");

class DomFields final : public XmlFields {
public:
    DomFields(const XmlValueBase &handler, const QDomElement &element, const LifeWatch &target)
        : m_handler(handler), m_element(element), m_target(target)
    {
    }
    XmlText Find(QStringView tag) const override
    {
        const QString name = tag.toString();
        const QDomElement found = m_element.firstChildElement(name);
        return {m_handler.GetXmlValueByName(m_element, name), found.attribute(kExact),
                !found.isNull()};
    }
    void ForEach(QStringView tag,
                 const std::function<void(const XmlFields &)> &visit) const override
    {
        const QString name = tag.toString();
        for (QDomElement group = m_element.firstChildElement(name); !group.isNull();
             group = group.nextSiblingElement(name))
            visit(DomFields(m_handler, group, m_target));
    }
    bool IsTargetGone() const override { return m_target.IsGone(); }

private:
    const XmlValueBase &m_handler;
    QDomElement m_element;
    const LifeWatch &m_target;
};

class DomSink final : public XmlFieldSink {
public:
    DomSink(const XmlValueBase &handler, QDomElement &element, QDomDocument &document)
        : m_handler(handler), m_at(element), m_document(document)
    {
    }
    void Text(QStringView tag, QStringView text, QStringView exact) override
    {
        m_handler.CreateXmlElement(m_at, tag.toString(), text.toString(), m_document);
        if (!exact.isEmpty())
            m_at.lastChildElement().setAttribute(kExact, exact.toString());
    }
    void BeginGroup(QStringView tag) override
    {
        m_at = m_at.appendChild(m_document.createElement(tag.toString())).toElement();
    }
    void EndGroup() override { m_at = m_at.parentNode().toElement(); }

private:
    const XmlValueBase &m_handler;
    QDomElement m_at;
    QDomDocument &m_document;
};

} // namespace

void XmlValueBase::FromXml(ValueBase *value, QDomElement &element) const
{
    const LifeWatch target(value);
    const DomFields fields(*this, element, target);
    Check(*value, fields);
    Read(*value, fields);
}

void XmlValueBase::ToXml(ValueBase *value, QDomElement &element, QDomDocument &document) const
{
    requireFit(*value);
    DomSink sink(*this, element, document);
    Write(*value, sink);
}

void XmlValueBase::CreateXmlElement(QDomElement &parent, const QString &tag, const QString &text,
                                    QDomDocument &document) const
{
    QDomElement element = document.createElement(tag);
    QString clean = text;
    for (int i = 0; i < clean.size(); ++i)
        if (!Kelm::isXmlCharacter(text, i))
            clean[i] = QChar::ReplacementCharacter; // QDom would write it as it is
    element.appendChild(document.createTextNode(clean));
    parent.appendChild(element);
}

QString XmlValueBase::GetXmlValueByName(const QDomElement &element, const QString &tag) const
{
    return TextIn(element.firstChildElement(tag));
}

QString XmlValueBase::TextIn(const QDomElement &element)
{
    QString text;
    for (QDomNode part = element.firstChild(); part.isText(); part = part.nextSibling())
        text += part.toText().data(); // a CDATA section is a part of its own
    return text;
}

void XmlValueBase::Write(ValueBase &value, XmlFieldSink &sink) const
{
    sink.Text(u"Type", value.GetTypeName(), {});
    const auto *const descriptor = value.GetValueDescriptor();
    const auto *const map = IValueDescriptorMap::Instance();
    if (descriptor == nullptr || map == nullptr)
        return;
    const QString key = map->KeyOf(*descriptor);
    sink.Text(u"ValueDescriptor", key, XmlTextForms::ExactText(key));
}

std::optional<ValueType> XmlValueBase::OtherKind(const ValueBase &value, const XmlFields &fields)
{
    if (fields.Holds(u"Type", value.GetTypeName()))
        return std::nullopt;
    const QString type = fields.Find(u"Type").text;
    if (type.isEmpty())
        return std::nullopt;
    return ValueFactory::Instance().TypeForTypeName(type);
}

void XmlValueBase::Check(ValueBase &value, const XmlFields &fields) const
{
    requireFit(value);
    if (const auto kind = OtherKind(value, fields); kind && !ReadsType(*kind))
        fail(value, QStringLiteral("a %1 can't be read from a %2")
                        .arg(value.GetTypeName(), fields.Find(u"Type").text));
    try {
        XmlTextForms::TextOf(fields.Find(u"ValueDescriptor"));
    } catch (const KRException &error) {
        fail(value, error.GetReason());
    }
}

void XmlValueBase::Read(ValueBase &value, const XmlFields &fields) const
{
    _Q_assert(value.GetType() != VTYPE_None, "pValue->GetType() != VTYPE_None", __FILE__, __LINE__);
    ReadDescriptor(value, fields);
}

void XmlValueBase::ReadDescriptor(ValueBase &value, const XmlFields &fields)
{
    _Q_assert(!value.GetName().isEmpty(), "!pValue->GetName().isEmpty()", __FILE__, __LINE__);
    const QString key = XmlTextForms::TextOf(fields.Find(u"ValueDescriptor"));
    const auto *const map = IValueDescriptorMap::Instance();
    value.SetValueDescriptor(key.isEmpty() || map == nullptr ? nullptr : map->Find(key));
}

void XmlValueBase::requireFit(const ValueBase &value) const
{
    if (!Fits(value))
        fail(value, QStringLiteral("its class has no form for a %1").arg(value.GetTypeName()));
}

void XmlValueBase::fail(const ValueBase &value, const QString &reason)
{
    throw KRException(QStringLiteral("Value \"%1\": %2").arg(value.GetName(), reason), __FILE__,
                      "XmlValueBase", "FromXml", __LINE__);
}

} // namespace values
