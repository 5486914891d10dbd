#include "memmap/logfadobl.h"

#include "memmap/valueptr.h"

namespace values {

LogFADOBL::LogFADOBL() { SetLogger(QStringLiteral("FADOBL"), QStringLiteral("#0@#1@#2@#3@#4@#5")); }

#define SPECTREE_SETTER(Name, Index, Object)                                                       \
    bool LogFADOBL::Set##Name##_ValuePath(const QString &path)                                     \
    {                                                                                              \
        return SetObject(std::make_unique<Object>(*this, path, QStringLiteral("#" #Index)));       \
    }
SPECTREE_SETTER(Frequency, 0, ValuePtr_ValueNumericFloat)
SPECTREE_SETTER(Level, 1, ValuePtr_ValueNumericFloat)
SPECTREE_SETTER(Bandwidth, 2, ValuePtr_ValueNumericFloat)
SPECTREE_SETTER(Offset, 3, ValuePtr_ValueNumericFloat)
SPECTREE_SETTER(Demodulation, 4, ValuePtr_ValueSelection)
SPECTREE_SETTER(Antenna, 5, ValuePtr_ValueSelection)
#undef SPECTREE_SETTER

} // namespace values
