#pragma once

#include <QString>
#include <QTextStream>

#include <optional>

namespace values {

/// Walks through the lines of a log's configuration. What it misses it traces.
class LogConfigLines {
public:
    explicit LogConfigLines(const QByteArray &content) : m_stream(content)
    {
        m_stream.setCodec("UTF-8");
    }

    /// False behind the last line.
    bool Next() { return m_stream.readLineInto(&m_line); }
    const QString &Line() const { return m_line; }
    /// Whether the line begins with "@" and \a directive.
    bool Is(const char *directive) const;
    /// Goes to the line of a directive, past all others.
    bool Skip(const char *directive);
    /// The same, traced when there is none.
    bool Find(const char *directive);
    /// The second word of a directive, which has to have two.
    std::optional<QString> FindWord(const char *directive);
    /// All that stands behind the comma of a directive.
    std::optional<QString> FindRest(const char *directive);

    static void TraceEnd(const char *directive);

private:
    static std::optional<QString> failSyntax(const char *directive);

    QTextStream m_stream;
    QString m_line;
};

} // namespace values
