#pragma once

#include "platform/base/export.h"

#include <QString>

#include <exception>
#include <string>

/// The error that every failing operation throws. The reason is an English sentence.
class SPECTREE_EXPORT KRException : public std::exception {
public:
    KRException(const QString &reason, const char *file, const char *className,
                const char *functionName, int line, int code = -1);

    const QString &GetReason() const { return m_reason; }
    const std::string &GetFile() const { return m_file; }
    const std::string &GetClassName() const { return m_className; }
    const std::string &GetFunctionName() const { return m_functionName; }
    int GetLine() const { return m_line; }
    int GetCode() const { return m_code; }

    /// The reason as UTF-8.
    const char *what() const noexcept override { return m_what.c_str(); }

private:
    QString m_reason;
    std::string m_file, m_className, m_functionName, m_what;
    int m_line, m_code;
};
