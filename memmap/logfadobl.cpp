#include "memmap/logfadobl.h"

#include "memmap/valueptr.h"

namespace values {

LogFADOBL::LogFADOBL() { SetLogger(QStringLiteral("FADOBL"), QStringLiteral("#0@#1@#2@#3@#4@#5")); }

bool LogFADOBL::SetFrequency_ValuePath(const QString &path)
{
    return SetArgument<ValuePtr_ValueNumericFloat>(0, path);
}

bool LogFADOBL::SetLevel_ValuePath(const QString &path)
{
    return SetArgument<ValuePtr_ValueNumericFloat>(1, path);
}

bool LogFADOBL::SetBandwidth_ValuePath(const QString &path)
{
    return SetArgument<ValuePtr_ValueNumericFloat>(2, path);
}

bool LogFADOBL::SetOffset_ValuePath(const QString &path)
{
    return SetArgument<ValuePtr_ValueNumericFloat>(3, path);
}

bool LogFADOBL::SetDemodulation_ValuePath(const QString &path)
{
    return SetArgument<ValuePtr_ValueSelection>(4, path);
}

bool LogFADOBL::SetAntenna_ValuePath(const QString &path)
{
    return SetArgument<ValuePtr_ValueSelection>(5, path);
}

} // namespace values
