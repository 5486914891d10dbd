#include "valuetree/treeitem.h"

#include "platform/base/errorhandler.h"
#include "platform/base/kelmos.h"
#include "platform/base/krexception.h"
#include "valuetree/node.h"
#include "valuetree/pathindex_p.h"
#include "valuetree/treewatch_p.h"

#include <algorithm>

namespace values {

TreeItem::TreeItem(Kind kind, QString name)
    : m_name(std::move(name)), m_kind(kind), m_indexed(false), m_hasTwin(false), m_toldAhead(false),
      m_toldOfEnd(false), m_ending(false), m_listening(false), m_valueEnding(false)
{
}

TreeItem::~TreeItem() { ItemWatch::tellDestroyed(this); }

Node *TreeItem::top() const
{
    const TreeItem *item = this;
    while (item->m_parent != nullptr)
        item = item->m_parent;
    return item->m_kind == Kind::Node ? static_cast<Node *>(const_cast<TreeItem *>(item)) : nullptr;
}

bool TreeItem::IsInTree() const
{
    const Node *const highest = top();
    return highest != nullptr && highest->m_tree != nullptr;
}

bool TreeItem::isRoot() const { return m_parent == nullptr && IsInTree(); }

QString TreeItem::GetPathName() const
{
    if (m_parent == nullptr)
        return isRoot() ? QStringLiteral("/") : QString();
    int length = 0;
    for (const TreeItem *item = this; item->m_parent != nullptr; item = item->m_parent)
        length += 1 + item->m_name.size();
    QString path(length, Qt::Uninitialized);
    QChar *end = path.data() + length;
    for (const TreeItem *item = this; item->m_parent != nullptr; item = item->m_parent) {
        end -= item->m_name.size();
        std::copy(item->m_name.begin(), item->m_name.end(), end);
        *--end = QChar('/');
    }
    return path;
}

QString TreeItem::GetPathName_NoSlashForRoot() const
{
    if (m_name.isEmpty() || m_parent == nullptr)
        return {};
    return m_parent->GetPathName_NoSlashForRoot() + QChar('/') + m_name;
}

QString TreeItem::GetLastCompletePathName() const
{
    return stands() || m_lastPath.isEmpty() ? GetPathName() : m_lastPath;
}

/// A value item whose value died has no name, and so no path of its own any more.
bool TreeItem::stands() const { return IsInTree() && (!m_name.isEmpty() || m_parent == nullptr); }

void TreeItem::SetLastCompletePathName(bool /*recurse*/)
{
    // The path is formed when somebody asks, and kept when the item is about to leave it.
    if (!m_lastPath.isEmpty() && m_parent != nullptr && IsInTree())
        m_lastPath.clear();
}

void TreeItem::rememberPath()
{
    if (stands())
        m_lastPath = GetPathName();
}

QString TreeItem::describe() const
{
    const QString path = GetLastCompletePathName();
    return path.isEmpty() ? m_name : path;
}

void TreeItem::Commit(IObserver *source) { NotifyObservers(CC_COMMIT_BEGIN, source); }

void TreeItem::setLastDeleted()
{
    LastDeletedObject::Instance() = {describe(), m_kind == Kind::Node
                                                     ? LastDeletedObject::NodeType
                                                     : LastDeletedObject::ValueItemType};
}

void TreeItem::NotifyObservers(TChangeCode code, IObserver *source)
{
    if (code == CC_ABOUT_TO_DELETE || code == CC_DELETED) {
        rememberPath();
        if (code == CC_DELETED)
            setLastDeleted();
        else
            LastDeletedObject::Instance().name = describe();
    }
    Observable::NotifyObservers(code, source);
}

void TreeItem::tellOfEnd(IObserver *source)
{
    if (m_toldOfEnd)
        return;
    m_toldOfEnd = true;
    NotifyObservers(CC_DELETED, source);
}

void TreeItem::setParent(Node *parent)
{
    m_parent = parent;
    if (parent != nullptr)
        SetLastCompletePathName(true);
}

/// What was told of its end has found a place to live on, and is told again when that comes.
void TreeItem::revive()
{
    if (!m_toldAhead && !m_toldOfEnd)
        return;
    m_toldAhead = m_toldOfEnd = false;
    if (m_kind == Kind::Node)
        static_cast<Node *>(this)->reviveChildren();
}

void TreeItem::SetParent(Node *parent, bool notify)
{
    if (parent != nullptr)
        parent->requireTakeable(this);
    if (notify) {
        const ItemWatch watch(this), parentWatch(parent);
        const bool wasTold = m_toldOfEnd;
        try {
            tellOfEnd(nullptr);
            if (watch.isGone())
                return;
            if (parent != nullptr && parentWatch.isGone())
                throw KRException("The node that was to take an item is gone", __FILE__, "TreeItem",
                                  "SetParent", __LINE__);
            if (parent != nullptr)
                parent->requireTakeable(this);
        } catch (...) {
            if (!watch.isGone())
                m_toldOfEnd = wasTold; // it stays where it is, and will be told again
            throw;
        }
    }
    if (parent != nullptr)
        return parent->link(*this);
    if (m_parent != nullptr) {
        ChildWalk::rememberPaths(*this);
        m_parent->unlink(*this);
    }
    if (!notify)
        revive();
}

void TreeItem::storeName(const QString &name)
{
    if (m_parent != nullptr)
        m_parent->m_uniqueNext = 0;
    Node *const highest = top();
    if (m_parent != nullptr && highest != nullptr && highest->m_index != nullptr)
        highest->m_index->Rename(*this, name);
    else
        m_name = name;
}

void TreeItem::requireThread(const char *text) const
{
    if (Kelm::isUnloading() || Kelm::isAcceptableThread())
        return;
    SPECTREE_TRACE(TraceWarnings, QLatin1String(text) + describe());
    Kelm::terminate();
}

ITreeItem *TreeItem::GetDeleteObserver() const { return m_parent; }

void TreeItem::leaveParent()
{
    if (m_parent != nullptr)
        m_parent->NotifyDelete(this);
}

void TreeItem::SetAsStdString(const char *text, IObserver *source)
{
    SetAsStdString(std::string_view(text != nullptr ? text : ""), source);
}

void TreeItem::SetValueAsStdString(const char *text, IObserver *source)
{
    SetValueAsStdString(std::string_view(text != nullptr ? text : ""), source);
}

void TreeItem::AddTreeString(std::string &out, int depth, int /*detail*/) const
{
    out.append(std::size_t(std::max(depth, 0)), '\t');
    out += '/';
    out += m_name.toStdString();
}

} // namespace values
