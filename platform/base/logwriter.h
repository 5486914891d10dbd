#pragma once

#include "platform/base/export.h"
#include "platform/base/sync.h"

#include <QLoggingCategory>
#include <QString>

#include <memory>

/// Where log lines go without a sink: filter with QT_LOGGING_RULES="spectree.log=false".
SPECTREE_EXPORT const QLoggingCategory &spectreeValueLog();

/// Takes the lines of the log service. Called by any thread, several at a time.
class SPECTREE_EXPORT ILogSink {
public:
    virtual ~ILogSink() = default;
    /// \a line holds no line break. False when it could not be kept: the service then gives it to
    /// its logging category.
    virtual bool Write(const QString &module, const QString &line) = 0;
};

/// Somebody who writes to the log service, under a module name of his own.
///
/// A line goes to the sink that is installed; without one, or where the sink fails, to the logging
/// category, as "module: line". So a full disk loses no line as long as somebody reads the other.
/// Threads: any, at any time.
class SPECTREE_EXPORT CLogWriter {
public:
    CLogWriter() = default;
    CLogWriter(const CLogWriter &) = delete;
    CLogWriter &operator=(const CLogWriter &) = delete;
    virtual ~CLogWriter() = default;

    void SetModuleName(const QString &name);
    QString GetModuleName() const;
    /// Delivers one line. What would break it stands there as it is written in C: "\n", "\x1b".
    void Send(const QString &line);

    /// The sink of the process from now on; null for none. Returns the one before. A line that is
    /// on its way still reaches that one.
    static std::shared_ptr<ILogSink> InstallSink(std::shared_ptr<ILogSink> sink);

private:
    mutable Kelm::Mutex m_mutex;
    QString m_moduleName SPECTREE_GUARDED_BY(m_mutex);
};
