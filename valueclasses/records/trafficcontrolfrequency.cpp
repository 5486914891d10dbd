#include "valueclasses/records/trafficcontrolfrequency.h"

#include "valueclasses/records/recordforms_p.h"

SPECTREE_DEFINE_RECORD(values::TrafficControlFrequency, values::FormatTrafficControlFrequency,
                       .name = "TrafficControlFrequency", .closed = true)
