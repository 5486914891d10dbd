#pragma once

#include "valueclasses/mapping/mappingcommands.h"
#include "valueclasses/samples/samplepairs.h"

#include <vector>

/// The commands that carry samples. docs/commands.md tells their ids and forms; samples stand in
/// them as the data compress mode says at their place in the string.
namespace values {

template <typename Y, typename YHandler>
class MappingBaseMultiDimension;
template <typename Y, typename YHandler>
requires SampleHandler<YHandler, Y>
class FastValueMap;

/// The base of the commands on a mapping of one sample type; on any other mapping they do nothing.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT CommandOnValueMapping : public CommandOnMapping {
public:
    using CommandOnMapping::CommandOnMapping;
    using Mapping = MappingBaseMultiDimension<Y, YHandler>;
    using Samples = std::vector<Y>;

    void ExecuteOn(MappingBase *mapping) override;

protected:
    virtual void apply(Mapping &mapping) = 0;

    static void appendSamples(std::string &out, const Samples &samples);
    static void appendReadable(std::string &out, const Samples &samples);
    /// \throws KRException when the bytes can't hold \a count samples, before memory is taken.
    static Samples readSamples(const char **pos, std::uint32_t count);
    static Y readSample(const char **pos);
};

/// Id 120: one sample.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT CommandSetXYValue : public CommandOnValueMapping<Y, YHandler> {
public:
    static constexpr int kId = 120;
    CommandSetXYValue(MappingBase *value, IObserver *source, double x, const Y &y);
    CommandSetXYValue(int idRead, MappingBase *value, const char **pos, IObserver *source);
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override { return new CommandSetXYValue(*this); }

private:
    using Base = CommandOnValueMapping<Y, YHandler>;
    void apply(typename Base::Mapping &mapping) override;

    double m_x = 0.0;
    Y m_y;
};

/// Id 123: evenly spaced samples.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT CommandSetXYValues : public CommandOnValueMapping<Y, YHandler> {
public:
    static constexpr int kId = 123;
    CommandSetXYValues(MappingBase *value, IObserver *source, double x1, double x2,
                       unsigned int count, const Y *y);
    CommandSetXYValues(int idRead, MappingBase *value, const char **pos, IObserver *source);
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override { return new CommandSetXYValues(*this); }

private:
    using Base = CommandOnValueMapping<Y, YHandler>;
    void apply(typename Base::Mapping &mapping) override;

    double m_x1 = 0.0, m_x2 = 0.0;
    typename Base::Samples m_samples;
};

/// Id 131: sparse samples.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT CommandSetXYValues2 : public CommandOnValueMapping<Y, YHandler> {
public:
    static constexpr int kId = 131;
    CommandSetXYValues2(MappingBase *value, IObserver *source, double x, double step,
                        unsigned int count, const Y *y, const unsigned short *index);
    CommandSetXYValues2(int idRead, MappingBase *value, const char **pos, IObserver *source);
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override { return new CommandSetXYValues2(*this); }

private:
    using Base = CommandOnValueMapping<Y, YHandler>;
    void apply(typename Base::Mapping &mapping) override;

    double m_x = 0.0, m_step = 0.0;
    typename Base::Samples m_samples;
    std::vector<unsigned short> m_index; // as long as m_samples
};

/// Id 39: the data compress mode of the samples behind it.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT CommandSetDataCompressMode : public CommandOnValueMapping<Y, YHandler> {
public:
    static constexpr int kId = 39;
    CommandSetDataCompressMode(MappingBase *value, IObserver *source, char mode);
    CommandSetDataCompressMode(int idRead, MappingBase *value, const char **pos, IObserver *source);
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override { return new CommandSetDataCompressMode(*this); }

    char GetCompressMode() const { return m_compressMode; }
    /// The mode in force when the command was made.
    char GetFormerMode() const { return m_formerMode; }

