#pragma once

#include "platform/base/krexception.h"
#include "valueclasses/commands/streamformat.h"
#include "valueclasses/fastvaluemap.h"
#include "valueclasses/mapping/samplecommands.h"

#include <algorithm>

namespace values {

template <typename Y, typename YHandler>
void CommandOnValueMapping<Y, YHandler>::ExecuteOn(MappingBase *mapping)
{
    if (auto *typed = dynamic_cast<Mapping *>(mapping))
        apply(*typed);
}

template <typename Y, typename YHandler>
void CommandOnValueMapping<Y, YHandler>::appendSamples(std::string &out, const Samples &samples)
{
    // One sample at a time, with room for the largest form: a compressed one is smaller than it.
    for (const Y &sample : samples) {
        const std::size_t before = out.size();
        out.resize(before + rawImageSize(sample));
        out.resize(std::size_t(YHandler::ToBinary(out.data() + before, sample) - out.data()));
    }
}

template <typename Y, typename YHandler>
void CommandOnValueMapping<Y, YHandler>::appendReadable(std::string &out, const Samples &samples)
{
    for (const Y &sample : samples)
        out += YHandler::ToString(sample) + ';';
}

template <typename Y, typename YHandler>
typename CommandOnValueMapping<Y, YHandler>::Samples
CommandOnValueMapping<Y, YHandler>::readSamples(const char **pos, std::uint32_t count)
{
    Kelm::requireBytes(*pos, count, YHandler::SizeOf());
    Samples samples;
    samples.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i)
        samples.push_back(readSample(pos));
    return samples;
}

template <typename Y, typename YHandler>
Y CommandOnValueMapping<Y, YHandler>::readSample(const char **pos)
{
    bool ok = true;
    Y sample = YHandler::FromBinary(pos, ok, 0);
    if (!ok)
        throw KRException("Command string is not terminated with ';'", __FILE__, "ValueMap",
                          "FromBinary", __LINE__);
    return sample;
}

template <typename Y, typename YHandler>
CommandSetXYValue<Y, YHandler>::CommandSetXYValue(MappingBase *value, IObserver *source, double x,
                                                  const Y &y)
    : Base(kId, value, source), m_x(x), m_y(y)
{
}

template <typename Y, typename YHandler>
CommandSetXYValue<Y, YHandler>::CommandSetXYValue(int idRead, MappingBase *value, const char **pos,
                                                  IObserver *source)
    : Base(kId, value, pos, source), m_x(Kelm::readLittleEndian<double>(pos)),
      m_y(Base::readSample(pos))
{
    Base::skipOldBytes(idRead, kId, pos);
    Kelm::readTerminator(pos, "ValueMap", "ValueMap::CommandSetXYValue");
}

template <typename Y, typename YHandler>
void CommandSetXYValue<Y, YHandler>::AddCommandString(std::string &out, int mode) const
{
    Base::AddCommandString(out, mode);
    if (isTextMode(mode)) {
        Base::appendText(out, m_x);
        Base::appendReadable(out, {m_y});
        return;
    }
    Kelm::appendLittleEndian(out, m_x);
    Base::appendSamples(out, {m_y});
    out += ';';
}

template <typename Y, typename YHandler>
void CommandSetXYValue<Y, YHandler>::apply(typename Base::Mapping &mapping)
{
    mapping.SetXYValue(m_x, m_y);
}

template <typename Y, typename YHandler>
CommandSetXYValues<Y, YHandler>::CommandSetXYValues(MappingBase *value, IObserver *source,
                                                    double x1, double x2, unsigned int count,
                                                    const Y *y)
    : Base(kId, value, source), m_x1(x1), m_x2(x2), m_samples(y, y + count)
{
}

template <typename Y, typename YHandler>
CommandSetXYValues<Y, YHandler>::CommandSetXYValues(int idRead, MappingBase *value,
                                                    const char **pos, IObserver *source)
    : Base(kId, value, pos, source), m_x1(Kelm::readLittleEndian<double>(pos)),
      m_x2(Kelm::readLittleEndian<double>(pos)),
      m_samples(Base::readSamples(pos, Kelm::readLittleEndian<std::uint32_t>(pos)))
{
    Base::skipOldBytes(idRead, kId, pos);
    Kelm::readTerminator(pos, "ValueMap", "CommandSetXYValues");
}

