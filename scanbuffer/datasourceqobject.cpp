#include "scanbuffer/datasourceqobject.h"

namespace sbs {

DataSourceQObject::DataSourceQObject() = default;
DataSourceQObject::~DataSourceQObject() = default;

} // namespace sbs
