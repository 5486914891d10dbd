#include "valueclasses/records/ddcfrequency.h"

#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD(values::DdcFrequency, values::FormatDdcFrequency, .name = "DdcFrequency",
                       .closed = true)
