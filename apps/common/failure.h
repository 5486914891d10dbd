#pragma once

#include <QString>

#include <exception>
#include <string>

namespace apps {

/// Ends a program with one sentence for its user: what happened, where, and what to do. Thrown by
/// whatever finds that the program can't go on; runProgram() prints it and gives the exit code.
class Failure : public std::exception {
public:
    enum ExitCode {
        Runtime = 1, ///< the world is not as needed: a missing file, no server, a busy port
        Usage = 2,   ///< the command line is wrong
    };

    Failure(ExitCode code, const QString &sentence)
        : m_code(code), m_sentence(sentence), m_what(sentence.toStdString())
    {
    }

    ExitCode code() const { return m_code; }
    const QString &sentence() const { return m_sentence; }
    const char *what() const noexcept override { return m_what.c_str(); }

private:
    ExitCode m_code;
    QString m_sentence;
    std::string m_what;
};

} // namespace apps
