#include "platform/base/krexception.h"

KRException::KRException(const QString &reason, const char *file, const char *className,
                         const char *functionName, int line, int code)
    : m_reason(reason), m_file(file), m_className(className), m_functionName(functionName),
      m_what(reason.toStdString()), m_line(line), m_code(code)
{
}
