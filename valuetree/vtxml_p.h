#pragma once

#include "valuetree/node.h"
#include "valuetree/xmldocument_p.h"

#include <memory>

/// What the one-pass road and the one over QDom share.
namespace values::VtXmlParts {

[[noreturn]] void fail(const QString &reason, const char *functionName = "FromXml");
/// Doctype, root and version. False for a refused version, which is traced. \throws KRException.
bool accept(const XmlDocument &document);
/// Not empty, and without the "/" that parts a path.
bool isItemName(const QString &name);
/// As the name of an element.
bool isNameTooLong(const QString &name);
/// False, and traced, for an item that couldn't be read again.
bool canKeep(TreeItem &child);
/// Empty without a published descriptor.
QString descriptorKey(const Node &node);
/// Looks the key up and has the handler repair the node.
void setDescriptor(Node &node, const QString &key);
/// Traces a value of an unknown kind.
void leaveOut(const QString &typeName, const QString &name);
/// A value in state 2; null, and traced, for an unknown kind.
std::unique_ptr<ValueBase> makeValue(const QString &typeName, const QString &name);

} // namespace values::VtXmlParts
