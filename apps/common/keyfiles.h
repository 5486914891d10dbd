#pragma once

#include "apps/common/failure.h"

#include <QStringList>

namespace apps {

/// The CURVE keys of a text file: 40 characters of Z85 or 64 hexadecimal digits each, apart by
/// white space; a word that begins with "#" begins a comment. At least one. \throws Failure that
/// names the file
QStringList readKeys(const QString &path);

/// The only key of a file. \throws Failure also when there are several
QString readKey(const QString &path);

/// Writes a new key pair: the secret key to \a path, which only its owner may read, the public one
/// to \a path with ".pub" behind it. \throws Failure, leaving nothing behind; a file that exists is
/// never replaced
void makeKeyFiles(const QString &path);

} // namespace apps
