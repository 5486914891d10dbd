#include "apps/common/keyfiles.h"

#include "platform/base/krexception.h"
#include "platform/transmission/curvekeys.h"

#include <QFile>

#include <algorithm>

namespace apps {
namespace {

constexpr qint64 kLargestKeyFile = 1 << 20;

/// A "#" inside a word is part of a key. No key begins with one: five characters of Z85 that do are
/// more than 32 bits.
QStringList wordsOf(const QString &line)
{
    QStringList words = line.simplified().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const auto comment = std::find_if(words.begin(), words.end(), [](const QString &word) {
        return word.startsWith(QLatin1Char('#'));
    });
    words.erase(comment, words.end());
    return words;
}

/// NewOnly is exclusive: between a look whether the file is there and the writing, a key could
/// come.
void writeNew(const QString &path, const QByteArray &text, QFile::Permissions permissions)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        throw Failure(Failure::Runtime,
                      QStringLiteral("The key file %1 can't be made: %2. Name a file that doesn't "
                                     "exist yet, in a folder that may be written to.")
                          .arg(path, file.errorString()));
    if (!file.setPermissions(permissions) || file.write(text) != text.size() || !file.flush()) {
        const QString reason = file.errorString();
        file.remove();
        throw Failure(Failure::Runtime,
                      QStringLiteral("The key file %1 can't be written: %2.").arg(path, reason));
    }
}

} // namespace

QStringList readKeys(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(
            Failure::Runtime,
            QStringLiteral("The key file %1 can't be read: %2. --make-key makes key files.")
                .arg(path, file.errorString()));
    QStringList keys;
    for (const QString &line :
         QString::fromUtf8(file.read(kLargestKeyFile)).split(QLatin1Char('\n')))
        keys += wordsOf(line);
    if (keys.isEmpty())
        throw Failure(Failure::Runtime, QStringLiteral("The key file %1 holds no key.").arg(path));
    try {
        for (const QString &key : keys)
            sbs::CurveKeys::parse(key, path);
    } catch (const KRException &error) {
        throw Failure(Failure::Runtime, error.GetReason());
    }
    return keys;
}

QString readKey(const QString &path)
{
    const QStringList keys = readKeys(path);
    if (keys.size() != 1)
        throw Failure(Failure::Runtime,
                      QStringLiteral("The key file %1 holds %2 keys, where one is needed.")
                          .arg(path)
                          .arg(keys.size()));
    return keys.first();
}

void makeKeyFiles(const QString &path)
{
    const sbs::CurveKeys keys = sbs::CurveKeys::generate();
    const QFile::Permissions owner = QFile::ReadOwner | QFile::WriteOwner;
    writeNew(path, "# Secret CURVE key. Keep it to yourself.\n" + keys.secretKey + '\n', owner);
    try {
        writeNew(path + QStringLiteral(".pub"),
                 "# Public CURVE key, for the other side.\n" + keys.publicKey + '\n',
                 owner | QFile::ReadGroup | QFile::ReadOther);
    } catch (const Failure &) {
        QFile::remove(path);
        throw;
    }
}

} // namespace apps
