// Comparing, copying and merging whole subtrees.
#include "valueclasses/valuebase.h"
#include "valueclasses/valuefactory.h"
#include "valuetree/node.h"
#include "valuetree/treewatch_p.h"
#include "valuetree/valueitem.h"

namespace values {

namespace {

/// Null for a value item without a value, or with one that can't be copied.
std::unique_ptr<TreeItem> copyOf(TreeItem &item)
{
    if (const Node *const node = item.AsNode()) {
        auto copy = std::make_unique<Node>();
        copy->Copy(node);
        return copy;
    }
    const ValueBase *const value = item.AsValueItem()->GetValue();
    std::unique_ptr<ValueBase> copy(value != nullptr ? ValueFactory::Instance().CloneValue(*value)
                                                     : nullptr);
    return copy != nullptr ? std::make_unique<ValueItem>(copy.release()) : nullptr;
}

} // namespace

bool Node::Compare(const Node *other) const
{
    if (other == nullptr || m_name != other->m_name || m_descriptor != other->m_descriptor ||
        m_count != other->m_count)
        return false;
    for (TreeItem *child = m_first; child != nullptr; child = child->m_next) {
        if (const Node *const node = child->AsNode()) {
            if (!node->Compare(other->GetChildNode(node->m_name)))
                return false;
            continue;
        }
        const ValueBase *const value = child->AsValueItem()->GetValue();
        if (value != nullptr ? !value->Compare(other->GetChildValue(child->m_name))
                             : other->GetChildValue(child->m_name) != nullptr)
            return false;
    }
    return true;
}

std::vector<std::unique_ptr<TreeItem>> Node::copiesOf(const Node &other) const
{
    std::vector<std::unique_ptr<TreeItem>> copies;
    copies.reserve(other.m_count);
    for (TreeItem *child = other.m_first; child != nullptr; child = child->m_next)
        if (auto copy = copyOf(*child)) {
            requireTakeable(copy.get()); // before anything is lost
            copies.push_back(std::move(copy));
        }
    return copies;
}

void Node::replaceChildren(std::vector<std::unique_ptr<TreeItem>> children)
{
    const ItemWatch watch(this);
    DeleteChildren();
    for (auto &child : children) {
        if (watch.isGone())
            return;
        requireTakeable(child.get());
        AddItem(child.release());
    }
}

void Node::Copy(const Node *other)
{
    if (other == nullptr || other == this)
        return;
    // Deleting the children may delete the other node with them.
    auto children = copiesOf(*other);
    const QString name = other->m_name;
    const ItemWatch watch(this);
    m_descriptor = other->m_descriptor;
    if (!name.isEmpty() && name != m_name)
        SetName(name, nullptr);
    if (!watch.isGone())
        replaceChildren(std::move(children));
}

void Node::CopyChildren(const Node *other)
{
    if (other != nullptr && other != this)
        replaceChildren(copiesOf(*other));
}

Node *Node::CopyChildNode(const Node *other)
{
    if (other == nullptr || other->m_name.isEmpty())
        return nullptr;
    const QString name = other->m_name; // an observer may end any of these
    if (TreeItem *const present = GetChild(name)) {
        Node *const node = present->AsNode();
        const ItemWatch watch(node);
        if (node != nullptr)
            node->Copy(other);
        return watch.isGone() ? nullptr : node;
    }
    auto copy = std::make_unique<Node>();
    copy->Copy(other);
    const ItemWatch watch(this);
    requireTakeable(copy.get());
    AddItem(copy.release());
    return watch.isGone() ? nullptr : GetChildNode(name);
}

void Node::Merge(const Node *other)
{
    if (other == nullptr || other == this)
        return;
    if (m_descriptor == nullptr)
        m_descriptor = other->m_descriptor;
    MergeChildren(other);
}

void Node::MergeChildren(const Node *other)
{
    if (other == nullptr || other == this)
        return;
    const ItemWatch watch(this), otherWatch(other);
    ChildWalk walk(*other);
    while (TreeItem *const child = walk.next()) {
        TreeItem *const present = GetChild(child->m_name);
        if (present == nullptr) {
            if (auto copy = copyOf(*child)) {
                requireTakeable(copy.get());
                AddItem(copy.release());
            }
        } else if (Node *const node = present->AsNode()) {
            node->Merge(child->AsNode());
        }
        if (watch.isGone() || otherWatch.isGone())
            return;
    }
}

} // namespace values
