#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/ivaluedescriptormap.h"
#include "valueclasses/valuefactory.h"
#include "valueclasses/xml/xmltext.h"
#include "valueclasses/xmlvaluefactory.h"
#include "valuetree/treewatch_p.h"
#include "valuetree/valueitem.h"
#include "valuetree/vtxml.h"
#include "valuetree/vtxml_p.h"

namespace values::VtXmlParts {

namespace {

constexpr int kLongestName = 4000; // characters of an element name; Qt reads no more than 4 096

void traceLost(const TreeItem &item, const char *reason)
{
    _Q_Trace(QStringLiteral("The item \"%1\" below \"%2\" can't be kept in XML: %3.")
                 .arg(item.GetName(),
                      item.GetParent() != nullptr ? item.GetParent()->GetPathName() : QString(),
                      QLatin1String(reason)),
             __FILE__, __LINE__);
}

} // namespace

void fail(const QString &reason, const char *functionName)
{
    throw KRException(reason, __FILE__, "VtXml", functionName, __LINE__);
}

bool accept(const XmlDocument &document)
{
    const QString &doctype = document.doctype();
    if (doctype != QLatin1String("Vt"))
        fail((doctype.isEmpty()
                  ? QStringLiteral("No document type found")
                  : QStringLiteral("Wrong document type found: \"%1\"").arg(doctype)) +
                 QStringLiteral(". \"Vt\" is expected."),
             "FromString");
    const QString root = document.text(document.elements().front().name);
    if (root != QLatin1String("Vt"))
        fail(QStringLiteral("Wrong root element: \"%1\" found. \"Vt\" is expected.").arg(root),
             "FromString");
    if (VtXml::CheckVersion(document.version()))
        return true;
    _Q_Trace(QStringLiteral("Nothing is read: the file's version is \"%1\", the application's "
                            "\"%2\".")
                 .arg(document.version(), VtXml::GetVersion()),
             __FILE__, __LINE__);
    return false;
}

bool isItemName(const QString &name) { return !name.isEmpty() && !name.contains(QLatin1Char('/')); }

bool isNameTooLong(const QString &name)
{
    return XmlTextForms::EncodeName(name).size() > kLongestName;
}

bool canKeep(TreeItem &child)
{
    const QString name = child.GetName();
    const ValueItem *const item = child.AsValueItem();
    const char *reason = nullptr;
    if (!isItemName(name))
        reason = "it has no name, or one with a \"/\"";
    else if (isNameTooLong(name))
        reason = "its name is too long";
    else if (child.GetParent()->GetChild(name) != &child)
        reason = "another item has its name";
    else if (item != nullptr && item->GetValue() == nullptr)
        reason = "it has no value";
    else if (item != nullptr && !ValueFactory::Instance().IsRegistered(*item->GetValue()))
        reason = "its kind can't be made";
    else if (item != nullptr &&
             !XmlValueFactory::Instance().HandlerFor(*item->GetValue()).Fits(*item->GetValue()))
        reason = "its class is not the one of its type";
    if (reason != nullptr)
        traceLost(child, reason);
    return reason == nullptr;
}

QString descriptorKey(const Node &node)
{
    const auto *const map = IValueDescriptorMap::Instance();
    const ValueDescriptor *const descriptor = node.GetValueDescriptor();
    return map == nullptr || descriptor == nullptr ? QString() : map->KeyOf(*descriptor);
}

void setDescriptor(Node &node, const QString &key)
{
    const ItemWatch watch(&node);
    const ValueDescriptor *const before = node.GetValueDescriptor();
    if (before != nullptr)
        VtXml::FixVersionConflict(&node, before);
    if (watch.isGone())
        return;
    const auto *const map = IValueDescriptorMap::Instance();
    const ValueDescriptor *const found = key.isEmpty() || map == nullptr ? nullptr : map->Find(key);
    node.SetValueDescriptor(found, nullptr);
    if (found != before) // a repair runs once a descriptor
        VtXml::FixVersionConflict(&node, found);
}

void leaveOut(const QString &typeName, const QString &name)
{
    _Q_assert(false, "type != VTYPE_Unknown", __FILE__, __LINE__);
    _Q_Trace(QStringLiteral("The value \"%1\" is left out: its kind \"%2\" is unknown.")
                 .arg(name, typeName.left(80)),
             __FILE__, __LINE__);
}

std::unique_ptr<ValueBase> makeValue(const QString &typeName, const QString &name)
{
    std::unique_ptr<ValueBase> value(ValueFactory::Instance().CreateValue(typeName));
    if (value == nullptr) {
        leaveOut(typeName, name);
        return nullptr;
    }
    value->SetName(name, nullptr);
    value->SetState(VS_DISABLED, nullptr);
    return value;
}

} // namespace values::VtXmlParts
