#include "valuetree/tree.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valuetree/path.h"
#include "valuetree/pathindex_p.h"
#include "valuetree/treewatch_p.h"
#include "valuetree/valueitem.h"

namespace values {

Tree::eLastDelObjectType &Tree::m_eLastDelObjectType = LastDeletedObject::Instance().type;

Tree &Tree::Instance()
{
    // Never destroyed: at the very end its observers may be gone without having said so.
    static auto *const tree = new Tree;
    return *tree;
}

BaseTree::BaseTree() : m_root(new Node) { m_root->m_tree = this; }

BaseTree::~BaseTree() { delete m_root; }

void BaseTree::NotifyDelete(IDeleteSubject *subject)
{
    if (m_root == subject)
        m_root = nullptr;
}

bool BaseTree::CheckIdentifier(const QString &name)
{
    return TreePathHelpers::CheckIdentifier(name);
}

bool BaseTree::CheckPath(const QString &path) { return TreePathHelpers::CheckPath(path); }

QString BaseTree::AdaptPath(const QString &path)
{
    if (!CheckPath(path) || !path.startsWith('/')) {
        const QString reason =
            QStringLiteral("Argument Exception: %1: invalid path name.").arg(path);
        _Q_Trace(reason, __FILE__, __LINE__);
        throw KRException(reason, __FILE__, "Tree", "AdaptPath", __LINE__);
    }
    return path.endsWith('/') ? path : path + '/';
}

/// Null for a path that isn't absolute. \throws KRException for one that is none.
QString BaseTree::relativePath(const QString &path, const char *method) const
{
    if (!CheckPath(path))
        throw KRException("Argument Exception: invalid path name : " + path, __FILE__, "Tree",
                          method, __LINE__);
    if (m_root == nullptr || !path.startsWith('/'))
        return {};
    const int closing = path.size() > 1 && path.endsWith('/') ? 1 : 0;
    return path.size() == 1 ? QString("") : path.mid(1, path.size() - 1 - closing);
}

TreeItem *BaseTree::find(const QString &path) const
{
    if (m_root == nullptr || path.size() < 2 || path[0] != QChar('/') || path.endsWith('/'))
        return nullptr;
    return m_root->index().AtAbsolute(path);
}

ValueBase *BaseTree::GetValue(QString path) const
{
    const ValueItem *const item = GetValueItem(path);
    return item != nullptr ? item->GetValue() : nullptr;
}

ValueItem *BaseTree::GetValueItem(const QString &path) const
{
    TreeItem *const item = find(path);
    return item != nullptr ? item->valueItem() : nullptr;
}

Node *BaseTree::GetNode(QString path) const
{
    TreeItem *const item = find(path);
    return item != nullptr ? item->AsNode() : nullptr;
}

Node *BaseTree::GetSubTree(QString path) const
{
    if (path == QStringLiteral("/"))
        return m_root;
    if (path.endsWith('/'))
        path.chop(1);
    return GetNode(path);
}

ValueBase *BaseTree::CreateValue(QString path, const ValueBase &prototype)
{
    const QString rest = relativePath(path, "CreateValue");
    return rest.isNull() ? nullptr : m_root->CreateValue(rest, prototype);
}

bool BaseTree::AddNode(const QString &path, Node *node)
{
    const QString rest = relativePath(path, "AddNode");
    return !rest.isNull() && m_root->AddNode(rest, node);
}

bool BaseTree::AddNode(const QString &path)
{
    const QString rest = relativePath(path, "AddNode");
    return !rest.isNull() && m_root->AddNode(rest);
}

bool BaseTree::AddValue(QString path, ValueBase *value)
{
    const QString rest = relativePath(path, "AddValue");
    return value != nullptr && !rest.isNull() && m_root->AddValue(rest, value);
}

bool BaseTree::DeleteValue(QString path)
{
    return find(path) != nullptr && m_root->DeleteValue(path.mid(1));
}

bool BaseTree::DeleteNode(QString path)
{
    Node *const node = GetSubTree(std::move(path));
    if (node == nullptr || node->m_ending)
        return false;
    node->requireThread("VTTHREADING: Destructing node from non-main thread ");
    const Node *const parent = node->m_parent;
    const ItemWatch watch(node, ItemWatch::Ends::Item);
    const bool toldBefore = node->m_toldAhead;
    node->m_toldAhead = true; // its own code 17 isn't sent
    try {
        if (!node->m_childrenNotified)
            node->NotifyChildrenAboutDeletion(nullptr);
        if (!watch.isGone() && node->m_toldAhead && node->m_parent == parent) {
            node->m_childrenNotified = true;
            node->tellOfEnd(nullptr);
        }
    } catch (...) {
        if (!watch.isGone() && !toldBefore)
            node->revive();
        throw;
    }
    if (watch.isGone())
        return true;
    if (!node->m_toldAhead || node->m_parent != parent) // an observer has moved it
        return false;
    delete node;
    return true;
}

void BaseTree::SetAutoDeleteAtAddValue(bool on)
{
    ManageValue::SetAutoDeleteAtAddValue(on);
    if (m_root != nullptr)
        m_root->SetAutoDeleteAtAddValue(on);
}

void BaseTree::SetAllValuesAutoDelete(bool on)
{
    if (m_root != nullptr)
        m_root->SetAllValuesAutoDelete(on);
}

void BaseTree::AddTreeString(std::string &out, int depth, int detail) const
{
    if (m_root != nullptr)
        m_root->AddTreeString(out, depth, detail);
}

} // namespace values
