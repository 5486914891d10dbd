#include "scanbuffer/windowcursors_impl.h"
#include "scanbuffer/windowpass_impl.h"
#include "scanbuffer/windowreload_impl.h"
#include "scanbuffer/windowvisit_impl.h"

namespace sbs {

template class WindowRelated<values::Bearing, values::BearingHandler>;
template class WindowRelated<values::BearingExtended, values::BearingExtendedHandler>;

} // namespace sbs
