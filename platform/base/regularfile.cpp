#include "platform/base/regularfile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Kelm {

bool openRegularFile(QFile &file, QString &error)
{
    // O_NONBLOCK: to open a pipe would wait for its writer. It is the open file that is asked what
    // it is, since a name may mean another one a moment later.
    const QByteArray name = QFile::encodeName(file.fileName());
    const int handle = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    struct stat about = {};
    if (handle < 0 || ::fstat(handle, &about) != 0)
        error = QString::fromLocal8Bit(std::strerror(errno));
    else if (!S_ISREG(about.st_mode))
        error = QStringLiteral("It is no regular file");
    else if (!file.open(handle, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        error = file.errorString();
    else
        return true;
    if (handle >= 0)
        ::close(handle);
    return false;
}

} // namespace Kelm
