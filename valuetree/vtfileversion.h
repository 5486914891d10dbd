#pragma once

#include "platform/base/export.h"

#include <QString>

#include <set>

namespace values {

class Node;
class ValueDescriptor;

/// Decides what happens to a tree file of another version than the application's, and repairs what
/// changed between the two. Application thread.
class SPECTREE_EXPORT VtFileVersion {
public:
    VtFileVersion() = default;
    VtFileVersion(const VtFileVersion &) = delete;
    VtFileVersion &operator=(const VtFileVersion &) = delete;
    /// From then on nobody is asked, if this one was.
    virtual ~VtFileVersion();

    /// Whether to load the file all the same. Here: the user is asked; see UserQuestion.
    virtual bool VersionConflict(const QString &fileVersion);
    /// The version that the application writes.
    virtual QString GetVersion() const = 0;
    /// Repairs a node that was read and has one of the descriptors to repair, before its children
    /// are read. \a node may stand in no tree yet.
    virtual void FixVersionConflict(Node *node, const ValueDescriptor *descriptor) = 0;

    void AddValueDescriptor(const ValueDescriptor *descriptor) { m_toRepair.insert(descriptor); }
    /// Repairs \a node when \a descriptor was added.
    void CheckDescriptorList(Node *node, const ValueDescriptor *descriptor);

    const QString &GetFileName() const { return m_fileName; }
    void SetFileName(const QString &fileName) { m_fileName = fileName; }
    /// The version of the file in question.
    const QString &GetFileVersion() const { return m_fileVersion; }

private:
    QString m_fileName, m_fileVersion;
    std::set<const ValueDescriptor *> m_toRepair;
};

} // namespace values
