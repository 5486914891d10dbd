// The commands of a fast value map that hold no samples.
#include "platform/base/bytes.h"
#include "valueclasses/commands/streamformat.h"
#include "valueclasses/mapping/samplecommands.h"

namespace values {

namespace {

ChannelRangeDefinition readDefinition(bool oldForm, const char **pos)
{
    ChannelRangeDefinition definition;
    if (oldForm) {
        definition.fromOldCharStream(pos); // reads the ";", too
    } else {
        definition = Kelm::fromCharStream<ChannelRangeDefinition>(pos);
        Kelm::readTerminator(pos, "FastValueMap", "CommandSetChannelRangeDefinition<Y, YHandler>");
    }
    return definition;
}

} // namespace

CommandSetChannelRangeDefinition::CommandSetChannelRangeDefinition(
    MappingBase *value, IObserver *source, ChannelRangeDefinition definition)
    : CommandOnMapping(kId, value, source), m_definition(std::move(definition))
{
}

CommandSetChannelRangeDefinition::CommandSetChannelRangeDefinition(int idRead, MappingBase *value,
                                                                   const char **pos,
                                                                   IObserver *source)
    : CommandOnMapping(idRead, value, pos, source),
      m_definition(readDefinition(idRead == kOldId, pos))
{
}

void CommandSetChannelRangeDefinition::ExecuteOn(MappingBase *mapping)
{
    mapping->SetChannelRangeDefinition(m_definition, 0);
}

void CommandSetChannelRangeDefinition::AddCommandString(std::string &out, int mode) const
{
    CommandOnMapping::AddCommandString(out, mode);
    if (isTextMode(mode))
        appendReadable(out);
    else if (GetCommandId() == kOldId)
        out += m_definition.toOldStandardString();
    else
        out += Kelm::toStandardString(m_definition) + ';';
}

void CommandSetChannelRangeDefinition::appendReadable(std::string &out) const
{
    const auto &ranges = m_definition.GetIndexedRanges();
    appendText(out, std::uint64_t(ranges.size()));
    for (const auto &range : ranges) {
        appendText(out, std::uint64_t(range.firstChannelId));
        appendText(out, std::uint64_t(range.channelCount));
        appendText(out, range.firstCenterFrequency);
        appendText(out, range.frequencyStep);
    }
}

CommandSetRealTimeBufferName::CommandSetRealTimeBufferName(MappingBase *value, IObserver *source,
                                                           std::string name)
    : CommandOnMapping(kId, value, source), m_name(std::move(name))
{
}

CommandSetRealTimeBufferName::CommandSetRealTimeBufferName(int /*idRead*/, MappingBase *value,
                                                           const char **pos, IObserver *source)
    : CommandOnMapping(kId, value, pos, source)
{
    // A negative length is one that no bytes can hold.
    m_name = Kelm::readBytes(pos, Kelm::readLittleEndian<std::uint32_t>(pos));
    Kelm::readTerminator(pos, "FastValueMap", "CommandSetRealTimeBufferName<Y, YHandler>");
}

void CommandSetRealTimeBufferName::ExecuteOn(MappingBase *mapping)
{
    mapping->SetRealTimeBufferName(m_name);
}

void CommandSetRealTimeBufferName::AddCommandString(std::string &out, int mode) const
{
    CommandOnMapping::AddCommandString(out, mode);
    if (!isTextMode(mode))
        Kelm::appendLittleEndian(out, std::uint32_t(m_name.size()));
    out += m_name;
    out += ';';
}

} // namespace values
