#include "valueclasses/records/alarmresult.h"

#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD(values::AlarmResult, values::FormatAlarmResult, .name = "AlarmResult",
                       .closed = true)
