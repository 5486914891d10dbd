#pragma once

#include "platform/base/export.h"

#include <QString>

class IObserver;

namespace values {

class Node;
class ValueBase;

/// The tree of the process, as far as descriptors need it. Application thread.
class SPECTREE_EXPORT IValueTree {
public:
    virtual ~IValueTree() = default;
    virtual ValueBase *GetValue(const QString &path) const = 0;
    /// Takes \a value over when it returns true.
    virtual bool AddValue(const QString &path, ValueBase *value) = 0;
    /// The node at \a path, relative to the root; made where there is none, and null where it can't
    /// be. \a observer, if there is one, is added to it.
    virtual Node *MakeNode(const QString &path, IObserver *observer) = 0;

    static IValueTree &Instance();
};

} // namespace values
