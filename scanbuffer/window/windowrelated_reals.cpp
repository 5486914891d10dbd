#include "scanbuffer/window/windowcursors_impl.h"
#include "scanbuffer/window/windowpass_impl.h"
#include "scanbuffer/window/windowreload_impl.h"
#include "scanbuffer/window/windowvisit_impl.h"

namespace sbs {

template class WindowRelated<float, values::floatHandler>;
template class WindowRelated<float, values::floatPercentHandler>;
template class WindowRelated<double, values::doubleHandler>;

} // namespace sbs
