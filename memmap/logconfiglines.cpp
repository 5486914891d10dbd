#include "memmap/logconfiglines_p.h"
#include "platform/base/errorhandler.h"
#include "platform/base/tokenizer.h"

namespace values {

bool LogConfigLines::Is(const char *directive) const
{
    return m_line.startsWith(QLatin1Char('@') + QLatin1String(directive));
}

bool LogConfigLines::Skip(const char *directive)
{
    while (Next())
        if (Is(directive))
            return true;
    return false;
}

bool LogConfigLines::Find(const char *directive)
{
    const bool found = Skip(directive);
    if (!found)
        TraceEnd(directive);
    return found;
}

std::optional<QString> LogConfigLines::FindWord(const char *directive)
{
    if (!Find(directive))
        return {};
    QString name, word;
    if (Kelm::CTokenizer(m_line, QLatin1Char(',')).Split({&name, &word}) != 2 || word.isEmpty())
        return failSyntax(directive);
    return word;
}

std::optional<QString> LogConfigLines::FindRest(const char *directive)
{
    if (!Find(directive))
        return {};
    Kelm::Tokenizer words(m_line, QLatin1Char(','));
    words.Next();
    const QString rest = words.Rest();
    return rest.isEmpty() ? failSyntax(directive) : rest;
}

void LogConfigLines::TraceEnd(const char *directive)
{
    SPECTREE_TRACE(TraceWarnings, QStringLiteral("End of file found while looking for %1 directive")
                                      .arg(QLatin1String(directive)));
}

std::optional<QString> LogConfigLines::failSyntax(const char *directive)
{
    SPECTREE_TRACE(TraceWarnings,
                   QStringLiteral("Syntax error found while looking for %1 directive")
                       .arg(QLatin1String(directive)));
    return {};
}

} // namespace values
