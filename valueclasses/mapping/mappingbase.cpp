#include "valueclasses/mapping/mappingbase.h"

namespace values {

void MappingBase::EndOfScan(const KRTimeStamp & /*time*/) {}
void MappingBase::EndOfScan() {}
void MappingBase::ResetGrowOnly() {}
void MappingBase::EndOfHistory() {}
void MappingBase::ClearData() {}
void MappingBase::EndOfRange() {}
void MappingBase::ClearRange(double /*from*/, double /*to*/) {}
void MappingBase::InvalidateRange(double /*from*/, double /*to*/) {}
void MappingBase::ClearXValue(double /*x*/) {}
void MappingBase::SetXCycleScaleSize(double /*size*/) {}
void MappingBase::SetWidth4Interpolation(double /*width*/) {}
double MappingBase::GetWidth4Interpolation(double /*x*/) const { return m_width4Interpolation; }
IVMapping *MappingBase::CreatePrimaryVMapping() { return nullptr; }
void MappingBase::DeletePrimaryVMapping(IVMapping * /*mapping*/) {}

MappingBase *MappingBase::GetHistoryMapping(KRTimeStamp & /*from*/, KRTimeStamp & /*to*/,
                                            double /*xFrom*/, double /*xTo*/,
                                            MappingBase * /*target*/)
{
    return nullptr;
}

MappingBase *MappingBase::GetReplayHistoryMapping() { return nullptr; }
bool MappingBase::CopyData4Replay() { return false; }
void MappingBase::CreateTimeStampOnHasChanged(bool /*create*/) {}
void MappingBase::SetTimeStamp(const KRTimeStamp & /*time*/) {}
void MappingBase::SetScanPerSecond(const double & /*rate*/) {}
CollectMapping *MappingBase::CreateCollectMapping() { return nullptr; }
void MappingBase::DeleteCollectMapping(CollectMapping * /*mapping*/) {}

TransformMapping *MappingBase::CreateTransformMapping(double /*from*/, double /*to*/,
                                                      char /*sourceUnit*/, char /*targetUnit*/,
                                                      MappingBase * /*target*/)
{
    return nullptr;
}

void MappingBase::DeleteTransformMapping(TransformMapping * /*mapping*/) {}
QString MappingBase::Binary2FormattedString(int /*dimension*/, const char * /*bytes*/)
{
    return {};
}
bool MappingBase::MoveHistoryMapping2NewParent4Replay(MappingBase * /*parent*/) { return false; }

const ChannelRangeDefinition &MappingBase::GetChannelRangeDefinition() const
{
    static const ChannelRangeDefinition empty;
    return empty;
}

void MappingBase::SetChannelRangeDefinition(const ChannelRangeDefinition & /*definition*/,
                                            std::uint64_t /*size*/)
{
}

void MappingBase::SetRealTimeBufferName(std::string /*name*/) {}

} // namespace values
