#include "scanbuffer/window/windowcursors_impl.h"
#include "scanbuffer/window/windowpass_impl.h"
#include "scanbuffer/window/windowreload_impl.h"
#include "scanbuffer/window/windowvisit_impl.h"

namespace sbs {

template class WindowRelated<values::MinMax, values::MinMaxHandler>;
template class WindowRelated<values::MinMax, values::ElevOverAziMinMaxHandler>;
template class WindowRelated<values::Pulse, values::PulseHandler>;
template class WindowRelated<values::DFSpectrumSample, values::DFSpectrumSampleHandler>;

} // namespace sbs
