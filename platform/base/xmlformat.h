#pragma once

#include "platform/base/export.h"

#include <QString>

/// The form in which XML texts are stored.
class SPECTREE_EXPORT XmlFormat {
public:
    /// \a xml as Kelm::XmlWriter prints it: an element a line. Blanks between elements go, comments
    /// and processing instructions too; a text stays as it is.
    /// \throws KRException for a text that isn't well-formed.
    static QString Format(const QString &xml);
};
