#include "scanbuffer/window/windowcursors_impl.h"
#include "scanbuffer/window/windowpass_impl.h"
#include "scanbuffer/window/windowreload_impl.h"
#include "scanbuffer/window/windowvisit_impl.h"

namespace sbs {

template class WindowRelated<char, values::charHandler>;
template class WindowRelated<short, values::levelHandler>;
template class WindowRelated<short, values::shortHandler>;
template class WindowRelated<Kelm::Long, values::longHandler>;

} // namespace sbs
