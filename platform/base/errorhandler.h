#pragma once

#include "platform/base/export.h"

#include <QLoggingCategory>
#include <QString>

#include <atomic>

/// The trace output, a Qt logging category: filter with QT_LOGGING_RULES="spectree.*=true".
SPECTREE_EXPORT const QLoggingCategory &spectreeLog();

/// The bits of the trace mask, as far as this library reads them.
enum TraceBits : unsigned {
    TraceAssertions = 0x02, ///< checks of _Q_assert
    TraceWarnings = 0x20,   ///< warnings of the scan buffer service, thread faults of values
    TraceLifecycle = 0x40,  ///< births, deaths and other diagnostic notes
};

/// Holds the process-wide trace mask: which notes are written. Any thread, at any time.
class SPECTREE_EXPORT ErrorHandler {
public:
    static ErrorHandler &Instance();

    unsigned GetTraceMask() const { return m_mask.load(std::memory_order_relaxed); }
    void SetTraceMask(unsigned mask) { m_mask.store(mask, std::memory_order_relaxed); }
    /// True when any of \a bits is set.
    bool IsTraced(unsigned bits) const { return (GetTraceMask() & bits) != 0; }

private:
    std::atomic<unsigned> m_mask{TraceWarnings};
};

/// Writes one line to the trace, whatever the mask says.
SPECTREE_EXPORT void _Q_Trace(const QString &message, const char *file, int line);
/// Traces \a text when \a condition is false and the mask has TraceAssertions. Never ends the
/// process.
SPECTREE_EXPORT void _Q_assert(bool condition, const char *text, const char *file, int line);

/// Traces when one of \a bits is in the mask; the message is built only then.
#define SPECTREE_TRACE(bits, message)                                                              \
    do {                                                                                           \
        if (ErrorHandler::Instance().IsTraced(bits))                                               \
            _Q_Trace((message), __FILE__, __LINE__);                                               \
    } while (false)

/// Traces entry and end of the enclosing block when the mask has TraceLifecycle.
class SPECTREE_EXPORT BlockTrace {
public:
    BlockTrace(const QString &text, const char *file, int line);
    ~BlockTrace();
    BlockTrace(const BlockTrace &) = delete;
    BlockTrace &operator=(const BlockTrace &) = delete;

private:
    QString m_text;
    const char *m_file;
    int m_line;
};
#define BLOCK_TRACE(text) const BlockTrace spectreeBlockTrace((text), __FILE__, __LINE__)
