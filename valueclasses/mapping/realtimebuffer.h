#pragma once

#include "platform/base/types.h"
#include "valueclasses/mapping/spectraldatapiece.h"
#include "valueclasses/samples/samplepairs.h"

#include <memory>
#include <span>

namespace sbs {
template <typename Y, typename YHandler>
class ScanBuffer;
}

namespace values {

class ChannelRangeDefinition;

/// The producer's side of a scan buffer and of the data source that serves it, as a fast value map
/// needs them. Destroying it ends the service; the buffer is shared.
/// Threads: one thread feeds.
template <typename Y, typename YHandler>
class IRealTimeBuffer {
public:
    virtual ~IRealTimeBuffer() = default;
    virtual std::shared_ptr<sbs::ScanBuffer<Y, YHandler>> GetScanBuffer() const = 0;
    /// Ends the data source; the buffer can still be fed and read.
    virtual void endService() = 0;
    /// With it a far client finds the data source; empty when the service has ended.
    virtual std::string GetName() const = 0;
    virtual void setChannelRangeDefinition(const ChannelRangeDefinition &definition) = 0;
    virtual void setMaximumSizeInBytes(std::uint64_t bytes) = 0;
    virtual void addTimeStamp(KRTimeStamp time) = 0;
    virtual void addSpectralData(std::span<const SpectralDataPiece<Y>> pieces) = 0;
    virtual void endOfScan() = 0;
    virtual void endOfScan(KRTimeStamp time) = 0;
    virtual void setKeepScanDataAfterEndOfScan(bool keep) = 0;
    virtual void setClearScanData(bool clearData) = 0;
    virtual void setKeepNoOverwriteWFLines(bool keep) = 0;
    virtual void setAvoidSettingMaxValueDuringScan(bool avoid) = 0;
};

/// Where fast value maps get their buffers from. The scan buffer service puts a creator here for
/// each pair that it serves, when the library is loaded; by the type itself, so that no buffer is
/// reached through a wrong one.
template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
class SPECTREE_EXPORT RealTimeBufferFactory {
public:
    using Creator = std::unique_ptr<IRealTimeBuffer<Y, YHandler>> (*)();

    /// Null when nobody serves this pair.
    static std::unique_ptr<IRealTimeBuffer<Y, YHandler>> Create();
    /// Returns the creator so far.
    static Creator SetCreator(Creator creator);
};

#define SPECTREE_DECLARE(Y, Handler)                                                               \
    extern template class SPECTREE_EXPORT RealTimeBufferFactory<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace values
