#include "valueclasses/records/wkf.h"

#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD(values::Wkf, values::FormatWkf, .name = "Wkf", .closed = true)
