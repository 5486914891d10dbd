#pragma once

#include "platform/base/export.h"

#include <QString>

/// A running part of the suite: the application, or a plug-in that it has loaded.
class SPECTREE_EXPORT IDllInstance {
public:
    virtual ~IDllInstance() = default;
    /// The name of the running application: that of its executable, unless it set another one.
    /// Empty without an application object.
    static QString GetApplicationName();
};
