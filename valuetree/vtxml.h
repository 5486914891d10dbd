#pragma once

#include "platform/base/export.h"

#include <QDomDocument>
#include <QDomElement>
#include <QString>

namespace values {

class Node;
class ValueDescriptor;
class VtFileVersion;

/// Converts a subtree to an XML text and back; docs/treefiles.md shows the document.
///
/// ToXml and FromXml work on a whole subtree in one pass. An object of the class holds a document
/// of single nodes, to be filled by AddNode and emptied by CreateNodeAt. Version and handler are
/// those of the process. Application thread.
class SPECTREE_EXPORT VtXml {
public:
    /// A document without items, of the present version.
    VtXml();
    /// Parses. The document of a refused version has no items. \throws KRException as FromXml does,
    /// and for more than 2^20 elements, which take some 1 200 bytes each here.
    explicit VtXml(const QString &xml);

    /// Appends an element for \a node with all below it.
    void AddNode(Node *node);
    QString GetString() const;
    /// A new node, the caller's, from the item element at \a index; null when that is a value, or
    /// there is none. \throws KRException when it can't be read.
    Node *CreateNodeAt(int index) const;

    /// The children of \a node as a document. An item that can't be kept is left out and traced:
    /// one without a name or with a "/" in it, a second one of a name, a value of a kind that the
    /// factory doesn't know. \throws KRException for null.
    static QString ToXml(Node *node);
    /// Reads a document into \a node: items that exist take over what it says, and keep their
    /// observers; others are made, values in state 2, and told of when they stand whole. What the
    /// document doesn't name stays. False, with nothing read, when the version is refused.
    ///
    /// The whole document is checked first. \throws KRException, with nothing changed, for what
    /// isn't well-formed, nests deeper than a tree may, declares entities, names an item twice, has
    /// a value in a node's place or the other way round, or a text that its value can't take. A
    /// value of an unknown kind is traced and left out, and a value that stands there stays.
    /// Observers and repairs may add and delete what they like meanwhile: the document is read onto
    /// what was added, and what it names is made anew, unless the node that it stood in is gone or
    /// a node's own repair has deleted it. A new node whose place is taken while it is made is
    /// traced and left out.
    static bool FromXml(Node *node, const QString &xml);

    /// Whether a file of that version may be read: the same one, or the handler accepts it.
    static bool CheckVersion(const QString &fileVersion);
    /// Has the handler repair \a node, when the version was accepted.
    static void FixVersionConflict(Node *node, const ValueDescriptor *descriptor);
    /// "1.0" at first.
    static void SetVersion(const QString &version);
    static const QString &GetVersion();
    /// Not owned; null for none.
    static void SetVtFileVersion(VtFileVersion *handler);
    /// For a handler that dies.
    static void HandlerGone(const VtFileVersion *handler);

private:
    void fromString(const QString &xml);

    static QString s_version;
    QDomDocument m_document;
    QDomElement m_root;
};

} // namespace values
