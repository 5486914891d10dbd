#include "valueclasses/records/checkedstring.h"

#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD(values::CheckedString, values::FormatCheckedString, .name = "CheckedString",
                       .separator = ',')
