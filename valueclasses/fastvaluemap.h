#pragma once

#include "platform/startup/terminationtarget.h"
#include "valueclasses/mapping/realtimebuffer.h"
#include "valueclasses/valuemapping.h"

#include <exception>

namespace values {

/// Channel values came before the grid.
class SPECTREE_EXPORT ChannelNotSetExc : public std::exception {
public:
    const char *what() const noexcept override;
};

/// The value map of a scanning receiver: it takes samples by channel id, at a high rate.
///
/// With a scan buffer (CreateRealTimeBuffer) the samples go straight into it, and displays read
/// there; without one, or when both shall coexist, they go the way of a ValueMap, range by range,
/// each channel at its frequency.
///
/// Threads: the thread that owns the value. With recording off, a scan into the buffer allocates
///          nothing and takes one lock each for its time stamp, its samples and its end.
/// Errors:  a negative or unknown channel throws before anything is written or recorded.
template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
class SPECTREE_EXPORT FastValueMap : public ValueMap<Y, YHandler>,
                                     public IAbstractTerminationTarget {
public:
    using Buffer = IRealTimeBuffer<Y, YHandler>;

    FastValueMap() = default;
    explicit FastValueMap(QString name, TValueState state = VS_NORMAL);
    ~FastValueMap() override;
    /// A scan buffer is served under one name and stops once, so that no two maps can have it; a
    /// second map takes over what it can with Assign.
    FastValueMap(const FastValueMap &) = delete;
    FastValueMap &operator=(const FastValueMap &) = delete;

    ValueType GetType() const override;
    QString GetTypeName() const override;
    /// What a ValueMap takes over, and the grid of another fast value map of this type.
    void Assign(const ValueBase &other) override;

    /// Sets the grid; an empty one is ignored. Clears the data, follows the grid with the
    /// interpolation width, is recorded in both lists and notifies CC_LIMITS. \throws KRException
    /// for frequencies that are not finite, and, with a buffer, for a line that is too long.
    void SetChannelRangeDefinition(const ChannelRangeDefinition &definition,
                                   std::uint64_t size) override;
    const ChannelRangeDefinition &GetChannelRangeDefinition() const override
    {
        return m_definition;
    }
    /// Samples for \a count channels by rising id; they may run over neighbouring ranges.
    /// \throws KRException "StartChannel invalid", ChannelNotSetExc, InvalidChannelIdException
    void SetChannelValues(Kelm::Long firstChannel, unsigned int count, const Y *values);
    /// Clears channels; -1 and -1 is ClearData. A negative first channel stands for the smallest
    /// id, a negative count for all channels from there on. Does nothing without a grid.
    /// \throws InvalidChannelIdException
    void ClearChannelRange(Kelm::Long firstChannel, unsigned int count);
    void EndOfScan() override;
    void EndOfScan(const KRTimeStamp &time) override;
    void SetTimeStamp(const KRTimeStamp &time) override;
    /// With a scan buffer a recorded change of the data notifies CC_FAST_MAP, and CC_MAPPING only
    /// when both coexist.
    void HasChanged(TChangeCode code, IObserver *source) override;
    void Update(Observable *subject, TChangeCode code) override;
    using ValueMap<Y, YHandler>::GetWidth4Interpolation;
    /// The step of the grid at \a x; the stored width for -1 or outside the grid.
    double GetWidth4Interpolation(double x) const override;
    void SetChannelMapping(IChannelMapping *mapping) override;

    /// Makes the scan buffer and its data source, unless they are there, and notifies CC_VALUE.
    /// Null when the configuration key "UseScanBufferServer" (default false) is off, or when the
    /// sample type has no data source.
    std::shared_ptr<sbs::ScanBuffer<Y, YHandler>> CreateRealTimeBuffer();
    /// Ignored when the key "UseScanBufferServerGUISide" (default true) is off.
    void SetRealTimeBufferName(std::string name) override;
    /// Samples go on into the mappings although there is a scan buffer. Default false.
    void SetFastValueMapAndScanBufferCoexist(bool coexist) { m_coexist = coexist; }

    // Flags of the scan buffer; without one they do nothing.
    void setAvoidSettingMaxValueDuringScan(bool avoid)
    {
        setFlag(&Buffer::setAvoidSettingMaxValueDuringScan, avoid);
    }
    void setClearScanData(bool clearData) { setFlag(&Buffer::setClearScanData, clearData); }
    void setKeepNoOverwriteWFLines(bool keep) { setFlag(&Buffer::setKeepNoOverwriteWFLines, keep); }
    void setKeepScanDataAfterEndOfScan(bool keep)
    {
        setFlag(&Buffer::setKeepScanDataAfterEndOfScan, keep);
    }

    /// Ends the data source; the scan buffer stays.
    void aboutToTerminate() override;

protected:
    // Channel operations replace these for outside callers.
    using ValueMap<Y, YHandler>::SetXYValue;
    using ValueMap<Y, YHandler>::SetXYValues;
    using ValueMap<Y, YHandler>::ClearXValue;
    using ValueMap<Y, YHandler>::ClearRange;
    using ValueMap<Y, YHandler>::InvalidateRange;
    using ValueMap<Y, YHandler>::ClearData;

    void AddObjectStateStringForTransmission(std::string &out, unsigned int mode) override;
    void AddObjectStateStringForRecording(std::string &out) override;
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;

private:
    using Piece = SpectralDataPiece<Y>;

    std::span<const Piece> split(unsigned int firstChannel, unsigned int count, const Y *values);
    std::span<const Piece> splitFrom(unsigned int firstChannel);
    void store(std::span<const Piece> pieces);
    void passOn(std::span<const Piece> pieces);
    double frequencyOf(std::uint32_t index) const;
    void endScan(KRTimeStamp time);
    void noteRecordedChange(IObserver *source);
    bool storesInBufferOnly() const { return m_buffer != nullptr && !m_coexist; }
    void addGridString(std::string &out, unsigned int mode);
    void setFlag(void (Buffer::*set)(bool), bool on)
    {
        if (m_buffer != nullptr)
            (m_buffer.get()->*set)(on);
    }

    ChannelRangeDefinition m_definition;
    std::shared_ptr<Buffer> m_buffer; // this map's alone
    std::vector<Piece> m_pieces;      // reused
    bool m_coexist = false;
};

#define SPECTREE_DECLARE(Y, Handler) extern template class SPECTREE_EXPORT FastValueMap<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace values
