#pragma once

#include "platform/base/export.h"

#include <QFile>

namespace Kelm {

/// Opens \a file, which has a name, for reading. Only a regular file is taken: a pipe or a device
/// could keep the caller waiting, or never end. False leaves it closed, and \a error tells why.
SPECTREE_EXPORT bool openRegularFile(QFile &file, QString &error);

} // namespace Kelm
