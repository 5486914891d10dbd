#pragma once

#include "platform/base/kelmos.h"
#include "valueclasses/mapping/mappingnames_p.h"
#include "valueclasses/mapping/samplecommands.h"
#include "valueclasses/valuemapping.h"

#include <algorithm>

namespace values {

namespace Detail {

/// Puts the process-wide data compress mode back.
class CompressModeScope {
public:
    CompressModeScope() = default;
    ~CompressModeScope() { HandlerBase::SetDataCompressMode(m_former); }
    CompressModeScope(const CompressModeScope &) = delete;
    CompressModeScope &operator=(const CompressModeScope &) = delete;

private:
    const char m_former = HandlerBase::GetDataCompressMode();
};

} // namespace Detail

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> ValueMap<Y, YHandler>::ValueMap(QString name, TValueState state)
    : MappingBaseMultiDimension<Y, YHandler>(std::move(name), state)
{
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> ValueType ValueMap<Y, YHandler>::GetType()
const { return mappingNames(YHandler::GetId()).valueMap; }

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> QString ValueMap<Y, YHandler>::GetTypeName()
const { return QString::fromLatin1(mappingNames(YHandler::GetId()).valueMapName); }

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::Assign(const ValueBase &other)
{
    if (this->PostAssignByReference(other))
        return;
    if (const auto *map = dynamic_cast<const MappingBase *>(&other))
        this->m_width4Interpolation = map->MappingBase::GetWidth4Interpolation(-1.0);
    ValueBase::operator=(other); // last, for it may tell somebody who deletes this value
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
template <typename NewCommand, typename... Arguments>
void ValueMap<Y, YHandler>::recordForBoth(const Arguments &...arguments)
{
    if (this->Record())
        this->RecordCommand(new NewCommand(this, nullptr, arguments...));
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::SetXYValue(double x, const Y &y)
{
    recordForBoth<CommandSetXYValue<Y, YHandler>>(x, y);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::SetXYValues(double x1, double x2, unsigned int count, const Y *y)
{
    if (count == 0)
        return;
    if (count == 1)
        return SetXYValue(x1, *y);
    recordForBoth<CommandSetXYValues<Y, YHandler>>(x1, x2, count, y);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::SetXYValues(double x, double step, unsigned int count, const Y *y,
                                        const unsigned short *index)
{
    recordForBoth<CommandSetXYValues2<Y, YHandler>>(x, step, count, y, index);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::ClearXValue(double x) { recordForBoth<CommandClearXValue>(x); }

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::ClearRange(double from, double to)
{
    recordForBoth<CommandClearRange>(from, to);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::InvalidateRange(double from, double to)
{
    recordForBoth<CommandInvalidateRange>(from, to);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::ClearData() { recordForBoth<CommandClearData>(); }

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::CalcScanPerSecond(unsigned char argument)
{
    m_scanRate.emplace(argument);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::recalcScanRate()
{
    if (m_scanRate && this->m_timeStamp != 0)
        SetScanPerSecond(m_scanRate->Recalc(std::int64_t(this->m_timeStamp)));
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::EndOfScan() { finishScan(0); }

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::finishScan(KRTimeStamp recordedTime)
{
    if (this->PostIfForeign([this, recordedTime] { finishScan(recordedTime); }))
        return;
    recalcScanRate();
    if (this->IsCommandRecording())
        this->AddCommand(new CommandEndOfScan(this, nullptr, recordedTime));
    if (this->IsCommandRecordingForTransmission())
        this->AddCommandForTransmission(new CommandEndOfScan(this, nullptr, 0));
    this->NotifyObservers(CC_END_OF_SCAN, this);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::EndOfScan(const KRTimeStamp & /*time*/) { EndOfScan(); }

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::EndOfHistory() { recordForBoth<CommandEndOfHistory>(); }

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::ResetGrowOnly() { recordForBoth<CommandResetGrowOnly>(); }

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::SetTimeStamp(const KRTimeStamp &time)
{
    if (this->PostIfForeign([this, time] { SetTimeStamp(time); }))
        return;
    this->m_timeStamp = time;
    recordForBoth<CommandSetTimeStamp>(time);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::SetScanPerSecond(const double &rate)
{
    if (this->PostIfForeign([this, rate] { SetScanPerSecond(rate); }))
        return;
    this->m_scanPerSecond = rate;
    recordForBoth<CommandSetScanPerSecond>(rate);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::SetWidth4Interpolation(double width)
{
    if (this->PostIfForeign([this, width] { SetWidth4Interpolation(width); }))
        return;
    this->m_width4Interpolation = width;
    recordForBoth<CommandSetWidth4Interpolation>(width);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::SetDataCompressMode(char mode)
{
    if (this->PostIfForeign([this, mode] { SetDataCompressMode(mode); }))
        return;
    // First, since it remembers the mode that it ends.
    if (this->IsCommandRecordingForTransmission())
        this->AddCommandForTransmission(
            new CommandSetDataCompressMode<Y, YHandler>(this, nullptr, mode));
    HandlerBase::SetDataCompressMode(mode);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
    QString ValueMap<Y, YHandler>::Binary2FormattedString(int dimension, const char *bytes)
{
    bool ok = true;
    Y sample = YHandler::FromBinary(&bytes, ok, 0); // one handler takes it as a plain reference
    if (!ok || sample == YHandler::Minimum())
        return QStringLiteral("---");
    const QString unit = YHandler::GetLevelUnit();
    QString text;
    return YHandler::GetFormattedString(dimension, text, sample, 0, &unit);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::HasChanged(TChangeCode code, IObserver *source)
{
    if (this->PostIfForeign([this, code, source] { ValueMap::HasChanged(code, source); }))
        return;
    const LifeWatch watch(this);
    stampChange(code);
    if (!watch.IsGone())
        ValueBase::HasChanged(code, source);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::stampChange(TChangeCode code)
{
    if (code == CC_MAPPING && m_createTimeStamp)
        this->SetTimeStamp(KelmOS::Get().GetCurrentTime());
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> std::string
ValueMap<Y, YHandler>::GetCommandStringForRecording(unsigned int mode)
{
    const Detail::CompressModeScope scope;
    HandlerBase::SetDataCompressMode(DataRaw);
    return ValueBase::GetCommandStringForRecording(mode);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> std::string
ValueMap<Y, YHandler>::GetCommandStringForTransmission(unsigned int mode)
{
    using SetMode = CommandSetDataCompressMode<Y, YHandler>;
    const auto asSetMode = [](const auto &command) {
        return command->GetCommandId() == SetMode::kId ? static_cast<const SetMode *>(command.get())
                                                       : nullptr;
    };
    const CommandList &commands = this->GetCommandListForTransmission();
    const auto first = std::find_if(commands.begin(), commands.end(), asSetMode);
    if (first == commands.end())
        return ValueBase::GetCommandStringForTransmission(mode);
    const Detail::CompressModeScope scope;
    HandlerBase::SetDataCompressMode(asSetMode(*first)->GetFormerMode());
    std::string all;
    for (const auto &command : commands) {
        command->AddCommandString(all, int(mode));
        if (const SetMode *change = asSetMode(command))
            HandlerBase::SetDataCompressMode(change->GetCompressMode());
    }
    return all;
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::SetCommandString(const std::string &commands,
                                             std::vector<std::unique_ptr<KELM::ICommand>> &out,
                                             IObserver *source, int mode)
{
    const Detail::CompressModeScope scope;
    ValueBase::SetCommandString(commands, out, source, mode);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::Update(Observable * /*subject*/, TChangeCode /*code*/) {}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::AddObjectStateStringForTransmission(std::string &out, unsigned int mode)
{
    addStateString(out, mode, HandlerBase::GetDataCompressMode());
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::AddObjectStateStringForRecording(std::string &out)
{
    addStateString(out, ModeRecording, DataRaw);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void ValueMap<Y, YHandler>::addStateString(std::string &out, unsigned int mode, char compressMode)
{
    ValueBase::AddObjectStateStringForTransmission(out, mode);
    CommandSetDataCompressMode<Y, YHandler>(this, nullptr, compressMode)
        .AddCommandString(out, int(mode));
    CommandSetWidth4Interpolation(this, nullptr, this->m_width4Interpolation)
        .AddCommandString(out, int(mode));
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> Command *
ValueMap<Y, YHandler>::CreateNextCommand(int id, const char **pos, IObserver *source, int mode)
{
    switch (id) {
    case 20:
    case CommandSetXYValue<Y, YHandler>::kId:
        return new CommandSetXYValue<Y, YHandler>(id, this, pos, source);
    case 23:
    case CommandSetXYValues<Y, YHandler>::kId:
        return new CommandSetXYValues<Y, YHandler>(id, this, pos, source);
    case 31:
    case CommandSetXYValues2<Y, YHandler>::kId:
        return new CommandSetXYValues2<Y, YHandler>(id, this, pos, source);
    case CommandSetDataCompressMode<Y, YHandler>::kId: {
        auto *command = new CommandSetDataCompressMode<Y, YHandler>(id, this, pos, source);
        HandlerBase::SetDataCompressMode(command->GetCompressMode()); // until the parse ends
        return command;
    }
    default:
        if (isMappingCommand(id))
            return createMappingCommand(id, this, pos, source);
        return ValueBase::CreateNextCommand(id, pos, source, mode);
    }
}

} // namespace values
