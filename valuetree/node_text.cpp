// The text forms of nodes.
#include "platform/base/krexception.h"
#include "valueclasses/ivaluedescriptormap.h"
#include "valuetree/itemtext_p.h"
#include "valuetree/node.h"
#include "valuetree/treewatch_p.h"

namespace values {

void Node::AddTreeString(std::string &out, int depth, int detail) const
{
    if (m_name != QStringLiteral("/")) {
        TreeItem::AddTreeString(out, depth, detail);
        out += '\n';
        ++depth;
    }
    for (TreeItem *child = m_first; child != nullptr; child = child->m_next) {
        child->AddTreeString(out, depth, detail);
        if (child->m_kind == Kind::ValueItem)
            out += '\n';
    }
}

std::string Node::GetAsStdString() const
{
    return m_name.toStdString() + ';' + GetValueAsStdString();
}

std::string Node::GetValueAsStdString() const
{
    const IValueDescriptorMap *const known = IValueDescriptorMap::Instance();
    const QString key =
        m_descriptor != nullptr && known != nullptr ? known->KeyOf(*m_descriptor) : QString();
    return key.toStdString() + ';';
}

namespace {

QString takeDescriptorKey(std::string_view text)
{
    const auto key = takeToken(text);
    if (!key)
        throw KRException("The nodes value descriptor id is not followed by ';'", __FILE__, "Node",
                          "SetValue", __LINE__);
    return *key;
}

} // namespace

void Node::SetAsStdString(std::string_view text, IObserver *source)
{
    const auto name = takeToken(text);
    if (!name)
        throw KRException("The nodes name is not followed by ';'", __FILE__, "Node", "Set",
                          __LINE__);
    takeDescriptorKey(text); // before the name has changed
    const ItemWatch watch(this);
    if (*name != m_name && !name->isEmpty()) // a root, say, has none to give
        SetName(*name, source);
    if (!watch.isGone())
        SetValueAsStdString(text, source);
}

void Node::SetValueAsStdString(std::string_view text, IObserver *source)
{
    const QString key = takeDescriptorKey(text);
    const IValueDescriptorMap *const known = IValueDescriptorMap::Instance();
    if (key.isEmpty() || known == nullptr)
        return;
    if (const ValueDescriptor *const descriptor = known->Find(key))
        SetValueDescriptor(descriptor, source);
}

} // namespace values
