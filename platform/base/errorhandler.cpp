#include "platform/base/errorhandler.h"

#include <QDebug>
#include <QMessageLogger>

const QLoggingCategory &spectreeLog()
{
    // Never destroyed: a thread that still runs at exit may come here.
    static const auto *const category = new QLoggingCategory("spectree.trace", QtInfoMsg);
    return *category;
}

ErrorHandler &ErrorHandler::Instance()
{
    static ErrorHandler instance;
    return instance;
}

void _Q_Trace(const QString &message, const char *file, int line)
{
    const auto &category = spectreeLog();
    if (category.isInfoEnabled())
        QMessageLogger(file, line, nullptr, category.categoryName()).info().noquote() << message;
}

void _Q_assert(bool condition, const char *text, const char *file, int line)
{
    if (!condition && ErrorHandler::Instance().IsTraced(TraceAssertions))
        _Q_Trace(QString::fromLatin1("assertion failed: %1").arg(QLatin1String(text)), file, line);
}

BlockTrace::BlockTrace(const QString &text, const char *file, int line)
    : m_text(text), m_file(file), m_line(line)
{
    SPECTREE_TRACE(TraceLifecycle, QLatin1String("begin ") + m_text);
}

BlockTrace::~BlockTrace()
{
    if (ErrorHandler::Instance().IsTraced(TraceLifecycle))
        _Q_Trace(QLatin1String("end ") + m_text, m_file, m_line);
}
