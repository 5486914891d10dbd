#include "valueclasses/records/quadfloat.h"

#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD(values::QuadFloat, values::QuadFloatFormat, .name = "QuadFloat",
                       .separator = ';')
