#pragma once

#include "platform/base/export.h"
#include "platform/base/observable.h"

#include <QString>

#include <string>
#include <string_view>

namespace values {

class IDeleteSubject;
class ValueDescriptor;
class ValueItem;

/// A place in a tree: a node, or an item that holds a value. Application thread.
///
/// The string forms carry one item to another tree; a node's form doesn't hold its children. Those
/// that take a `char const *` read up to the zero byte. What they refuse changes nothing.
class SPECTREE_EXPORT ITreeItem {
public:
    virtual ~ITreeItem() = default;
    virtual QString GetName() const = 0;
    /// Takes over what GetAsStdString gave. \throws KRException for a malformed text.
    virtual void SetAsStdString(const char *text, IObserver *source) = 0;
    /// A node's name and descriptor, or the form of the value.
    virtual std::string GetAsStdString() const = 0;
    virtual void SetValueAsStdString(const char *text, IObserver *source) = 0;
    /// A node's descriptor; a value's name, type number and object state, or nothing without one.
    virtual std::string GetValueAsStdString() const = 0;
    virtual const ValueDescriptor *GetValueDescriptor() const = 0;
    /// "/" for the root; empty for an item without a parent. Under a detached item the path begins
    /// there.
    virtual QString GetPathName() const = 0;
    /// The same, empty for the root.
    virtual QString GetPathName_NoSlashForRoot() const = 0;
    /// Not checked against siblings. Notifies code 1. \throws KRException for an empty name.
    virtual void SetName(const QString &name, IObserver *source, bool skipPathUpdate = false) = 0;
    /// Notifies code 15.
    virtual void Commit(IObserver *source) = 0;
    /// The path, or the one that the item had when it left its tree.
    virtual QString GetLastCompletePathName() const = 0;
    /// Remembers the path, where there is one; \a recurse: that of the items below too.
    virtual void SetLastCompletePathName(bool recurse) = 0;

    virtual void SetAsStdString(std::string_view text, IObserver *source) = 0;
    virtual void SetValueAsStdString(std::string_view text, IObserver *source) = 0;
    /// This item, when it is one that holds a value.
    virtual ValueItem *AsValueItem() { return nullptr; }

    // What an item is told by the value or item that it looks after.
    /// Its name has changed.
    virtual void SubjectRenamed(IDeleteSubject * /*subject*/) {}
    /// Its destruction begins: don't delete it.
    virtual void SubjectEnding(IDeleteSubject * /*subject*/) {}
    /// Its observers were told; it is gone after this.
    virtual void NotifyDelete(IDeleteSubject * /*subject*/) {}
};

/// The last value, item or node that went away, kept for messages. Application thread.
struct SPECTREE_EXPORT LastDeletedObject {
    enum Type : int { None = 0, NodeType = 1, ValueItemType = 2, ValueObjectType = 3 };
    QString name; ///< its last path, or its name when it had none
    Type type = None;

    static LastDeletedObject &Instance();
};

/// Keeps the last deleted object while something goes that nobody knew of. Lives on the stack.
class KeepLastDeletedObject {
public:
    KeepLastDeletedObject() : m_last(LastDeletedObject::Instance()) {}
    ~KeepLastDeletedObject() { LastDeletedObject::Instance() = m_last; }
    KeepLastDeletedObject(const KeepLastDeletedObject &) = delete;
    KeepLastDeletedObject &operator=(const KeepLastDeletedObject &) = delete;

private:
    const LastDeletedObject m_last;
};

} // namespace values
