#include "valueclasses/records/specialinterest.h"

#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD(values::SpecialInterest, values::FormatSpecialInterest,
                       .name = "SpecialInterest", .closed = true, .textField = 2)
