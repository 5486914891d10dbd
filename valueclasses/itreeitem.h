#pragma once

#include "platform/base/export.h"

#include <QString>

namespace values {

class IDeleteSubject;
class ValueItem;

/// A place in a tree, as far as a value knows it.
class SPECTREE_EXPORT ITreeItem {
public:
    virtual ~ITreeItem() = default;
    virtual QString GetPathName() const = 0;
    /// This item, when it is one that holds a value.
    virtual ValueItem *AsValueItem() { return nullptr; }
    /// The path that this item had before it left its tree.
    virtual QString GetLastCompletePathName() const { return GetPathName(); }

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

} // namespace values
