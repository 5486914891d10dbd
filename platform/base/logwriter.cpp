#include "platform/base/logwriter.h"

#include <QDebug>
#include <QMessageLogger>

#include <algorithm>
#include <utility>

namespace {

struct Service {
    Kelm::Mutex mutex;
    std::shared_ptr<ILogSink> sink SPECTREE_GUARDED_BY(mutex);
};

Service &service()
{
    // Never destroyed: a thread that still runs at exit may come here.
    static auto *const instance = new Service;
    return *instance;
}

bool breaksLine(QChar c)
{
    return (c < u' ' && c != u'\t') || (c >= u'\x7f' && c <= u'\x9f') || c == u'\x2028' ||
           c == u'\x2029';
}

QString asOneLine(const QString &text)
{
    if (std::none_of(text.begin(), text.end(), breaksLine))
        return text;
    QString line;
    line.reserve(text.size() + 16);
    for (const QChar c : text) {
        if (!breaksLine(c))
            line += c;
        else if (c == u'\n' || c == u'\r')
            line += QLatin1String(c == u'\n' ? "\\n" : "\\r");
        else
            line += QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'));
    }
    return line;
}

} // namespace

const QLoggingCategory &spectreeValueLog()
{
    static const auto *const category = new QLoggingCategory("spectree.log", QtInfoMsg);
    return *category;
}

void CLogWriter::SetModuleName(const QString &name)
{
    const Kelm::MutexLocker lock(m_mutex);
    m_moduleName = name;
}

QString CLogWriter::GetModuleName() const
{
    const Kelm::MutexLocker lock(m_mutex);
    return m_moduleName;
}

void CLogWriter::Send(const QString &line)
{
    const QString module = asOneLine(GetModuleName()), text = asOneLine(line);
    std::shared_ptr<ILogSink> sink;
    {
        const Kelm::MutexLocker lock(service().mutex);
        sink = service().sink;
    }
    if (sink != nullptr && sink->Write(module, text))
        return;
    const auto &category = spectreeValueLog();
    if (category.isInfoEnabled())
        QMessageLogger(nullptr, 0, nullptr, category.categoryName()).info().noquote()
            << module + QLatin1String(": ") + text;
}

std::shared_ptr<ILogSink> CLogWriter::InstallSink(std::shared_ptr<ILogSink> sink)
{
    const Kelm::MutexLocker lock(service().mutex);
    return std::exchange(service().sink, std::move(sink));
}
