#pragma once

#include "valueclasses/channels/channelrangedefinition.h"
#include "valueclasses/valuebase.h"

namespace values {

class CollectMapping;
class IChannelMapping;
class IVMapping;
class TransformMapping;

/// The base of all spectral values. The operations do nothing here, or return null, false or the
/// stored field; each class overrides what it has. Times are microseconds since 1970 UTC.
class SPECTREE_EXPORT MappingBase : public ValueBase {
public:
    using ValueBase::ValueBase;

    virtual void EndOfScan(const KRTimeStamp &time);
    virtual void EndOfScan();
    virtual void ResetGrowOnly();
    virtual void EndOfHistory();
    virtual void ClearData();
    virtual void EndOfRange();
    virtual void ClearRange(double from, double to);
    virtual void InvalidateRange(double from, double to);
    virtual void ClearXValue(double x);
    virtual void SetXCycleScaleSize(double size);
    virtual void SetWidth4Interpolation(double width);
    virtual double GetWidth4Interpolation(double x) const;
    virtual IVMapping *CreatePrimaryVMapping();
    virtual void DeletePrimaryVMapping(IVMapping *mapping);
    virtual MappingBase *GetHistoryMapping(KRTimeStamp &from, KRTimeStamp &to, double xFrom,
                                           double xTo, MappingBase *target);
    virtual MappingBase *GetReplayHistoryMapping();
    virtual bool CopyData4Replay();
    virtual void CreateTimeStampOnHasChanged(bool create);
    virtual void SetTimeStamp(const KRTimeStamp &time);
    virtual const KRTimeStamp &GetTimeStamp() const { return m_timeStamp; }
    virtual void SetScanPerSecond(const double &rate);
    virtual double GetScanPerSecond() const { return m_scanPerSecond; }
    virtual CollectMapping *CreateCollectMapping();
    virtual void DeleteCollectMapping(CollectMapping *mapping);
    virtual TransformMapping *CreateTransformMapping(double from, double to, char sourceUnit,
                                                     char targetUnit, MappingBase *target);
    virtual void DeleteTransformMapping(TransformMapping *mapping);
    /// The tooltip text of a serialised sample.
    virtual QString Binary2FormattedString(int dimension, const char *bytes);
    virtual bool MoveHistoryMapping2NewParent4Replay(MappingBase *parent);
    virtual void SetChannelMapping(IChannelMapping *mapping) { m_channelMapping = mapping; }
    IChannelMapping *GetChannelMapping() const { return m_channelMapping; }
    virtual const ChannelRangeDefinition &GetChannelRangeDefinition() const;
    /// \a size bounds the memory of a scan buffer in bytes; 0 leaves the bound as it is.
    virtual void SetChannelRangeDefinition(const ChannelRangeDefinition &definition,
                                           std::uint64_t size);
    virtual const std::string &GetRealTimeBufferName() const { return m_realTimeBufferName; }
    virtual void SetRealTimeBufferName(std::string name);
    /// The number of the sample handler, 0 without one.
    virtual int GetYHandlerId() const { return 0; }

protected:
    IChannelMapping *m_channelMapping = nullptr; // not owned
    double m_xCycleScaleSize = -1.0;             // the period of a repeating axis
    double m_width4Interpolation = -1.0;         // x width of one sample
    KRTimeStamp m_timeStamp = 0;
    double m_scanPerSecond = -1.0;
    std::string m_realTimeBufferName;
};

/// The operations that are typed by the sample.
template <typename Y, typename YHandler>
class MappingBaseMultiDimension : public MappingBase {
public:
    using MappingBase::GetWidth4Interpolation;
    using MappingBase::MappingBase;

    virtual void SetXYValue(double x, const Y &y) = 0;
    /// Sparse: sample i lies at x + index[i] * step.
    virtual void SetXYValues(double x, double step, unsigned int count, const Y *y,
                             const unsigned short *index) = 0;
    /// Dense: \a count samples evenly spaced from \a x1 to \a x2 inclusive.
    virtual void SetXYValues(double x1, double x2, unsigned int count, const Y *y) = 0;
    virtual void SetDataCompressMode(char mode) = 0;
    virtual double GetWidth4Interpolation() const { return m_width4Interpolation; }
    int GetYHandlerId() const override { return YHandler::GetId(); }
};

} // namespace values
