#pragma once

#include "valuetree/node.h"

namespace values {

/// A hierarchy of named nodes whose leaves hold values, addressed by absolute paths: "/A/B" is a
/// value or a node, "/" the root.
///
/// Several trees may stand beside each other; Tree is the one of the process. A path lookup costs
/// the same at any depth and with any number of values, and allocates nothing.
/// Ownership: the tree owns its root, and so all that is below. A deleted root takes all with it:
///            from then on nothing is found, and nothing can be added.
/// Threads:   the application thread.
/// Errors:    adding throws KRException "Argument Exception: invalid path name : " with the path,
///            for a path that CheckPath refuses; a path that isn't absolute gives false or null.
class SPECTREE_EXPORT BaseTree : public ManageValue {
public:
    BaseTree();
    BaseTree(const BaseTree &) = delete;
    BaseTree &operator=(const BaseTree &) = delete;
    ~BaseTree() override;

    /// Null once it was deleted.
    Node *GetRoot() const { return m_root; }

    /// Null for a path that ends with "/", here and in GetNode.
    ValueBase *GetValue(QString path) const override;
    Node *GetNode(QString path) const override;
    ValueItem *GetValueItem(const QString &path) const;
    ValueBase *CreateValue(QString path, const ValueBase &prototype) override;
    bool AddNode(const QString &path, Node *node) override;
    bool AddNode(const QString &path) override;
    bool AddValue(QString path, ValueBase *value) override;
    bool DeleteValue(QString path) override;
    void SetAutoDeleteAtAddValue(bool on) override;
    void SetAllValuesAutoDelete(bool on) override;
    void AddTreeString(std::string &out, int depth, int detail) const override;

    /// Destroys the node with all below it. False when there is none, or when it was moved.
    virtual bool DeleteNode(QString path);
    /// The node at \a path, with or without a closing "/"; the root for "/".
    virtual Node *GetSubTree(QString path) const;
    /// For the root, which is going.
    virtual void NotifyDelete(IDeleteSubject *subject);

    static bool CheckIdentifier(const QString &name);
    static bool CheckPath(const QString &path);
    /// \a path as a node path, with a closing "/". \throws KRException unless it is absolute and
    /// passes CheckPath.
    static QString AdaptPath(const QString &path);

private:
    TreeItem *find(const QString &path) const;
    QString relativePath(const QString &path, const char *method) const;

    Node *m_root;
};

/// The tree of the process. It is made on first use and never destroyed.
class SPECTREE_EXPORT Tree : public BaseTree {
public:
    using eLastDelObjectType = LastDeletedObject::Type;

    static Tree &Instance();
    /// The last path, or the name, of what went away last.
    static QString &LastDeletedObjectName() { return LastDeletedObject::Instance().name; }
    static eLastDelObjectType &m_eLastDelObjectType;

private:
    Tree() = default;
};

} // namespace values
