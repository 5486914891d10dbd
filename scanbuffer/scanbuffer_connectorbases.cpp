#include "scanbuffer/scanbuffer_connectorbases.h"

namespace sbs {

ScanBufferAdapterBase_Waterfall::~ScanBufferAdapterBase_Waterfall() = default;
ScanBufferAdapterBase_YRange::~ScanBufferAdapterBase_YRange() = default;
ScanBufferAdapterBase_Statistics::~ScanBufferAdapterBase_Statistics() = default;

} // namespace sbs
