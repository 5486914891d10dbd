#pragma once

#include "platform/base/export.h"
#include "platform/base/types.h"

namespace values {

class ChannelRangeDefinition;

/// Follows the grid and the scans of a map, for whoever maps channels elsewhere.
class SPECTREE_EXPORT IChannelMapping {
public:
    virtual ~IChannelMapping() = default;
    virtual void SetChannelRangeDefinition(const ChannelRangeDefinition &definition) = 0;
    virtual void SetTimeStamp(KRTimeStamp time) = 0;
    virtual void EndOfScan(KRTimeStamp time) = 0; ///< 0: no time given
};

} // namespace values
