#pragma once

#include "platform/base/export.h"

#include <QString>

namespace values {

class Node;
class VtFileVersion;

/// A subtree as an XML file; docs/treefiles.md shows its form. Application thread.
///
/// Write makes the file under another name beside the old one, has it written to the disk and then
/// renames it: after a crash, or with a full disk, the file is the old or the new one, whole. A
/// process that is killed may leave "<file>.XXXXXX" behind.
class SPECTREE_EXPORT VtFile {
public:
    /// Neither is owned. \a handler becomes that of the process, its version the application's, and
    /// it gets the file name; null for none.
    VtFile(const QString &fileName, Node *node, VtFileVersion *handler);

    /// Reads into the node as VtXml::FromXml does. A relative name that isn't there is looked up in
    /// the folder of the configuration key "workingdir", section "Startup". Nothing for an empty
    /// name. \throws KRException, with nothing changed.
    void Read();
    /// Nothing for an empty name. \throws KRException, with the old file as it was. That the folder
    /// couldn't be written to the disk, with the new file in place, is traced only.
    void Write();
    static void SetVersion(const QString &version);

private:
    Node *m_node;
    QString m_fileName;
};

} // namespace values