private:
    using Base = CommandOnValueMapping<Y, YHandler>;
    void apply(typename Base::Mapping &mapping) override;

    char m_compressMode = 0;
    char m_formerMode = YHandler::GetDataCompressMode();
};

/// Id 35: a run of channel values of a fast value map.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT CommandSetChannelValues : public CommandOnValueMapping<Y, YHandler> {
public:
    static constexpr int kId = 35;
    CommandSetChannelValues(MappingBase *value, IObserver *source, Kelm::Long firstChannel,
                            unsigned int count, const Y *samples);
    CommandSetChannelValues(int idRead, MappingBase *value, const char **pos, IObserver *source);
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override { return new CommandSetChannelValues(*this); }

    Kelm::Long GetStartChannel() const { return m_firstChannel; }
    unsigned int GetChannelCount() const { return unsigned(m_samples.size()); }
    const Y *GetYValues() const { return m_samples.data(); }

private:
    using Base = CommandOnValueMapping<Y, YHandler>;
    void apply(typename Base::Mapping &mapping) override;

    Kelm::Long m_firstChannel;
    typename Base::Samples m_samples;
};

/// Id 36: clears a run of channels. One that was read carries the id 125, and is written with it.
template <typename Y, typename YHandler>
class SPECTREE_EXPORT CommandClearChannelRange : public CommandOnValueMapping<Y, YHandler> {
public:
    static constexpr int kId = 36;
    CommandClearChannelRange(MappingBase *value, IObserver *source, Kelm::Long firstChannel,
                             unsigned int count);
    CommandClearChannelRange(int idRead, MappingBase *value, const char **pos, IObserver *source);
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override { return new CommandClearChannelRange(*this); }

private:
    using Base = CommandOnValueMapping<Y, YHandler>;
    void apply(typename Base::Mapping &mapping) override;

    Kelm::Long m_firstChannel;
    unsigned int m_count = 0;
};

/// Id 134, and 34 for one that was read from the older form and is written in it.
class SPECTREE_EXPORT CommandSetChannelRangeDefinition : public CommandOnMapping {
public:
    static constexpr int kId = 134, kOldId = 34;
    CommandSetChannelRangeDefinition(MappingBase *value, IObserver *source,
                                     ChannelRangeDefinition definition);
    CommandSetChannelRangeDefinition(int idRead, MappingBase *value, const char **pos,
                                     IObserver *source);
    void ExecuteOn(MappingBase *mapping) override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override { return new CommandSetChannelRangeDefinition(*this); }

private:
    void appendReadable(std::string &out) const;

    ChannelRangeDefinition m_definition;
};

/// Id 40: the name of the scan buffer.
class SPECTREE_EXPORT CommandSetRealTimeBufferName : public CommandOnMapping {
public:
    static constexpr int kId = 40;
    CommandSetRealTimeBufferName(MappingBase *value, IObserver *source, std::string name);
    CommandSetRealTimeBufferName(int idRead, MappingBase *value, const char **pos,
                                 IObserver *source);
    void ExecuteOn(MappingBase *mapping) override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override { return new CommandSetRealTimeBufferName(*this); }

private:
    std::string m_name;
};

#define SPECTREE_DECLARE(Y, Handler)                                                               \
    extern template class SPECTREE_EXPORT CommandOnValueMapping<Y, Handler>;                       \
    extern template class SPECTREE_EXPORT CommandSetXYValue<Y, Handler>;                           \
    extern template class SPECTREE_EXPORT CommandSetXYValues<Y, Handler>;                          \
    extern template class SPECTREE_EXPORT CommandSetXYValues2<Y, Handler>;                         \
    extern template class SPECTREE_EXPORT CommandSetDataCompressMode<Y, Handler>;                  \
    extern template class SPECTREE_EXPORT CommandSetChannelValues<Y, Handler>;                     \
    extern template class SPECTREE_EXPORT CommandClearChannelRange<Y, Handler>;
SPECTREE_FOR_EACH_SAMPLE_PAIR(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace values
