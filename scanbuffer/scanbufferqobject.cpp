#include "scanbuffer/scanbufferqobject.h"

#include <QMetaType>

namespace sbs {

ScanBufferQObject::ScanBufferQObject() { qRegisterMetaType<KRTimeStamp>("KRTimeStamp"); }

ScanBufferQObject::~ScanBufferQObject() = default;

} // namespace sbs
