#include "platform/base/logfilesink.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"

#include <QDateTime>

LogFileSink::LogFileSink(const QString &path) : m_path(path), m_file(path)
{
    if (!m_file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
        throw KRException(QStringLiteral("The log file \"%1\" can't be opened: %2")
                              .arg(path, m_file.errorString()),
                          __FILE__, "LogFileSink", "LogFileSink", __LINE__);
}

bool LogFileSink::Write(const QString &module, const QString &line)
{
    const QString refusal = append(module, line);
    if (refusal.isEmpty())
        return true;
    // Not under the lock: who takes traces may write them here.
    if (const auto times = m_limit.due())
        SPECTREE_TRACE(TraceWarnings,
                       QStringLiteral("%1 lines did not go into the log file \"%2\": %3")
                           .arg(times)
                           .arg(m_path, refusal));
    return false;
}

QString LogFileSink::append(const QString &module, const QString &line)
{
    const Kelm::MutexLocker lock(m_mutex);
    const QString time = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
    QByteArray bytes = m_torn ? QByteArrayLiteral("\n") : QByteArray();
    bytes += QString(time + QLatin1Char('\t') + module + QLatin1Char('\t') + line).toUtf8() + '\n';
    const qint64 written = m_file.write(bytes);
    if (written == bytes.size()) {
        m_torn = false;
        return {};
    }
    m_torn = m_torn || written > 0;
    ++m_lost;
    m_lastError = written < 0 ? m_file.errorString() : QStringLiteral("The line was cut");
    return m_lastError;
}

std::uint64_t LogFileSink::GetLostCount() const
{
    const Kelm::MutexLocker lock(m_mutex);
    return m_lost;
}

QString LogFileSink::GetLastError() const
{
    const Kelm::MutexLocker lock(m_mutex);
    return m_lastError;
}
