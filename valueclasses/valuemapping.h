#pragma once

#include "valueclasses/mapping/mappingbase.h"
#include "valueclasses/mapping/scanpersecond.h"
#include "valueclasses/samples/samplepairs.h"

#include <optional>

namespace values {

/// The value that carries a spectrum: a fan-out that stores no samples. A producer calls the data
/// operations; each is recorded for the two command lists, where they are on. x is a double on the
/// spectrum's axis, as a rule a frequency in Hz.
///
/// Threads: the thread that owns the tree; a recorded change on another thread is posted there.
/// With both recordings off an operation allocates nothing.
template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
class SPECTREE_EXPORT ValueMap : public MappingBaseMultiDimension<Y, YHandler>, public IObserver {
public:
    using MappingBase::EndOfScan;
    using MappingBase::SetCommandString;
    using MappingBaseMultiDimension<Y, YHandler>::GetWidth4Interpolation;

    ValueMap() = default;
    explicit ValueMap(QString name, TValueState state = VS_NORMAL);

    ValueType GetType() const override;
    QString GetTypeName() const override;
    /// What the base copies, and the interpolation width. Where a change of this thread would be
    /// posted, \a other must live until the event loop has run.
    void Assign(const ValueBase &other) override;

    void SetXYValue(double x, const Y &y) override;
    /// A count of 0 does nothing, a count of 1 is SetXYValue.
    void SetXYValues(double x1, double x2, unsigned int count, const Y *y) override;
    void SetXYValues(double x, double step, unsigned int count, const Y *y,
                     const unsigned short *index) override;
    void ClearXValue(double x) override;
    void ClearRange(double from, double to) override;
    void InvalidateRange(double from, double to) override;
    void ClearData() override;
    /// Notifies CC_END_OF_SCAN, after the scan rate.
    void EndOfScan() override;
    void EndOfScan(const KRTimeStamp &time) override; ///< the time has no effect here
    void EndOfHistory() override;
    void ResetGrowOnly() override;
    void SetTimeStamp(const KRTimeStamp &time) override;
    void SetScanPerSecond(const double &rate) override;
    void SetWidth4Interpolation(double width) override;
    void SetXCycleScaleSize(double size) override { this->m_xCycleScaleSize = size; }
    /// Process-wide; sent on, so that a receiving process switches along at this place.
    void SetDataCompressMode(char mode) override;
    void CreateTimeStampOnHasChanged(bool create) override { m_createTimeStamp = create; }
    /// From now on each end of scan with a time stamp computes the scan rate afresh.
    void CalcScanPerSecond(unsigned char argument);
    /// "---" for an invalid sample.
    QString Binary2FormattedString(int dimension, const char *bytes) override;
    /// With code CC_MAPPING a time stamp is made first, where that was asked for.
    void HasChanged(TChangeCode code, IObserver *source) override;
    /// Recordings are always uncompressed.
    std::string GetCommandStringForRecording(unsigned int mode) override;
    /// Samples in front of a change of the data compress mode are written in the mode before it.
    std::string GetCommandStringForTransmission(unsigned int mode) override;
    /// A data compress mode that the string sets holds for the samples behind it.
    void SetCommandString(const std::string &commands,
                          std::vector<std::unique_ptr<KELM::ICommand>> &out, IObserver *source,
                          int mode) override;
    void Update(Observable *subject, TChangeCode code) override;

protected:
    void AddObjectStateStringForTransmission(std::string &out, unsigned int mode) override;
    void AddObjectStateStringForRecording(std::string &out) override;
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;

    bool createsTimeStamp() const { return m_createTimeStamp; }
    /// Makes a time stamp for a change of the data, where that was asked for.
    void stampChange(TChangeCode code);
    /// Ends a scan; only this process' own recording tells the time.
    void finishScan(KRTimeStamp recordedTime);
    /// Gives one command of its own to each list that records.
    template <typename NewCommand, typename... Arguments>
    void recordForBoth(const Arguments &...arguments);

private:
    void recalcScanRate();
    void addStateString(std::string &out, unsigned int mode, char compressMode);

    bool m_createTimeStamp = false;
    std::optional<ScanPerSecond> m_scanRate;
};

#define SPECTREE_DECLARE(Y, Handler) extern template class SPECTREE_EXPORT ValueMap<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace values
