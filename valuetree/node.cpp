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

void Node::SetAutoDeleteAtAddValue(bool on)
{
    ManageValue::SetAutoDeleteAtAddValue(on);
    for (TreeItem *child = m_first; child != nullptr; child = child->m_next)
        if (child->m_kind == Kind::Node)
            child->SetAutoDeleteAtAddValue(on);
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
    if (ItemWatch::isBelowEnd(*this) || item.m_ending || item.isRoot())
        return false;
    for (const TreeItem *above = this; above != nullptr; above = above->m_parent)
        if (above == &item)
            return false;
    return depth() + levels + height(item) <= TreePathHelpers::kMaximumDepth;
}

void Node::link(TreeItem &item)
{
    if (item.m_parent != nullptr) {
        if (!IsInTree() && item.IsInTree())
            ChildWalk::rememberPaths(item);
        item.m_parent->unlink(item);
    }
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
    item.revive();
    if (item.IsAutoDeleteAtAddValue() != IsAutoDeleteAtAddValue())
        item.SetAutoDeleteAtAddValue(IsAutoDeleteAtAddValue());
    item.setParent(this);
    if (PathIndex *const index = top()->m_index.get())
        index->Add(item);
}

void Node::unlink(TreeItem &item)
{
    ChildWalk::tellUnlinked(item);
    m_uniqueNext = 0;
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

void Node::reviveChildren()
{
    m_childrenNotified = false;
    for (TreeItem *child = m_first; child != nullptr; child = child->m_next)
        child->revive();
}

/// Where something new is to stand: below the last node of a path that exists, and nodes that are
/// missing. Nothing can stand where there is no such node.
struct Node::Place {
    bool reaches(int levels) const
    {
        return at != nullptr &&
               at->depth() + int(missing.size()) + levels <= TreePathHelpers::kMaximumDepth;
    }
    bool isFree(QStringView name) const { return !missing.empty() || at->child(name) == nullptr; }
    /// \a item is null when the nodes are all that is wanted.
    void fill(TreeItem *item) const;

    Node *at = nullptr;
    std::vector<QString> missing;
};

Node::Place Node::placeAt(QStringView path) const
{
    if (path.endsWith(QChar('/')))
        path.chop(1);
    Place place;
    Node *at = const_cast<Node *>(this);
    if (TreeItem *const there = path.isEmpty() ? at : find(path)) {
        at = there->AsNode();
    } else {
        for (const QStringView &name : path.split(QChar('/'))) {
            if (name.isEmpty())
                return {};
            TreeItem *const next = place.missing.empty() ? at->child(name) : nullptr;
            if (next == nullptr)
                place.missing.push_back(name.toString());
            else if ((at = next->AsNode()) == nullptr)
                return {};
        }
    }
    if (at != nullptr && !ItemWatch::isBelowEnd(*at))
        place.at = at;
    return place;
}

void Node::Place::fill(TreeItem *item) const
{
    TreeItem *subtree = item;
    for (auto name = missing.rbegin(); name != missing.rend(); ++name) {
        auto *const node = new Node(*name);
        node->SetAutoDeleteAtAddValue(at->IsAutoDeleteAtAddValue());
        if (subtree != nullptr)
            node->link(*subtree);
        subtree = node;
    }
    if (subtree == nullptr)
        return;
    at->link(*subtree);
    at->NotifyObservers(CC_CHILD_ADDED, nullptr);
}

bool Node::AddNode(const QString &path, Node *child)
{
    if (child == nullptr || child->m_name.isEmpty())
        return false;
    const Place place = placeAt(path);
    if (place.at == nullptr || !place.isFree(child->m_name) ||
        !place.at->canTake(*child, int(place.missing.size()) + 1))
        return false;
    place.fill(child);
    return true;
}

bool Node::AddNode(const QString &path) { return AddValue(path, nullptr); }

bool Node::AddValue(QString path, ValueBase *value)
{
    if (value == nullptr) {
        const Place place = placeAt(path);
        if (!place.reaches(0))
            return false;
        place.fill(nullptr);
        return true;
    }
    const int cut = path.lastIndexOf('/');
    const QStringView parent = QStringView(path).left(std::max(cut, 0));
    const QString ownName = value->GetName();
    const QString name = path.isEmpty() ? ownName : path.mid(cut + 1);
    Place place = placeAt(parent);
    const auto canStand = [&] {
        return value->GetDeleteObserver() == nullptr && place.reaches(1) && place.isFree(name);
    };
    if (name.isEmpty() || !canStand())
        return false;
    if (name != ownName) {
        const bool isObserved = value->HasObservers();
        const ItemWatch watch(this);
        const LifeWatch valueWatch(value);
        value->SetName(name, nullptr);
        if (valueWatch.IsGone())
            return true; // nothing is left that could be the caller's
        if (watch.isGone())
            return false;
        if (isObserved)
            place = placeAt(parent); // its observers may have changed the tree
        if (isObserved && !canStand()) {
            if (!ownName.isEmpty() && value->GetDeleteObserver() == nullptr)
                value->SetName(ownName, nullptr);
            return valueWatch.IsGone();
        }
    }
    if (place.at->IsAutoDeleteAtAddValue())
        value->SetAutoDelete(true);
    place.fill(new ValueItem(value));
    return true;
}

ValueBase *Node::CreateValue(QString path, const ValueBase &prototype)
{
    const QString whole = path.isEmpty() ? prototype.GetName() : path;
    if (const TreeItem *const present = find(whole)) {
        const ValueItem *const item = const_cast<TreeItem *>(present)->AsValueItem();
        return item != nullptr ? item->GetValue() : nullptr;
    }
    if (!placeAt(QStringView(whole).left(std::max(whole.lastIndexOf('/'), 0))).reaches(1))
        return nullptr;
    ValueBase *const value = ValueFactory::Instance().CloneValue(prototype);
    if (value == nullptr)
        return nullptr;
    const ItemWatch watch(this);
    if (!AddValue(whole, value)) { // an observer that throws does so when the value stands
        delete value;
        return nullptr;
    }
    return watch.isGone() ? nullptr : GetValue(whole); // an observer may have deleted it already
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
    const ItemWatch watch(&item);
    const auto stillEnds = [&] { return item.m_toldAhead && item.m_parent == this; };
    const bool toldBefore = item.m_toldAhead;
    try {
        if (!toldBefore) {
            item.m_toldAhead = true;
            item.NotifyObservers(CC_ABOUT_TO_DELETE, nullptr);
        }
        if (!watch.isGone() && stillEnds())
            item.tellOfEnd(nullptr);
    } catch (...) {
        if (!watch.isGone() && !toldBefore)
            item.revive();
        throw;
    }
    if (watch.isGone())
        return true;
    if (!stillEnds()) // an observer has moved it, or taken it out
        return false;
    unlink(item);
    item.m_ending = true;
    const bool deleted = item.DeleteValue(QString());
    if (!watch.isGone())
        delete &item;
    return deleted;
}

Node *Node::AddChildNode(const QString &name)
{
    if (name.isEmpty())
        return nullptr;
    const ItemWatch watch(this);
    AddNode(name + '/');
    return watch.isGone() ? nullptr : GetChildNode(name);
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

bool Node::requireNew(const TreeItem &item) const
{
    _Q_assert(item.m_parent != this,
              "std::find(m_TreeItems.cbegin(), m_TreeItems.cend(), pItem) == m_TreeItems.cend()",
              __FILE__, __LINE__);
    return item.m_parent != this;
}

void Node::AddItem(TreeItem *item)
{
    requireTakeable(item);
    if (!requireNew(*item))
        return;
    link(*item);
    NotifyObservers(CC_CHILD_ADDED, nullptr);
}

void Node::AddItemUnique(TreeItem *item)
{
    requireTakeable(item); // before it has another name
    if (!requireNew(*item))
        return;
    const ItemWatch watch(this), itemWatch(item);
    item->SetName(GetUniqueChildName(item->m_name), nullptr);
    if (!watch.isGone() && !itemWatch.isGone())
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
    const ItemWatch watch(this);
    const bool isEnding = m_toldAhead;
    ChildWalk walk(*this);
    while (TreeItem *const child = walk.next()) {
        tellChildOfEnd(*child, source);
        if (watch.isGone() || (isEnding && !m_toldAhead)) // moved, and lives on
            return;
    }
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
    // An observer may delete the child, or move it to where it lives on.
    const auto stillEnds = [&] { return !watch.isGone() && child.m_toldAhead; };
    if (!child.m_toldAhead) {
        child.m_toldAhead = true;
        Node *const node = child.AsNode();
        ValueItem *const item = child.AsValueItem();
        if (node != nullptr) {
            traceNotice(*this, child.GetPathName());
            node->NotifyChildrenAboutDeletion(source);
            if (!stillEnds())
                return;
            node->m_childrenNotified = true;
        } else if (const ValueBase *const value = item->GetValue()) {
            traceNotice(*this, child.m_name + " (" + value->GetPathName());
        }
        const bool isNews = !child.m_toldOfEnd; // an item that leaves its node may have told it
        if (isNews)
            child.NotifyObservers(CC_ABOUT_TO_DELETE, source);
        if (isNews && stillEnds() && item != nullptr && item->GetValue() != nullptr)
            item->GetValue()->HasChanged(CC_NAME, source);
    } else if (Node *const node = child.AsNode(); node != nullptr && !node->m_childrenNotified) {
        node->NotifyChildrenAboutDeletion(source); // an observer within its end led here
        if (stillEnds())
            node->m_childrenNotified = true;
    }
    if (stillEnds())
        child.tellOfEnd(source);
}

void Node::DeleteChildren()
{
    const bool isInner = ItemWatch::areChildrenEnding(*this); // an observer led here
    const ItemWatch watch(this, ItemWatch::Ends::Children);
    const std::uint32_t end = m_nextPosition; // observers may add others meanwhile
    try {
        if (!m_childrenNotified)
            NotifyChildrenAboutDeletion(nullptr);
    } catch (...) {
        if (!isInner && !watch.isGone() && !m_ending && !m_toldAhead)
            reviveChildren(); // none goes, so each will be told again
        throw;
    }
    while (!watch.isGone() && m_first != nullptr && m_first->m_position < end) {
        TreeItem *const child = m_first;
        unlink(*child);
        if (!child->m_ending) // else its own destruction called an observer that led here
            delete child;
    }
    if (watch.isGone() || m_ending)
        return;
    if (isInner || m_toldAhead)
        m_childrenNotified = false;
    else
        reviveChildren(); // an inner deletion that broke off may have told some that came later
}

} // namespace values
