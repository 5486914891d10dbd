#include "scanbuffer/idatasourceadapter.h"

namespace sbs {

IDataSourceAdapter::~IDataSourceAdapter() = default;
void IDataSourceAdapter::SetParameter(const MData &) {}
void IDataSourceAdapter::process() {}

IScansPerSecondReceiver::~IScansPerSecondReceiver() = default;

} // namespace sbs
