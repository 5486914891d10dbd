#pragma once

#include "platform/base/export.h"

#include <QString>

class ICfg;

namespace values {

class Node;

/// Writes the values of a node, and those of its child nodes, into a configuration, as texts under
/// their names. Deeper nodes are left out. Application thread.
class SPECTREE_EXPORT TreeToCfg {
public:
    /// Into the user's file of that name. \a valuesOnly leaves the child nodes out too.
    static void ToCfg(const Node *node, const QString &name, bool valuesOnly);
    static void ToCfg(const Node *node, ICfg *cfg, bool valuesOnly);
};

} // namespace values
