#include "valueclasses/records/burst.h"

#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD(IPC::Burst, IPC::FormatBurst, .name = "Burst")
SPECTREE_DEFINE_RECORD(IPC::BurstHistResult, IPC::FormatBurstHistResult, .name = "BurstHistResult")
