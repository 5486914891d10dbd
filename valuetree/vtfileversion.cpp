#include "valuetree/vtfileversion.h"

#include "platform/base/userquestion.h"
#include "valuetree/vtxml.h"

namespace values {

VtFileVersion::~VtFileVersion() { VtXml::HandlerGone(this); }

bool VtFileVersion::VersionConflict(const QString &fileVersion)
{
    m_fileVersion = fileVersion;
    const QString question =
        QStringLiteral("The application version doesn't match with the file version. This could "
                       "lead to program errors, press Continue if you like to load it any way or "
                       "Abort to cancel loading of this file.\nFile Name: ") +
        m_fileName;
    return UserQuestion::Ask(question) != UserQuestion::Abort;
}

void VtFileVersion::CheckDescriptorList(Node *node, const ValueDescriptor *descriptor)
{
    if (m_toRepair.contains(descriptor))
        FixVersionConflict(node, descriptor);
}

} // namespace values
