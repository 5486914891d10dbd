#pragma once

#include "valueclasses/valuetype.h"

namespace values {

/// Type numbers and names of the spectral values of one sample handler.
struct MappingNames {
    int handlerId;
    ValueType valueMap, fastValueMap;
    const char *valueMapName, *fastValueMapName;
};

/// \pre \a handlerId is that of one of the 13 pairs
const MappingNames &mappingNames(int handlerId);

} // namespace values
