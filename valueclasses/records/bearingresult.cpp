#include "valueclasses/records/bearingresult.h"

#include "valueclasses/records/recordforms_p.h"
#include "valueclasses/value_impl.h"

SPECTREE_DEFINE_RECORD(values::BearingResult, values::FormatBearingResult, .name = "BearingResult",
                       .closed = true, .doubleForm = 'g')

namespace values {

template class CommandSetValue<BearingResult>;
template class Value<BearingResult>;

} // namespace values
