#include "scanbuffer/windowcursors_impl.h"
#include "scanbuffer/windowpass_impl.h"
#include "scanbuffer/windowreload_impl.h"
#include "scanbuffer/windowvisit_impl.h"

namespace sbs {

template class WindowRelated<float, values::floatHandler>;
template class WindowRelated<float, values::floatPercentHandler>;
template class WindowRelated<double, values::doubleHandler>;

} // namespace sbs
