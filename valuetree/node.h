#pragma once

#include "valuetree/pathhash.h"
#include "valuetree/treeitem.h"

#include <memory>
#include <vector>

namespace values {

class BaseTree;
class PathIndex;

/// A named place in a tree that owns nodes and value items, in the order in which they came.
///
/// Paths are relative to the node and have no leading "/". A lookup by path or name doesn't walk
/// the children; among equal names the first in order wins.
/// Observers are told code 16 when a child was added and stands with all below it.
/// Ownership: a child belongs to its node. Deleting it by any road takes it out.
/// Threads:   the application thread; being destroyed on another one ends the process.
class SPECTREE_EXPORT Node : public TreeItem {
public:
    Node();
    explicit Node(const QString &name);
    static Node *Create(QString name) { return new Node(name); }
    /// Tells and deletes what is below; items that were told of their end are not told again.
    ~Node() override;
    Node *AsNode() override { return this; }

    // By path; IManageValue tells the rest.
    ValueBase *GetValue(QString path) const override;
    /// An empty path gives this node.
    Node *GetNode(QString path) const override;
    ValueBase *CreateValue(QString path, const ValueBase &prototype) override;
    bool AddNode(const QString &path, Node *child) override;
    bool AddNode(const QString &path) override;
    /// Without a value, makes the nodes along the path.
    bool AddValue(QString path, ValueBase *value) override;
    bool DeleteValue(QString path) override;
    void SetAutoDeleteAtAddValue(bool on) override;
    void SetAllValuesAutoDelete(bool on) override;
    void AddTreeString(std::string &out, int depth, int detail) const override;
    virtual Node *GetSubTree(QString path) const;

    // Children
    /// Null for an empty name, or where a value has it.
    Node *AddChildNode(const QString &name);
    /// Takes \a item over, from another node if it is in one. \throws KRException, with \a item
    /// still the caller's, for null, for this node or one above it, where the tree would get too
    /// deep, and while this node is being destroyed.
    void AddItem(TreeItem *item);
    /// Gives the item a name that is free first.
    void AddItemUnique(TreeItem *item);
    void DeleteChildren();
    TreeItem *GetChild(QString name) const;
    /// Null past the end.
    TreeItem *GetChild(quint64 index) const;
    Node *GetChildNode(const QString &name) const;
    /// The first child with this descriptor; these walk the children.
    Node *GetChildNode(const ValueDescriptor *descriptor) const;
    ValueBase *GetChildValue(const QString &name) const;
    ValueBase *GetChildValue(const ValueDescriptor *descriptor) const;
    ValueItem *GetChildValueItem(const QString &name) const;
    ValueItem *GetChildValueItem(const ValueDescriptor *descriptor) const;
    /// A copy, which may be walked while children come and go.
    std::vector<TreeItem *> GetChildren() const { return GetTreeItems(); }
    /// Valid until the next change of the children.
    const std::vector<TreeItem *> &GetTreeItems() const;
    int GetChildrenCount() const { return int(m_count); }
    /// -1 for an item that isn't a child.
    int GetIndex(const TreeItem *item) const;
    /// The index of the first child of that name, or -1.
    int SearchTreeItem(const QString &name) const { return GetIndex(GetChild(name)); }
    /// \a base without its closing digits, and the first free number in five places. Asking again
    /// for the same base goes on where the last search ended, while no child goes or is renamed.
    QString GetUniqueChildName(const QString &base) const;
    /// The node that stands \a levels above, 0 being this one; null past the top.
    Node *GetAncestor(int levels) const;
    /// The nearest node above with this descriptor.
    Node *GetAncestor(const ValueDescriptor *descriptor) const;

    // Whole subtrees. Values that the factory can't copy are reported and left out.
    /// Names, descriptors and children equal, in any order of the children.
    bool Compare(const Node *other) const;
    /// Becomes a copy of \a other; the name of a nameless one isn't taken.
    void Copy(const Node *other);
    void CopyChildren(const Node *other);
    /// Refills the child of \a other's name, or makes it. Null where a value has the name.
    Node *CopyChildNode(const Node *other);
    /// Keep what exists, and add what is missing: the descriptor too, and the children. \throws
    /// KRException as AddItem does; what was added before stays.
    void Merge(const Node *other);
    void MergeChildren(const Node *other);

    /// Tells every child, the deepest first: codes 17 and 18 at nodes; 17, 1 and 18 at the items of
    /// values. No child is told twice.
    void NotifyChildrenAboutDeletion(IObserver *source);
    void NotifyDelete(IDeleteSubject *subject) override;

    void SetName(const QString &name, IObserver *source, bool skipPathUpdate = false) override;
    void SetLastCompletePathName(bool recurse) override;
    const ValueDescriptor *GetValueDescriptor() const override { return m_descriptor; }
    /// Tells nobody.
    void SetValueDescriptor(const ValueDescriptor *descriptor, IObserver *source);
    using TreeItem::SetAsStdString;
    using TreeItem::SetValueAsStdString;
    std::string GetAsStdString() const override;
    void SetAsStdString(std::string_view text, IObserver *source) override;
    std::string GetValueAsStdString() const override;
    void SetValueAsStdString(std::string_view text, IObserver *source) override;

private:
    friend class BaseTree;
    friend class ChildWalk;
    friend class PathIndex;
    friend class TreeItem;
    friend class ValueItem;

    PathIndex &index() const;
    TreeItem *find(QStringView path) const;
    TreeItem *child(QStringView name) const;
    TreeItem *walkTo(QStringView name) const;
    bool isReachable() const { return m_parent == nullptr || m_indexed; }
    int depth() const;
    static int height(const TreeItem &item);
    bool canTake(const TreeItem &item, int levels) const;
    void requireTakeable(const TreeItem *item) const;
    bool requireNew(const TreeItem &item) const;
    struct Place;
    Place placeAt(QStringView path) const;
    void link(TreeItem &item);
    void unlink(TreeItem &item);
    void reviveChildren();
    bool deleteValueItem(ValueItem &item);
    void tellChildOfEnd(TreeItem &child, IObserver *source);
    std::vector<std::unique_ptr<TreeItem>> copiesOf(const Node &other) const;
    void replaceChildren(std::vector<std::unique_ptr<TreeItem>> children);

    TreeItem *m_first = nullptr;
    TreeItem *m_last = nullptr;
    std::uint32_t m_count = 0;
    std::uint32_t m_nextPosition = 0;
    const ValueDescriptor *m_descriptor = nullptr;
    PathHash m_pathHash;                        // valid while the topmost node has an index
    BaseTree *m_tree = nullptr;                 // of a root
    mutable std::unique_ptr<PathIndex> m_index; // of a topmost node, made on first use
    mutable std::vector<TreeItem *> m_view;     // the children, while m_viewValid
    mutable QString m_uniqueBase;               // what GetUniqueChildName was asked for last
    mutable int m_uniqueNext = 0;               // smaller numbers are taken behind it
    mutable bool m_viewValid = false;
    bool m_childrenNotified = false;
};

} // namespace values
