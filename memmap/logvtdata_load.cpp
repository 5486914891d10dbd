// Loading a log's configuration.
#include "memmap/logconfiglines_p.h"
#include "memmap/valueptr.h"
#include "platform/base/errorhandler.h"
#include "platform/base/regularfile.h"
#include "platform/base/tokenizer.h"
#include "platform/startup/dllinstance.h"

namespace values {

namespace {

using Made = std::unique_ptr<LogVTData::ValuePtr>;

template <typename Object>
Made makePlain(LogVTData &log, const QString &path, const QString &token, double /*factor*/)
{
    return std::make_unique<Object>(log, path, token);
}

template <typename Object>
Made makeWithFactor(LogVTData &log, const QString &path, const QString &token, double factor)
{
    return std::make_unique<Object>(log, path, token, factor);
}

constexpr struct {
    const char *type;
    Made (*make)(LogVTData &, const QString &, const QString &, double);
} kObjectTypes[] = {
    {"INTEGER", makeWithFactor<ValuePtr_ValueNumericInt>},
    {"FLOAT", makeWithFactor<ValuePtr_ValueNumericFloat>},
    {"SELECTION", makePlain<ValuePtr_ValueSelection>},
    {"NUMERICSELECTION", makeWithFactor<ValuePtr_ValueNumericSelection>},
    {"STRING", makePlain<ValuePtr_ValueString>},
};

bool fail(const QString &reason)
{
    SPECTREE_TRACE(TraceWarnings, reason);
    return false;
}

} // namespace

bool LogVTData::LoadFromFile(QString name)
{
    DeleteObservables();
    QFile file(name);
    QString error;
    if (!Kelm::openRegularFile(file, error))
        return fail(QStringLiteral("File open failed!"));
    return LoadFromText(file.read(kMaximumFileSize + 1));
}

bool LogVTData::LoadFromText(const QByteArray &content)
{
    DeleteObservables();
    if (content.size() > kMaximumFileSize)
        return fail(QStringLiteral("File is larger than %1 bytes!").arg(kMaximumFileSize));
    LogConfigLines lines(content);
    if (!lines.Next() || !lines.Line().startsWith(QLatin1String("LDF")))
        return fail(QStringLiteral("Wrong File Format!"));
    if (!readObjects(lines) || !readLogger(lines) || !readTriggers(lines))
        return false;
    connect();
    return true;
}

bool LogVTData::readObjects(LogConfigLines &lines)
{
    if (!lines.Find("VALUES"))
        return false;
    while (lines.Next()) {
        if (lines.Is("ENDVALUES"))
            return true;
        if (!lines.Line().trimmed().isEmpty())
            readObject(lines.Line());
    }
    LogConfigLines::TraceEnd("ENDVALUES");
    return false;
}

void LogVTData::readObject(const QString &line)
{
    QString type, path, token, factor;
    const Kelm::CTokenizer words(line, QLatin1Char(','));
    if (words.Split({&type, &path, &token, &factor}) > 4) {
        fail(
            QStringLiteral("Object line %1 has more than four words, no object created").arg(line));
        return;
    }
    for (const auto &known : kObjectTypes)
        if (type == QLatin1String(known.type)) {
            StoreObject(known.make(*this, path, token, factor.toDouble()));
            return;
        }
    fail(QStringLiteral("Object %1 is an unknown type, no object created").arg(type));
}

bool LogVTData::readLogger(LogConfigLines &lines)
{
    const auto module = lines.FindWord("MODULE");
    if (!module)
        return false;
    QString name = *module;
    if (name == QLatin1String("*"))
        name = IDllInstance::GetApplicationName();
    SetModuleName(name.isEmpty() ? QStringLiteral("unknown") : name);
    if (!lines.FindWord("STATION"))
        return false;
    const auto type = lines.FindWord("LOGGERTYPE");
    if (!type)
        return false;
    m_loggerType = *type;
    const auto messageTemplate = lines.FindRest("LOGGERSEND");
    if (!messageTemplate)
        return false;
    m_loggerSend = *messageTemplate;
    return true;
}

bool LogVTData::readTriggers(LogConfigLines &lines)
{
    if (!lines.Skip("VALUECHANGE"))
        return true;
    while (lines.Next()) {
        if (lines.Is("ENDVALUECHANGE"))
            return true;
        if (!lines.Line().trimmed().isEmpty() && !AddTrigger_ValuePath(lines.Line()))
            fail(QStringLiteral("Trigger %1 not found").arg(lines.Line()));
    }
    LogConfigLines::TraceEnd("ENDVALUECHANGE");
    return false;
}

} // namespace values
