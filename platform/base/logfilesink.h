#pragma once

#include "platform/base/logwriter.h"
#include "platform/base/tracelimit.h"

#include <QFile>

#include <cstdint>

/// Appends log lines to a file: UTC time with milliseconds, tab, module, tab, line, line feed, in
/// UTF-8.
///
/// Each line is handed to the system whole before Write returns, so that a crash of the process
/// loses none. Several sinks, also of several processes, may share a file; a file that is cut by
/// others (logrotate's copytruncate) is written on from its start.
/// Errors: a line that the disk doesn't take is refused, counted, and traced once a second with the
///         reason. What got there of it is ended by a line feed before the next line.
/// Threads: any.
class SPECTREE_EXPORT LogFileSink : public ILogSink {
public:
    /// \throws KRException with the reason when the file can't be opened for appending.
    explicit LogFileSink(const QString &path);

    bool Write(const QString &module, const QString &line) override;
    /// The lines that were refused.
    std::uint64_t GetLostCount() const;
    /// The reason of the last refusal.
    QString GetLastError() const;

private:
    /// Empty, or why the line was refused.
    QString append(const QString &module, const QString &line);

    const QString m_path;
    mutable Kelm::Mutex m_mutex;
    QFile m_file SPECTREE_GUARDED_BY(m_mutex);
    QString m_lastError SPECTREE_GUARDED_BY(m_mutex);
    std::uint64_t m_lost SPECTREE_GUARDED_BY(m_mutex) = 0;
    bool m_torn SPECTREE_GUARDED_BY(m_mutex) = false; // the file ends within a line
    Kelm::TraceLimit m_limit;
};