template <typename Y, typename YHandler>
void CommandSetXYValues<Y, YHandler>::AddCommandString(std::string &out, int mode) const
{
    Base::AddCommandString(out, mode);
    if (isTextMode(mode)) {
        Base::appendText(out, m_x1);
        Base::appendText(out, m_x2);
        Base::appendText(out, std::uint64_t(m_samples.size()));
        Base::appendReadable(out, m_samples);
        return;
    }
    Kelm::appendLittleEndian(out, m_x1);
    Kelm::appendLittleEndian(out, m_x2);
    Kelm::appendLittleEndian(out, std::uint32_t(m_samples.size()));
    Base::appendSamples(out, m_samples);
    out += ';';
}

template <typename Y, typename YHandler>
void CommandSetXYValues<Y, YHandler>::apply(typename Base::Mapping &mapping)
{
    mapping.SetXYValues(m_x1, m_x2, unsigned(m_samples.size()), m_samples.data());
}

template <typename Y, typename YHandler>
CommandSetXYValues2<Y, YHandler>::CommandSetXYValues2(MappingBase *value, IObserver *source,
                                                      double x, double step, unsigned int count,
                                                      const Y *y, const unsigned short *index)
    : Base(kId, value, source), m_x(x), m_step(step), m_samples(y, y + count),
      m_index(index, index + count)
{
}

template <typename Y, typename YHandler>
CommandSetXYValues2<Y, YHandler>::CommandSetXYValues2(int idRead, MappingBase *value,
                                                      const char **pos, IObserver *source)
    : Base(kId, value, pos, source), m_x(Kelm::readLittleEndian<double>(pos)),
      m_step(Kelm::readLittleEndian<double>(pos)),
      m_samples(Base::readSamples(pos, Kelm::readLittleEndian<std::uint32_t>(pos)))
{
    Kelm::requireBytes(*pos, m_samples.size(), sizeof(std::uint16_t));
    m_index.resize(m_samples.size());
    for (unsigned short &index : m_index)
        index = Kelm::readLittleEndian<std::uint16_t>(pos);
    Base::skipOldBytes(idRead, kId, pos);
    Kelm::readTerminator(pos, "ValueMap", "CommandSetXYValues2");
}

template <typename Y, typename YHandler>
void CommandSetXYValues2<Y, YHandler>::AddCommandString(std::string &out, int mode) const
{
    Base::AddCommandString(out, mode);
    if (isTextMode(mode)) {
        Base::appendText(out, m_x);
        Base::appendText(out, m_step);
        Base::appendText(out, std::uint64_t(m_samples.size()));
        for (std::size_t i = 0; i < m_samples.size(); ++i)
            out += YHandler::ToString(m_samples[i]) + ':' + std::to_string(m_index[i]) + ';';
        return;
    }
    Kelm::appendLittleEndian(out, m_x);
    Kelm::appendLittleEndian(out, m_step);
    Kelm::appendLittleEndian(out, std::uint32_t(m_samples.size()));
    Base::appendSamples(out, m_samples);
    for (const unsigned short index : m_index)
        Kelm::appendLittleEndian(out, std::uint16_t(index));
    out += ';';
}

template <typename Y, typename YHandler>
void CommandSetXYValues2<Y, YHandler>::apply(typename Base::Mapping &mapping)
{
    mapping.SetXYValues(m_x, m_step, unsigned(m_samples.size()), m_samples.data(), m_index.data());
}

template <typename Y, typename YHandler>
CommandSetDataCompressMode<Y, YHandler>::CommandSetDataCompressMode(MappingBase *value,
                                                                    IObserver *source, char mode)
    : Base(kId, value, source), m_compressMode(mode)
{
}

template <typename Y, typename YHandler>
CommandSetDataCompressMode<Y, YHandler>::CommandSetDataCompressMode(int /*idRead*/,
                                                                    MappingBase *value,
                                                                    const char **pos,
                                                                    IObserver *source)
    : Base(kId, value, pos, source), m_compressMode(Kelm::readLittleEndian<char>(pos))
{
    Kelm::readTerminator(pos, "ValueMap", "CommandSetDataCompressMode");
}

template <typename Y, typename YHandler>
void CommandSetDataCompressMode<Y, YHandler>::AddCommandString(std::string &out, int mode) const
{
    Base::AddCommandString(out, mode);
    if (isTextMode(mode))
        out += std::to_string(static_cast<unsigned char>(m_compressMode));
    else
        out += m_compressMode;
    out += ';';
}

template <typename Y, typename YHandler>
void CommandSetDataCompressMode<Y, YHandler>::apply(typename Base::Mapping &mapping)
{
    mapping.SetDataCompressMode(m_compressMode);
}

