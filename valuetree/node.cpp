// Birth and death of nodes, and of what is below them.
#include "valuetree/node.h"

#include "platform/base/errorhandler.h"
#include "platform/base/kelmos.h"
#include "platform/base/krexception.h"
#include "valueclasses/valuebase.h"
#include "valueclasses/valuefactory.h"
#include "valuetree/path.h"
#include "valuetree/pathindex_p.h"
#include "valuetree/tree.h"
#include "valuetree/treewatch_p.h"
#include "valuetree/valueitem.h"

#include <algorithm>
#include <limits>

namespace values {

Node::Node() : Node(QString()) {}

Node::Node(const QString &name) : TreeItem(Kind::Node, name) {}

Node::~Node()
{
    requireThread("VTTHREADING: Destructing node from non-main thread ");
    m_ending = true;
    setLastDeleted();
    if (!m_childrenNotified)
        NotifyChildrenAboutDeletion(nullptr);
    tellOfEnd(nullptr);
    m_childrenNotified = true;
    m_index.reset(); // no need to take everything out of it one by one
    DeleteChildren();
    leaveParent();
    if (m_tree != nullptr)
        m_tree->NotifyDelete(this);
    m_name += QStringLiteral("_DELETED");
}

void Node::SetName(const QString &name, IObserver *source, bool skipPathUpdate)
{
    if (name.isEmpty())
        throw KRException("Empty names are not allowed!", __FILE__, "Node", "SetName", __LINE__);
    storeName(name);
    if (!skipPathUpdate)
        SetLastCompletePathName(true);
    NotifyObservers(CC_NAME, source);
}

void Node::SetLastCompletePathName(bool recurse)
{
    TreeItem::SetLastCompletePathName(recurse);
    if (recurse)
        for (TreeItem *child = m_first; child != nullptr; child = child->m_next)
            child->SetLastCompletePathName(true);
}

void Node::SetValueDescriptor(const ValueDescriptor *descriptor, IObserver * /*source*/)
{
    m_descriptor = descriptor;
}

void Node::SetAllValuesAutoDelete(bool on)
{
    for (TreeItem *child = m_first; child != nullptr; child = child->m_next)
        child->SetAllValuesAutoDelete(on);
}

int Node::depth() const
{
    int levels = 0;
    for (const Node *node = m_parent; node != nullptr; node = node->m_parent)
        ++levels;
    return levels;
}

int Node::height(const TreeItem &item)
{
    int below = 0;
    if (item.m_kind == Kind::Node)
        for (const TreeItem *child = static_cast<const Node &>(item).m_first; child != nullptr;
             child = child->m_next)
            below = std::max(below, 1 + height(*child));
    return below;
}

/// Whether \a item may stand \a levels below this node.
bool Node::canTake(const TreeItem &item, int levels) const
{
    if (m_ending || item.m_ending || item.isRoot())
        return false;
    for (const TreeItem *above = this; above != nullptr; above = above->m_parent)
        if (above == &item)
            return false;
    return depth() + levels + height(item) <= TreePathHelpers::kMaximumDepth;
}

void Node::link(TreeItem &item)
{
    if (item.m_parent != nullptr)
        item.m_parent->unlink(item);
    if (Node *const node = item.AsNode())
        node->m_index.reset();
    if (m_nextPosition == std::numeric_limits<std::uint32_t>::max()) {
        m_nextPosition = 0;
        for (TreeItem *child = m_first; child != nullptr; child = child->m_next)
            child->m_position = m_nextPosition++;
    }
    item.m_position = m_nextPosition++;
    item.m_previous = m_last;
    (m_last != nullptr ? m_last->m_next : m_first) = &item;
    m_last = &item;
    ++m_count;
    if (m_viewValid)
        m_view.push_back(&item);
    item.m_toldAhead = item.m_toldOfEnd = false;
    item.SetAutoDeleteAtAddValue(IsAutoDeleteAtAddValue());
    item.setParent(this);
    if (PathIndex *const index = top()->m_index.get())
        index->Add(item);
}

void Node::unlink(TreeItem &item)
{
    ChildWalk::tellUnlinked(item);
    if (PathIndex *const index = top()->m_index.get())
        index->Remove(item);
    if (m_viewValid) {
        // A model asks for the index of each row that goes; far from the end a move costs more than
        // a fresh view, which nobody may ask for.
        const auto at = m_view.begin() + GetIndex(&item);
        m_viewValid = m_view.end() - at <= 1024;
        if (m_viewValid)
            m_view.erase(at);
    }
    (item.m_previous != nullptr ? item.m_previous->m_next : m_first) = item.m_next;
    (item.m_next != nullptr ? item.m_next->m_previous : m_last) = item.m_previous;
    --m_count;
    item.m_previous = item.m_next = nullptr;
    item.setParent(nullptr);
}

/// Makes what is missing of \a path, and hangs \a item below its last node; false changes nothing.
bool Node::place(QStringView path, TreeItem *item)
{
    if (path.endsWith(QChar('/')))
        path.chop(1);
    Node *at = this;
    std::vector<QString> missing;
    if (TreeItem *const there = path.isEmpty() ? this : find(path)) {
        at = there->AsNode();
    } else {
        for (const QStringView &name : path.split(QChar('/'))) {
            if (name.isEmpty())
                return false;
            TreeItem *const next = missing.empty() ? at->child(name) : nullptr;
            if (next == nullptr)
                missing.push_back(name.toString());
            else if ((at = next->AsNode()) == nullptr)
                return false;
        }
    }
    if (at == nullptr || at->m_ending)
        return false;
    const int levels = int(missing.size());
    if (item == nullptr ? at->depth() + levels > TreePathHelpers::kMaximumDepth
                        : !at->canTake(*item, levels + 1))
        return false;
    if (missing.empty() && (item == nullptr || at->child(item->m_name) != nullptr))
        return item == nullptr;

    TreeItem *subtree = item;
    for (auto name = missing.rbegin(); name != missing.rend(); ++name) {
        auto *const node = new Node(*name);
        node->SetAutoDeleteAtAddValue(at->IsAutoDeleteAtAddValue());
        if (subtree != nullptr)
            node->link(*subtree);
        subtree = node;
    }
    if (item != nullptr && item->m_kind == Kind::ValueItem && at->IsAutoDeleteAtAddValue())
        item->SetAllValuesAutoDelete(true);
    at->link(*subtree);
    at->NotifyObservers(CC_CHILD_ADDED, nullptr);
    return true;
}

bool Node::AddNode(const QString &path, Node *child)
{
    return child != nullptr && !child->m_name.isEmpty() && place(path, child);
}

bool Node::AddNode(const QString &path) { return AddValue(path, nullptr); }

bool Node::AddValue(QString path, ValueBase *value)
{
    if (value == nullptr)
        return place(path, nullptr);
    const int cut = path.lastIndexOf('/');
    const QString name = path.isEmpty() ? value->GetName() : path.mid(cut + 1);
    if (name.isEmpty() || value->GetDeleteObserver() != nullptr ||
        (!path.isEmpty() && find(path) != nullptr))
        return false;
    const QString ownName = value->GetName();
    if (name != ownName)
        value->SetName(name, nullptr);
    auto *const item = new ValueItem(value);
    if (place(QStringView(path).left(std::max(cut, 0)), item))
        return true;
    item->releaseValue(ValueItem::OnRelease::Keep);
    delete item;
    if (name != ownName && !ownName.isEmpty())
        value->SetName(ownName, nullptr);
    return false;
}

ValueBase *Node::CreateValue(QString path, const ValueBase &prototype)
{
    const QString whole = path.isEmpty() ? prototype.GetName() : path;
    if (const TreeItem *const present = find(whole)) {
        const ValueItem *const item = const_cast<TreeItem *>(present)->AsValueItem();
        return item != nullptr ? item->GetValue() : nullptr;
    }
    std::unique_ptr<ValueBase> value(ValueFactory::Instance().CloneValue(prototype));
    if (value == nullptr || !AddValue(whole, value.get()))
        return nullptr;
    static_cast<void>(value.release());
    return GetValue(whole); // unless an observer has deleted it already
}

bool Node::DeleteValue(QString path)
{
    TreeItem *const item = find(path);
    ValueItem *const valueItem = item != nullptr ? item->AsValueItem() : nullptr;
    return valueItem != nullptr && valueItem->m_parent->deleteValueItem(*valueItem);
}

bool Node::deleteValueItem(ValueItem &item)
{
    if (item.m_ending)
        return false;
    item.m_ending = true;
    const ItemWatch watch(&item);
    if (!item.m_toldAhead) {
        item.m_toldAhead = true;
        item.NotifyObservers(CC_ABOUT_TO_DELETE, nullptr);
    }
    if (!watch.isGone())
        item.tellOfEnd(nullptr);
    if (watch.isGone())
        return true;
    if (item.m_parent != nullptr)
        item.m_parent->unlink(item);
    const bool deleted = item.DeleteValue(QString());
    if (!watch.isGone())
        delete &item;
    return deleted;
}

Node *Node::AddChildNode(const QString &name)
{
    if (name.isEmpty())
        return nullptr;
    AddNode(name + '/');
    return GetChildNode(name);
}

void Node::requireTakeable(const TreeItem *item) const
{
    if (item == nullptr)
        throw KRException("There is no item to add.", __FILE__, "Node", "AddItem", __LINE__);
    if (!canTake(*item, 1))
        throw KRException(QStringLiteral("The item \"%1\" cannot stand below \"%2\".")
                              .arg(item->m_name, describe()),
                          __FILE__, "Node", "AddItem", __LINE__);
}

void Node::AddItem(TreeItem *item)
{
    requireTakeable(item);
    _Q_assert(item->m_parent != this,
              "std::find(m_TreeItems.cbegin(), m_TreeItems.cend(), pItem) == m_TreeItems.cend()",
              __FILE__, __LINE__);
    if (item->m_parent == this)
        return;
    link(*item);
    NotifyObservers(CC_CHILD_ADDED, nullptr);
}

void Node::AddItemUnique(TreeItem *item)
{
    requireTakeable(item); // before it has another name
    const ItemWatch watch(item);
    item->SetName(GetUniqueChildName(item->m_name), nullptr);
    if (!watch.isGone())
        AddItem(item);
}

void Node::NotifyDelete(IDeleteSubject *subject)
{
    auto *const item = dynamic_cast<TreeItem *>(subject);
    if (item != nullptr && item->m_parent == this)
        unlink(*item);
}

void Node::NotifyChildrenAboutDeletion(IObserver *source)
{
    ChildWalk walk(*this);
    while (TreeItem *const child = walk.next())
        tellChildOfEnd(*child, source);
}

namespace {

void traceNotice(const Node &node, const QString &child)
{
    if (Kelm::isUnloading())
        SPECTREE_TRACE(TraceLifecycle, QStringLiteral("%1 notifies child \"%2\" about deletion")
                                           .arg(node.GetPathName(), child));
}

} // namespace

void Node::tellChildOfEnd(TreeItem &child, IObserver *source)
{
    const ItemWatch watch(&child);
    if (!child.m_toldAhead) {
        child.m_toldAhead = true;
        Node *const node = child.AsNode();
        ValueItem *const item = child.AsValueItem();
        if (node != nullptr) {
            traceNotice(*this, child.GetPathName());
            node->NotifyChildrenAboutDeletion(source);
            if (watch.isGone())
                return;
            node->m_childrenNotified = true;
        } else if (const ValueBase *const value = item->GetValue()) {
            traceNotice(*this, child.m_name + " (" + value->GetPathName());
        }
        child.NotifyObservers(CC_ABOUT_TO_DELETE, source);
        if (!watch.isGone() && item != nullptr && item->GetValue() != nullptr)
            item->GetValue()->HasChanged(CC_NAME, source);
    }
    if (!watch.isGone())
        child.tellOfEnd(source);
}

void Node::DeleteChildren()
{
    const ItemWatch watch(this);
    const std::uint32_t end = m_nextPosition; // observers may add others meanwhile
    if (!m_childrenNotified)
        NotifyChildrenAboutDeletion(nullptr);
    while (!watch.isGone() && m_first != nullptr && m_first->m_position < end) {
        TreeItem *const child = m_first;
        unlink(*child);
        if (!child->m_ending) // else its own destruction called an observer that led here
            delete child;
    }
    if (!watch.isGone() && !m_ending)
        m_childrenNotified = false;
}

} // namespace values
