// The document of single nodes, on QDom; version and handler.
#include "valuetree/vtxml.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "platform/base/xmlformat.h"
#include "valueclasses/valuefactory.h"
#include "valueclasses/xml/xmltext.h"
#include "valueclasses/xmlvaluefactory.h"
#include "valuetree/treewatch_p.h"
#include "valuetree/valueitem.h"
#include "valuetree/vtfileversion.h"
#include "valuetree/vtxml_p.h"

#include <QSet>

namespace values {

QString VtXml::s_version = QStringLiteral("1.0");

namespace {

VtFileVersion *s_handler = nullptr;
bool s_accepted = false;

void addItem(QDomElement &parent, QDomDocument &document, TreeItem &item);

void addChildren(QDomElement &element, QDomDocument &document, Node &node)
{
    if (const QString key = VtXmlParts::descriptorKey(node); !key.isEmpty()) {
        static const XmlValueBase plain;
        plain.CreateXmlElement(element, QStringLiteral("ValueDescriptor"), key, document);
        if (const QString exact = XmlTextForms::ExactText(key); !exact.isEmpty())
            element.lastChildElement().setAttribute(QStringLiteral("exact"), exact);
    }
    for (TreeItem *const child : node.GetChildren())
        if (VtXmlParts::canKeep(*child))
            addItem(element, document, *child);
}

void addItem(QDomElement &parent, QDomDocument &document, TreeItem &item)
{
    QDomElement element = document.createElement(XmlTextForms::EncodeName(item.GetName()));
    parent.appendChild(element);
    const QString type = QStringLiteral("type");
    if (Node *const node = item.AsNode()) {
        element.setAttribute(type, QStringLiteral("node"));
        addChildren(element, document, *node);
    } else {
        element.setAttribute(type, QStringLiteral("value"));
        ValueBase *const value = item.AsValueItem()->GetValue();
        XmlValueFactory::Instance().HandlerFor(*value).ToXml(value, element, document);
    }
}

/// The first element of that name which isn't an item.
QDomElement descriptorOf(const QDomElement &element)
{
    QDomElement found = element.firstChildElement(QStringLiteral("ValueDescriptor"));
    while (found.hasAttribute(QStringLiteral("type")))
        found = found.nextSiblingElement(QStringLiteral("ValueDescriptor"));
    return found;
}

void fill(Node &node, const QDomElement &element);

void readValue(ValueBase &value, QDomElement &element)
{
    XmlValueFactory::Instance().HandlerFor(value).FromXml(&value, element);
}

QString typeNameOf(const QDomElement &element)
{
    return XmlValueBase::TextIn(element.firstChildElement(QStringLiteral("Type")));
}

/// Into an item of the same role, which a repair has put there.
void fillThere(TreeItem &item, QDomElement &element)
{
    if (Node *const node = item.AsNode())
        return fill(*node, element);
    ValueBase *const value = item.AsValueItem()->GetValue();
    const QString kind = typeNameOf(element);
    if (value != nullptr && !kind.isEmpty() && kind != value->GetTypeName() &&
        ValueFactory::Instance().TypeForTypeName(kind) == VTYPE_Unknown)
        VtXmlParts::leaveOut(kind, item.GetName());
    else if (value != nullptr)
        readValue(*value, element);
}

/// \a seen are the names of the items before it.
void fillItem(Node &node, QDomElement &element, QSet<QString> &seen)
{
    const QString name = XmlTextForms::DecodeName(element.tagName());
    const QString type = element.attribute(QStringLiteral("type"));
    if (type != QLatin1String("node") && type != QLatin1String("value"))
        return;
    TreeItem *const there = node.GetChild(name);
    if (!VtXmlParts::isItemName(name) || seen.contains(name) ||
        (there != nullptr && (there->AsNode() != nullptr) != (type == QLatin1String("node"))))
        VtXmlParts::fail(
            QStringLiteral("The item \"%1\" can't stand below \"%2\".").arg(name, node.GetName()));
    seen.insert(name);
    if (there != nullptr)
        return fillThere(*there, element);
    if (type == QLatin1String("node")) {
        auto *const child = new Node(name);
        const ItemWatch watch(child);
        if (!node.AddNode(QString(), child)) {
            delete child;
            VtXmlParts::fail(
                QStringLiteral("The item \"%1\" is deeper than a tree may be.").arg(name));
        }
        if (!watch.isGone())
            fill(*child, element);
        return;
    }
    std::unique_ptr<ValueBase> value = VtXmlParts::makeValue(typeNameOf(element), name);
    if (value == nullptr)
        return;
    readValue(*value, element);
    ValueBase *const made = value.release(); // an observer that throws does so when it stands
    if (!node.AddValue(QString(), made))
        delete made;
}

/// A repair may delete the node.
void fill(Node &node, const QDomElement &element)
{
    const ItemWatch watch(&node);
    const QDomElement descriptor = descriptorOf(element);
    VtXmlParts::setDescriptor(
        node, XmlTextForms::TextOf({XmlValueBase::TextIn(descriptor),
                                    descriptor.attribute(QStringLiteral("exact")), true}));
    QSet<QString> seen;
    for (QDomElement child = element.firstChildElement(); !child.isNull() && !watch.isGone();
         child = child.nextSiblingElement())
        fillItem(node, child, seen);
}

} // namespace

VtXml::VtXml()
    : m_document(QStringLiteral("Vt")), m_root(m_document.createElement(QStringLiteral("Vt")))
{
    m_root.setAttribute(QStringLiteral("Version"), s_version);
    m_document.appendChild(m_root);
}

VtXml::VtXml(const QString &xml) : VtXml() { fromString(xml); }

void VtXml::fromString(const QString &xml)
{
    // QDom follows entities and any depth, and walks a document by recursion.
    const XmlDocument checked(xml);
    if (checked.elements().size() > kMostDomElements)
        VtXmlParts::fail(QStringLiteral("There are more than %1 elements").arg(kMostDomElements));
    if (!VtXmlParts::accept(checked))
        return;
    QString error;
    int line = 0, column = 0;
    if (!m_document.setContent(xml, false, &error, &line, &column))
        VtXmlParts::fail(QStringLiteral("Parse error: %1 at line %2 in column %3.")
                             .arg(error)
                             .arg(line)
                             .arg(column));
    m_root = m_document.documentElement();
}

void VtXml::AddNode(Node *node)
{
    if (node == nullptr || !VtXmlParts::isItemName(node->GetName()))
        VtXmlParts::fail(QStringLiteral("Only a node with a name can be added."));
    if (VtXmlParts::isNameTooLong(node->GetName()))
        VtXmlParts::fail(QStringLiteral("The name of the node is too long."));
    addItem(m_root, m_document, *node);
}

QString VtXml::GetString() const
{
    const QString text = m_document.toString(1);
    QDomDocument check(QStringLiteral("dummy"));
    QString error;
    int line = 0, column = 0;
    if (!check.setContent(text, false, &error, &line, &column))
        throw KRException(QStringLiteral("Parse error: %1 at line %2 in column %3 in string: %4")
                              .arg(error)
                              .arg(line)
                              .arg(column)
                              .arg(text),
                          __FILE__, "VtXml", "GetString", __LINE__);
    return XmlFormat::Format(text);
}

Node *VtXml::CreateNodeAt(int index) const
{
    QDomElement element = m_root.firstChildElement();
    for (int i = 0; i < index && !element.isNull(); ++i)
        element = element.nextSiblingElement();
    const QString name = XmlTextForms::DecodeName(element.tagName());
    if (index < 0 || element.attribute(QStringLiteral("type")) != QLatin1String("node") ||
        !VtXmlParts::isItemName(name))
        return nullptr;
    auto node = std::make_unique<Node>(name);
    const ItemWatch watch(node.get());
    const auto takeLiving = [&] {
        Node *const made = node.release();
        return watch.isGone() ? nullptr : made;
    };
    try {
        fill(*node, element);
    } catch (...) {
        node.reset(takeLiving());
        throw;
    }
    return takeLiving();
}

bool VtXml::CheckVersion(const QString &fileVersion)
{
    s_accepted = fileVersion == s_version ||
                 (s_handler != nullptr && s_handler->VersionConflict(fileVersion));
    return s_accepted;
}

void VtXml::FixVersionConflict(Node *node, const ValueDescriptor *descriptor)
{
    if (s_accepted && s_handler != nullptr)
        s_handler->CheckDescriptorList(node, descriptor);
}

void VtXml::SetVersion(const QString &version) { s_version = version; }

const QString &VtXml::GetVersion() { return s_version; }

void VtXml::SetVtFileVersion(VtFileVersion *handler) { s_handler = handler; }

void VtXml::HandlerGone(const VtFileVersion *handler)
{
    if (s_handler == handler)
        s_handler = nullptr;
}

} // namespace values
