#pragma once

#include "valueclasses/itreeitem.h"
#include "valueclasses/ivalue.h"
#include "valuetree/imanagevalue.h"

namespace values {

/// What nodes and value items have in common: a name, a parent and observers.
///
/// Observers see code 1 for a new name, 15 for a commit, 17 and 18 before and at the end; while
/// these go out, the item still stands where it was. They may remove, delete and add what they
/// like, this item included.
/// Threads: the application thread.
class SPECTREE_EXPORT TreeItem : public ITreeItem,
                                 public IDeleteSubject,
                                 public Observable,
                                 public ManageValue {
public:
    TreeItem(const TreeItem &) = delete;
    TreeItem &operator=(const TreeItem &) = delete;
    ~TreeItem() override;

    QString GetName() const override { return m_name; }
    QString GetPathName() const override;
    QString GetPathName_NoSlashForRoot() const override;
    void Commit(IObserver *source) override;
    QString GetLastCompletePathName() const override;
    void SetLastCompletePathName(bool recurse) override;
    /// The node that owns this item, or null.
    Node *GetParent() const { return m_parent; }
    /// Moves the item to the end of a node's children, or takes it out of its node, for null: then
    /// it is the caller's. Nodes are told nothing; \a notify sends code 18 here first.
    /// \throws KRException, with the item where it was, as Node::AddItem does.
    void SetParent(Node *parent, bool notify);
    /// This item, when it is a node.
    virtual Node *AsNode() { return nullptr; }
    /// True below (and for) the root of a tree.
    bool IsInTree() const;

    void SetAsStdString(const char *text, IObserver *source) override;
    void SetValueAsStdString(const char *text, IObserver *source) override;
    void SetAsStdString(std::string_view text, IObserver *source) override = 0;
    void SetValueAsStdString(std::string_view text, IObserver *source) override = 0;

    /// For codes 17 and 18 remembers the path, here and in LastDeletedObject, before it notifies.
    void NotifyObservers(TChangeCode code, IObserver *source) override;
    /// The item that is told of this one's end: its parent. That can't be set from outside.
    ITreeItem *GetDeleteObserver() const override;
    void SetDeleteObserver(ITreeItem * /*item*/) override {}
    void AddTreeString(std::string &out, int depth, int detail) const override;

protected:
    enum class Kind : unsigned char { Node, ValueItem };
    TreeItem(Kind kind, QString name);

    /// Sends code 18, unless that was done before.
    void tellOfEnd(IObserver *source);
    /// Changes the name, and the index with it.
    void storeName(const QString &name);
    /// The path, or the last one, or the name: for messages.
    QString describe() const;
    /// Ends the process on a wrong thread, with \a text and the path traced.
    void requireThread(const char *text) const;
    void setLastDeleted();
    /// Tells the parent, as the last act of a destructor.
    void leaveParent();
    bool isRoot() const;

private:
    friend class ChildWalk;
    friend class BaseTree;
    friend class ItemWatch;
    friend class Node;
    friend class PathIndex;
    friend class ValueItem;

    Node *top() const;
    ValueItem *valueItem(); // AsValueItem without a look at the virtual table
    void setParent(Node *parent);
    bool stands() const;
    void rememberPath();
    void revive();

    Node *m_parent = nullptr;
    TreeItem *m_previous = nullptr; // siblings, in the order in which they came
    TreeItem *m_next = nullptr;
    QString m_name;
    QString m_lastPath; // of an item outside of a tree
    // The hash of the path, of an item in an index. What a lookup reads stands together.
    std::uint64_t m_place = 0;
    std::uint64_t m_check = 0;
    std::uint32_t m_position = 0; // rises from sibling to sibling
    const Kind m_kind;
    bool m_indexed : 1;     // a path leads here: it is the first of its name, its parent too
    bool m_hasTwin : 1;     // a later sibling may have the same name
    bool m_toldAhead : 1;   // code 17 went out, or is going out
    bool m_toldOfEnd : 1;   // code 18 likewise
    bool m_ending : 1;      // its deletion or destruction runs
    bool m_listening : 1;   // a value item: it observes its value
    bool m_valueEnding : 1; // a value item: its value's destruction runs
};

} // namespace values
