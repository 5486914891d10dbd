#include "valuetree/vtfile.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "platform/startup/cfgcenter.h"
#include "valuetree/vtfileversion.h"
#include "valuetree/vtxml.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextCodec>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace values {

namespace {

constexpr qint64 kLargestFile = qint64(1) << 29; // a QString holds no more

[[noreturn]] void fail(const char *reason, const char *function, const QString &error,
                       const QString &fileName)
{
    SPECTREE_TRACE(TraceWarnings, QStringLiteral("%1: %2").arg(error, fileName));
    throw KRException(QString::fromLatin1(reason), __FILE__, "VtFile", function, __LINE__);
}

[[noreturn]] void failReading(const QString &error, const QString &fileName)
{
    fail("Can not open File for reading - see Details", "Read", error, fileName);
}

QString existingName(const QString &fileName)
{
    if (QFile::exists(fileName))
        return fileName;
    const QString folder =
        CfgCenter::GetAppCfg().GetString(QStringLiteral("Startup/workingdir"), QString());
    const QString inFolder = folder + QLatin1Char('/') + fileName;
    if (folder.isEmpty() || !QFile::exists(inFolder))
        failReading(QStringLiteral("There is no such file"), fileName);
    return inFolder;
}

/// UTF-8, or what a byte order mark tells.
QString decode(const QByteArray &bytes, const QString &fileName)
{
    QTextCodec *const codec = QTextCodec::codecForUtfText(bytes, QTextCodec::codecForName("UTF-8"));
    QTextCodec::ConverterState state;
    const QString text = codec->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0)
        throw KRException(QStringLiteral("The file \"%1\" holds bytes that are no text in %2.")
                              .arg(fileName, QString::fromLatin1(codec->name())),
                          __FILE__, "VtFile", "Read", __LINE__);
    return text;
}

/// A rename is safe from a power cut only once its folder is on the disk, too.
bool syncFolderOf(const QString &fileName)
{
    const QByteArray folder = QFile::encodeName(QFileInfo(fileName).absolutePath());
    const int handle = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return false;
    const bool synced = ::fsync(handle) == 0 || errno == EINVAL; // some file systems can't
    ::close(handle);
    return synced;
}

} // namespace

VtFile::VtFile(const QString &fileName, Node *node, VtFileVersion *handler)
    : m_node(node), m_fileName(fileName)
{
    VtXml::SetVtFileVersion(handler);
    if (handler == nullptr)
        return;
    VtXml::SetVersion(handler->GetVersion());
    handler->SetFileName(fileName);
}

void VtFile::Read()
{
    if (m_fileName.isEmpty())
        return;
    BLOCK_TRACE(QStringLiteral("VtFile::Read() FileName: ") + m_fileName);
    QFile file(existingName(m_fileName));
    if (!file.open(QIODevice::ReadOnly))
        failReading(file.errorString(), file.fileName());
    if (file.size() > kLargestFile)
        failReading(QStringLiteral("The file is larger than 512 MiB"), file.fileName());
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        failReading(file.errorString(), file.fileName());
    file.close();
    VtXml::FromXml(m_node, decode(bytes, file.fileName()));
}

void VtFile::Write()
{
    if (m_fileName.isEmpty())
        return;
    BLOCK_TRACE(QStringLiteral("VtFile::Write() FileName: ") + m_fileName);
    const QByteArray bytes = VtXml::ToXml(m_node).toUtf8();
    QSaveFile file(m_fileName);
    if (!file.open(QIODevice::WriteOnly))
        fail("Can not open File for writing - see Details", "Write", file.errorString(),
             m_fileName);
    const bool written = file.write(bytes) == bytes.size() && file.flush();
    const bool synced = written && ::fsync(file.handle()) == 0;
    const QString error =
        written && !synced ? QString::fromLocal8Bit(std::strerror(errno)) : file.errorString();
    if (!synced)
        file.cancelWriting();
    if (!file.commit())
        fail("Can not write File - see Details", "Write", error, m_fileName);
    if (!syncFolderOf(m_fileName))
        fail("Can not write File - see Details", "Write",
             QStringLiteral("The folder can't be written to the disk"), m_fileName);
}

void VtFile::SetVersion(const QString &version) { VtXml::SetVersion(version); }

} // namespace values
