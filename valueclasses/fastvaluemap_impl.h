#pragma once

#include "platform/base/kelmos.h"
#include "platform/base/krexception.h"
#include "platform/startup/cfgcenter.h"
#include "valueclasses/channels/ichannelmapping.h"
#include "valueclasses/fastvaluemap.h"
#include "valueclasses/mapping/mappingnames_p.h"
#include "valueclasses/mapping/samplecommands.h"
#include "valueclasses/valuemapping_impl.h"

#include <algorithm>

namespace values {

namespace Detail {

/// Holds back the recording of what one recorded operation does, where it is on.
class SuspendRecording {
public:
    explicit SuspendRecording(ValueBase &value)
        : m_value(value), m_watch(&value), m_suspends(value.IsCommandRecording())
    {
        if (m_suspends)
            m_value.SuspendCommandRecording(true);
    }
    ~SuspendRecording()
    {
        if (m_suspends && !IsGone())
            m_value.SuspendCommandRecording(false);
    }
    bool IsGone() const { return m_watch.IsGone(); }
    SuspendRecording(const SuspendRecording &) = delete;
    SuspendRecording &operator=(const SuspendRecording &) = delete;

private:
    ValueBase &m_value;
    LifeWatch m_watch;
    bool m_suspends;
};

} // namespace Detail

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> FastValueMap<Y, YHandler>::FastValueMap(QString name,
                                                                            TValueState state)
    : ValueMap<Y, YHandler>(std::move(name), state)
{
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> FastValueMap<Y, YHandler>::~FastValueMap() = default;

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> ValueType FastValueMap<Y, YHandler>::GetType()
const { return mappingNames(YHandler::GetId()).fastValueMap; }

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> QString FastValueMap<Y, YHandler>::GetTypeName()
const { return QString::fromLatin1(mappingNames(YHandler::GetId()).fastValueMapName); }

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::Assign(const ValueBase &other)
{
    if (this->PostAssignByReference(other))
        return;
    const auto *map = dynamic_cast<const FastValueMap *>(&other);
    if (map != nullptr && map != this && !map->m_definition.empty()) {
        if (m_buffer != nullptr)
            m_buffer->setChannelRangeDefinition(map->m_definition);
        m_definition = map->m_definition;
    }
    ValueMap<Y, YHandler>::Assign(other);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::SetChannelRangeDefinition(const ChannelRangeDefinition &definition,
                                                          std::uint64_t size)
{
    if (definition.empty())
        return;
    if (!definition.IsFinite())
        throw KRException(QStringLiteral("A channel range has a frequency that is not finite"),
                          __FILE__, "FastValueMap", "SetChannelRangeDefinition", __LINE__);
    if (this->IsChangeForeign())
        return this->PostChange(
            [this, definition, size] { SetChannelRangeDefinition(definition, size); });
    if (m_buffer != nullptr) {
        m_buffer->setChannelRangeDefinition(definition);
        if (size != 0)
            m_buffer->setMaximumSizeInBytes(size);
    }
    ClearData();
    m_definition = definition;
    const double first = m_definition.GetIndexedRanges().front().firstCenterFrequency;
    if (first > 0.0)
        this->SetWidth4Interpolation(GetWidth4Interpolation(first));
    this->template recordForBoth<CommandSetChannelRangeDefinition>(m_definition);
    const LifeWatch watch(this);
    if (this->m_channelMapping != nullptr)
        this->m_channelMapping->SetChannelRangeDefinition(m_definition);
    if (!watch.IsGone())
        ValueMap<Y, YHandler>::HasChanged(CC_LIMITS, this);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> std::span<const SpectralDataPiece<Y>>
FastValueMap<Y, YHandler>::split(unsigned int firstChannel, unsigned int count, const Y *values)
{
    m_pieces.clear();
    const auto &ranges = m_definition.GetIndexedRanges();
    const auto *range = ranges.data() + ranges.size(), *const end = range;
    while (count != 0) {
        // Mostly the next one; a search for each takes long in a grid of many short ranges.
        if (range == end || ++range == end || !range->HoldsChannelId(firstChannel))
            range = &m_definition.GetIndexedRangeForChannelId(firstChannel);
        const unsigned int offset = firstChannel - range->firstChannelId;
        const unsigned int taken = std::min(count, range->channelCount - offset);
        m_pieces.push_back({range->firstIndex + offset, taken, values});
        if (values != nullptr)
            values += taken;
        firstChannel += taken;
        count -= taken;
    }
    return m_pieces;
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::SetChannelValues(Kelm::Long firstChannel, unsigned int count,
                                                 const Y *values)
{
    if (firstChannel < 0)
        throw KRException("StartChannel invalid", "FastValueMap.cpp", "FastValueMap",
                          "SetChannelValues", __LINE__);
    // Before any look at the grid: a grid that was set on this thread was posted, too.
    if (this->IsChangeForeign())
        return this->PostChange(
            [this, firstChannel, samples = std::vector<Y>(values, values + count)] {
                SetChannelValues(firstChannel, unsigned(samples.size()), samples.data());
            });
    if (m_definition.empty())
        throw ChannelNotSetExc();
    // Throws for unknown channels, so nothing may be written or recorded before it.
    const std::span<const Piece> pieces = split(unsigned(firstChannel), count, values);
    if (pieces.empty())
        return;
    if (this->IsCommandRecording())
        this->AddCommand(
            new CommandSetChannelValues<Y, YHandler>(this, nullptr, firstChannel, count, values));
    if (m_buffer != nullptr)
        store(pieces);
    if (!storesInBufferOnly())
        passOn(pieces);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::store(std::span<const Piece> pieces)
{
    if (this->createsTimeStamp()) {
        this->m_timeStamp = KelmOS::Get().GetCurrentTime();
        m_buffer->addTimeStamp(this->m_timeStamp);
    }
    m_buffer->addSpectralData(pieces);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
double FastValueMap<Y, YHandler>::frequencyOf(std::uint32_t index) const
{
    return m_definition.IndexToChannelIdAndFrequency(index).second;
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::passOn(std::span<const Piece> pieces)
{
    const Detail::SuspendRecording suspended(*this);
    for (const Piece &piece : pieces) {
        if (suspended.IsGone())
            return;
        const double first = frequencyOf(piece.firstIndex);
        if (piece.count == 1)
            SetXYValue(first, *piece.samples);
        else
            SetXYValues(first, frequencyOf(piece.firstIndex + piece.count - 1), piece.count,
                        piece.samples);
    }
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::ClearChannelRange(Kelm::Long firstChannel, unsigned int count)
{
    if (this->PostIfForeign(
            [this, firstChannel, count] { ClearChannelRange(firstChannel, count); }))
        return;
    if (m_definition.empty())
        return;
    const auto wantedCount = std::int32_t(count);
    if (firstChannel == -1 && wantedCount == -1)
        return ClearData();
    const unsigned int first =
        firstChannel < 0 ? m_definition.GetMinChannelId() : unsigned(firstChannel);
    const std::span<const Piece> pieces =
        wantedCount < 0 ? splitFrom(first) : split(first, count, nullptr);
    if (this->IsCommandRecording())
        this->AddCommand(
            new CommandClearChannelRange<Y, YHandler>(this, nullptr, firstChannel, count));
    const Detail::SuspendRecording suspended(*this);
    for (const Piece &piece : pieces) {
        if (suspended.IsGone())
            return;
        if (piece.count == 1)
            ClearXValue(frequencyOf(piece.firstIndex));
        else
            ClearRange(frequencyOf(piece.firstIndex),
                       frequencyOf(piece.firstIndex + piece.count - 1));
    }
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> std::span<const SpectralDataPiece<Y>>
FastValueMap<Y, YHandler>::splitFrom(unsigned int firstChannel)
{
    m_pieces.clear();
    for (const auto &range : m_definition.GetIndexedRanges()) {
        const unsigned int skipped =
            firstChannel > range.firstChannelId ? firstChannel - range.firstChannelId : 0;
        if (skipped < range.channelCount)
            m_pieces.push_back({range.firstIndex + skipped, range.channelCount - skipped, nullptr});
    }
    return m_pieces;
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::EndOfScan() { endScan(0); }

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::EndOfScan(const KRTimeStamp &time) { endScan(time); }

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::endScan(KRTimeStamp time)
{
    if (this->PostIfForeign([this, time] { endScan(time); }))
        return;
    const LifeWatch watch(this);
    if (this->m_channelMapping != nullptr)
        this->m_channelMapping->EndOfScan(time);
    if (watch.IsGone())
        return;
    if (m_buffer == nullptr)
        return this->finishScan(0);
    if (storesInBufferOnly() && this->IsCommandRecording())
        this->AddCommand(new CommandEndOfScan(this, nullptr, time));
    if (time != 0)
        m_buffer->endOfScan(time);
    else
        m_buffer->endOfScan();
    if (!storesInBufferOnly())
        this->finishScan(time);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::SetTimeStamp(const KRTimeStamp &time)
{
    if (this->PostIfForeign([this, time] { SetTimeStamp(time); }))
        return;
    const LifeWatch watch(this);
    if (this->m_channelMapping != nullptr)
        this->m_channelMapping->SetTimeStamp(time);
    if (watch.IsGone())
        return;
    ValueMap<Y, YHandler>::SetTimeStamp(time);
    if (m_buffer != nullptr)
        m_buffer->addTimeStamp(time);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::HasChanged(TChangeCode code, IObserver *source)
{
    if (this->PostIfForeign([this, code, source] { HasChanged(code, source); }))
        return;
    const bool bufferOnly = storesInBufferOnly();
    const bool records = bufferOnly ? this->Record() : this->IsCommandRecording();
    if (m_buffer != nullptr && code == CC_MAPPING && records)
        noteRecordedChange(source);
    else if (!bufferOnly)
        ValueMap<Y, YHandler>::HasChanged(code, source);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::noteRecordedChange(IObserver *source)
{
    using Change = ValueBase::CommandHasChanged;
    const LifeWatch watch(this);
    const bool bufferOnly = storesInBufferOnly();
    if (!bufferOnly)
        this->stampChange(CC_MAPPING);
    if (watch.IsGone())
        return;
    if (this->IsCommandRecording())
        this->AddCommand(new Change(this, CC_MAPPING, source));
    this->NotifyObservers(CC_FAST_MAP, source);
    if (bufferOnly || watch.IsGone())
        return;
    // As in ValueBase::HasChanged, but for the recording that has the change already.
    if (this->IsCommandRecordingForTransmission())
        this->AddCommandForTransmission(new Change(this, CC_MAPPING, source));
    this->ResumeNotifyObservers();
    this->NotifyObservers(CC_MAPPING, source);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::Update(Observable * /*subject*/, TChangeCode code)
{
    if (code == CC_VALUE)
        this->NotifyObservers(CC_LIMITS, this);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
double FastValueMap<Y, YHandler>::GetWidth4Interpolation(double x) const
{
    const double step = x != -1.0 ? m_definition.GetFrequencyStep4Frequency(x) : -1.0;
    return step < 0.0 ? this->m_width4Interpolation : step;
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::SetChannelMapping(IChannelMapping *mapping)
{
    ValueMap<Y, YHandler>::SetChannelMapping(mapping);
    if (mapping != nullptr)
        mapping->SetChannelRangeDefinition(m_definition);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> std::shared_ptr<sbs::ScanBuffer<Y, YHandler>>
FastValueMap<Y, YHandler>::CreateRealTimeBuffer()
{
    if (!CfgCenter::GetAppCfg().GetBool(QStringLiteral("UseScanBufferServer"), false))
        return nullptr;
    if (m_buffer != nullptr) {
        const auto present = m_buffer->GetScanBuffer();
        this->NotifyObservers(CC_VALUE, nullptr);
        return present;
    }
    auto buffer = RealTimeBufferFactory<Y, YHandler>::Create();
    if (buffer == nullptr)
        return nullptr;
    buffer->setChannelRangeDefinition(m_definition);
    m_buffer = std::move(buffer);
    this->m_realTimeBufferName = m_buffer->GetName();
    const auto made = m_buffer->GetScanBuffer();
    SetRealTimeBufferName(this->m_realTimeBufferName);
    return made;
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::SetRealTimeBufferName(std::string name)
{
    if (!CfgCenter::GetAppCfg().GetBool(QStringLiteral("UseScanBufferServerGUISide"), true))
        return;
    if (this->IsChangeForeign())
        return this->PostChange([this, name] { SetRealTimeBufferName(name); });
    this->m_realTimeBufferName = std::move(name);
    if (this->IsCommandRecordingForTransmission())
        this->AddCommandForTransmission(
            new CommandSetRealTimeBufferName(this, nullptr, this->m_realTimeBufferName));
    this->NotifyObservers(CC_VALUE, nullptr);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::aboutToTerminate()
{
    if (m_buffer != nullptr)
        m_buffer->endService();
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::addGridString(std::string &out, unsigned int mode)
{
    if (!m_definition.empty())
        CommandSetChannelRangeDefinition(this, nullptr, m_definition)
            .AddCommandString(out, int(mode));
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::AddObjectStateStringForTransmission(std::string &out,
                                                                    unsigned int mode)
{
    ValueMap<Y, YHandler>::AddObjectStateStringForTransmission(out, mode);
    addGridString(out, mode);
    CommandSetRealTimeBufferName(this, nullptr, this->m_realTimeBufferName)
        .AddCommandString(out, int(mode));
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
void FastValueMap<Y, YHandler>::AddObjectStateStringForRecording(std::string &out)
{
    ValueMap<Y, YHandler>::AddObjectStateStringForRecording(out);
    addGridString(out, ModeRecording);
}

template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y> Command *
FastValueMap<Y, YHandler>::CreateNextCommand(int id, const char **pos, IObserver *source, int mode)
{
    switch (id) {
    case CommandSetChannelRangeDefinition::kOldId:
    case CommandSetChannelRangeDefinition::kId:
        return new CommandSetChannelRangeDefinition(id, this, pos, source);
    case CommandSetChannelValues<Y, YHandler>::kId:
        return new CommandSetChannelValues<Y, YHandler>(id, this, pos, source);
    case CommandClearChannelRange<Y, YHandler>::kId:
        return new CommandClearChannelRange<Y, YHandler>(id, this, pos, source);
    case CommandSetRealTimeBufferName::kId:
        return new CommandSetRealTimeBufferName(id, this, pos, source);
    default:
        return ValueMap<Y, YHandler>::CreateNextCommand(id, pos, source, mode);
    }
}

} // namespace values
