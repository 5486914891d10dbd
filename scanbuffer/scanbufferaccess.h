#pragma once

#include "scanbuffer/lines/channelline.h"
#include "valueclasses/channels/channelrangedefinition.h"

namespace sbs {

/// The view of a scan buffer that a visitor gets. It holds during the visit only: what a reader
/// wants to keep it copies.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT ScanBufferAccess {
public:
    virtual ~ScanBufferAccess() = default;

    /// The definition of the current line.
    virtual const values::ChannelRangeDefinition &getChannelRangeDefinition() const = 0;
    /// The definition that holds for line \a id; \a first and \a last become the lowest and the
    /// highest readable id for which it holds, both inclusive. For an id that can't be read: the
    /// current definition, and both stay as they are.
    virtual const values::ChannelRangeDefinition &
    getChannelRangeDefinition(std::uint64_t id, std::uint64_t &first,
                              std::uint64_t &last) const = 0;
    /// First readable id and one past the last; (0, 0) when there is none.
    virtual std::pair<std::uint64_t, std::uint64_t> getChannelLineIdRange() const = 0;
    /// Throws a KRException for an id outside getChannelLineIdRange().
    virtual const ChannelLine<Y, YHandler> &getChannelLine(std::uint64_t id) const = 0;
    /// 0 when there is none.
    virtual std::uint64_t getLastFinishedChannelLineId() const = 0;
    /// The newest readable line that began at or before \a time; 0 when there is none.
    virtual std::uint64_t getIdForTimeStamp(KRTimeStamp time) const = 0;
    /// When line \a id began; 0 when it can't be read or has no time.
    virtual KRTimeStamp getTimeStampForId(std::uint64_t id) const = 0;

    virtual bool getKeepScanDataAfterEndOfScan() const = 0;
    virtual bool getClearScanData() const = 0;
    virtual bool getKeepNoOverwriteWFLines() const = 0;
    virtual bool getAvoidSettingMaxValueDuringScan() const = 0;
};

} // namespace sbs
