#include "scanbuffer/window/windowcursors_impl.h"
#include "scanbuffer/window/windowpass_impl.h"
#include "scanbuffer/window/windowreload_impl.h"
#include "scanbuffer/window/windowvisit_impl.h"

namespace sbs {

template class WindowRelated<values::Bearing, values::BearingHandler>;
template class WindowRelated<values::BearingExtended, values::BearingExtendedHandler>;

} // namespace sbs