namespace Detail {

/// Samples that may own more than their fixed part tell so by a version in front.
template <typename Y>
inline constexpr bool hasVersion = std::is_same_v<Y, DFSpectrumSample>;
inline constexpr std::uint8_t kSampleVersion = 1;

template <typename Y>
std::uint32_t readFirstChannel(const char **pos)
{
    if constexpr (hasVersion<Y>)
        if (Kelm::readLittleEndian<std::uint8_t>(pos) != kSampleVersion)
            throw KRException("Unknown version of channel values", __FILE__,
                              "CommandSetChannelValues<Y, YHandler>",
                              "CommandSetChannelValues<Y, YHandler>", __LINE__);
    return Kelm::readLittleEndian<std::uint32_t>(pos);
}

} // namespace Detail

template <typename Y, typename YHandler>
CommandSetChannelValues<Y, YHandler>::CommandSetChannelValues(MappingBase *value, IObserver *source,
                                                              Kelm::Long firstChannel,
                                                              unsigned int count, const Y *samples)
    : Base(kId, value, source), m_firstChannel(firstChannel), m_samples(samples, samples + count)
{
}

template <typename Y, typename YHandler>
CommandSetChannelValues<Y, YHandler>::CommandSetChannelValues(int /*idRead*/, MappingBase *value,
                                                              const char **pos, IObserver *source)
    : Base(kId, value, pos, source), m_firstChannel(std::int32_t(Detail::readFirstChannel<Y>(pos))),
      m_samples(Base::readSamples(pos, Kelm::readLittleEndian<std::uint32_t>(pos)))
{
    Kelm::readTerminator(pos, "FastValueMap", "CommandSetChannelValues<Y, YHandler>");
}

template <typename Y, typename YHandler>
void CommandSetChannelValues<Y, YHandler>::AddCommandString(std::string &out, int mode) const
{
    Base::AddCommandString(out, mode);
    if (isTextMode(mode)) {
        out += std::to_string(std::int32_t(m_firstChannel)) + ';';
        Base::appendText(out, std::uint64_t(m_samples.size()));
        Base::appendReadable(out, m_samples);
        return;
    }
    if (Detail::hasVersion<Y>)
        Kelm::appendLittleEndian(out, Detail::kSampleVersion);
    Kelm::appendLittleEndian(out, m_firstChannel);
    Kelm::appendLittleEndian(out, std::uint32_t(m_samples.size()));
    Base::appendSamples(out, m_samples);
    out += ';';
}

template <typename Y, typename YHandler>
void CommandSetChannelValues<Y, YHandler>::apply(typename Base::Mapping &mapping)
{
    if (auto *map = dynamic_cast<FastValueMap<Y, YHandler> *>(&mapping))
        map->SetChannelValues(m_firstChannel, unsigned(m_samples.size()), m_samples.data());
}

template <typename Y, typename YHandler>
CommandClearChannelRange<Y, YHandler>::CommandClearChannelRange(MappingBase *value,
                                                                IObserver *source,
                                                                Kelm::Long firstChannel,
                                                                unsigned int count)
    : Base(kId, value, source), m_firstChannel(firstChannel), m_count(count)
{
}

template <typename Y, typename YHandler>
CommandClearChannelRange<Y, YHandler>::CommandClearChannelRange(int /*idRead*/, MappingBase *value,
                                                                const char **pos, IObserver *source)
    : Base(CommandClearRange::kId, value, pos, source),
      m_firstChannel(Kelm::readLittleEndian<Kelm::Long>(pos)),
      m_count(Kelm::readLittleEndian<std::uint32_t>(pos))
{
    Kelm::readTerminator(pos, "FastValueMap", "CommandClearChannelRange<Y, YHandler>");
}

template <typename Y, typename YHandler>
void CommandClearChannelRange<Y, YHandler>::AddCommandString(std::string &out, int mode) const
{
    Base::AddCommandString(out, mode);
    if (isTextMode(mode)) {
        out += std::to_string(std::int32_t(m_firstChannel)) + ';';
        Base::appendText(out, std::uint64_t(m_count));
        return;
    }
    Kelm::appendLittleEndian(out, m_firstChannel);
    Kelm::appendLittleEndian(out, std::uint32_t(m_count));
    out += ';';
}

template <typename Y, typename YHandler>
void CommandClearChannelRange<Y, YHandler>::apply(typename Base::Mapping &mapping)
{
    if (auto *map = dynamic_cast<FastValueMap<Y, YHandler> *>(&mapping))
        map->ClearChannelRange(m_firstChannel, m_count);
}

} // namespace values
