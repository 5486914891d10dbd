#pragma once

#include "platform/base/export.h"

#include <QString>

#include <string>

namespace values {

class Node;
class ValueBase;

/// What can be done by path on a tree, a node or a value item.
///
/// A tree takes absolute paths ("/A/B"), a node relative ones ("A/B"). Application thread.
/// Ownership: what AddNode and AddValue take belongs to the tree when they return true, and stays
///            the caller's when they return false or throw for a path. What an observer throws
///            comes behind the taking; only one of the value itself, told of a new name that a path
///            gives it, leaves it with the caller.
class SPECTREE_EXPORT IManageValue {
public:
    virtual ~IManageValue() = default;
    /// Null when there is no value at the path. Allocates nothing.
    virtual ValueBase *GetValue(QString path) const = 0;
    virtual Node *GetNode(QString path) const = 0;
    /// The value at the path; a copy of \a prototype, with the last part of the path as its name,
    /// where there is none. Null for a node in the way, or a kind that can't be copied.
    virtual ValueBase *CreateValue(QString path, const ValueBase &prototype) = 0;
    /// Adds \a node under the node at \a path, making every node of the path that is missing. False
    /// for a clash of names.
    virtual bool AddNode(const QString &path, Node *node) = 0;
    /// Makes every node of the path that is missing, with or without the closing "/". False when a
    /// value is in the way.
    virtual bool AddNode(const QString &path) = 0;
    /// Adds \a value, which gets the last part of the path as its name; an empty path uses the name
    /// that it has. False for a clash, or a value that another item holds.
    virtual bool AddValue(QString path, ValueBase *value) = 0;
    /// Deletes the value and its item. False when there is no value at the path.
    virtual bool DeleteValue(QString path) = 0;
    /// Whether values that are added from now on become auto-delete; new nodes inherit it.
    virtual void SetAutoDeleteAtAddValue(bool on) = 0;
    /// Makes the present values auto-delete, or not.
    virtual void SetAllValuesAutoDelete(bool on) = 0;
    /// Prints for diagnosis. \a depth tabs go before a line; \a detail 0 prints values, kinds and
    /// limits, 2 names only, others the kinds.
    virtual void AddTreeString(std::string &out, int depth, int detail) const = 0;
};

class SPECTREE_EXPORT ManageValue : public IManageValue {
public:
    void SetAutoDeleteAtAddValue(bool on) override { m_autoDeleteAtAddValue = on; }
    bool IsAutoDeleteAtAddValue() const { return m_autoDeleteAtAddValue; }

private:
    bool m_autoDeleteAtAddValue = false;
};

} // namespace values
