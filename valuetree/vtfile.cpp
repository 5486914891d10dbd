#include "valuetree/vtfile.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "platform/base/regularfile.h"
#include "platform/startup/cfgcenter.h"
#include "valuetree/vtfileversion.h"
#include "valuetree/vtxml.h"
#include "valuetree/xmldocument_p.h"

#include <QFileInfo>
#include <QSaveFile>
#include <QTextCodec>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace values {

namespace {

constexpr qint64 kLargestFile = kLongestDocument; // bytes

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

/// The whole text. The bytes, which may be many, are gone when it is parsed.
QString readText(const QString &fileName)
{
    QFile file(fileName);
    QString error;
    if (!Kelm::openRegularFile(file, error))
        failReading(error, fileName);
    if (file.size() > kLargestFile)
        failReading(QStringLiteral("The file is larger than 512 MiB"), fileName);
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        failReading(file.errorString(), fileName);
    return decode(bytes, fileName);
}

[[noreturn]] void failWriting(const QString &error, const QString &fileName)
{
    fail("Can not write File - see Details", "Write", error, fileName);
}

bool syncToDisk(int handle)
{
    int result = ::fsync(handle);
    while (result != 0 && errno == EINTR)
        result = ::fsync(handle);
    return result == 0;
}

/// A rename is safe from a power cut only once its folder is on the disk, too. The folder is that
/// of the file itself, where \a fileName is a link to it.
bool syncFolderOf(const QString &fileName)
{
    const QString folder = QFileInfo(QFileInfo(fileName).canonicalFilePath()).absolutePath();
    const int handle =
        ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return false;
    const bool synced = syncToDisk(handle) || errno == EINVAL; // some file systems can't
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
    VtXml::FromXml(m_node, readText(existingName(m_fileName)));
}

void VtFile::Write()
{
    if (m_fileName.isEmpty())
        return;
    BLOCK_TRACE(QStringLiteral("VtFile::Write() FileName: ") + m_fileName);
    const QByteArray bytes = VtXml::ToXml(m_node).toUtf8();
    if (bytes.size() > kLargestFile)
        failWriting(QStringLiteral("The file would be larger than 512 MiB"), m_fileName);
    if (const QFileInfo there(m_fileName); there.exists() && !there.isFile())
        fail("Can not open File for writing - see Details", "Write",
             QStringLiteral("It is no regular file"), m_fileName);
    QSaveFile file(m_fileName); // unless it is committed, its end removes what it has written
    if (!file.open(QIODevice::WriteOnly))
        fail("Can not open File for writing - see Details", "Write", file.errorString(),
             m_fileName);
    if (file.write(bytes) != bytes.size() || !file.flush())
        failWriting(file.errorString(), m_fileName);
    if (!syncToDisk(file.handle()))
        failWriting(QString::fromLocal8Bit(std::strerror(errno)), m_fileName);
    if (!file.commit())
        failWriting(file.errorString(), m_fileName);
    // The new file is there, whole: no error takes that back.
    if (!syncFolderOf(m_fileName))
        SPECTREE_TRACE(
            TraceWarnings,
            QStringLiteral("A power cut may bring the old file back, its folder isn't synced: %1")
                .arg(m_fileName));
}

void VtFile::SetVersion(const QString &version) { VtXml::SetVersion(version); }

} // namespace values
