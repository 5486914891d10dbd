// The string forms of a channel range definition: what is read can be written and read again, and
// what is refused leaves the target alone.
#include "fuzz/fuzztools.h"
#include "platform/base/bytes.h"
#include "platform/base/krexception.h"
#include "valueclasses/channels/channelrangedefinition.h"

namespace {

using values::ChannelRangeDefinition;

std::string written(const ChannelRangeDefinition &definition)
{
    return Kelm::toStandardString(definition);
}

ChannelRangeDefinition readBack(const std::string &image)
{
    const Kelm::ReadScope scope(image.data(), image.size());
    const char *cursor = image.data();
    auto definition = Kelm::fromCharStream<ChannelRangeDefinition>(&cursor);
    require(cursor == image.data() + image.size());
    return definition;
}

void ask(const ChannelRangeDefinition &definition)
{
    for (const auto &range : definition.GetIndexedRanges()) {
        if (range.channelCount == 0)
            continue;
        const unsigned int last = range.firstIndex + (range.channelCount - 1);
        require(definition.ChannelIdToIndex(definition.IndexToChannelId(last)) == last);
    }
    double frequency = definition.GetMaxCenterFrequency();
    definition.GetClosestChannelCenterFrequency(frequency);
    definition.GetClosestChannelIdsForFrequencyRange(-1e9, 1e9);
}

void readCurrentForm(const char *data, std::size_t size)
{
    const Kelm::ReadScope scope(data, size);
    const char *cursor = data;
    try {
        const auto definition = Kelm::fromCharStream<ChannelRangeDefinition>(&cursor);
        require(cursor <= data + size);
        ask(definition);
        const std::string image = written(definition);
        require(written(readBack(image)) == image);
    } catch (const KRException &) {
        require(cursor == data);
    } catch (const values::DuplicateChannelIdException &) {
    }
}

void readOldForm(const char *data, std::size_t size)
{
    ChannelRangeDefinition target;
    target.AddRangeDefinition(5, 10U, 100.0, 1.0, QStringLiteral("there before"));
    const std::string before = written(target);
    const Kelm::ReadScope scope(data, size);
    const char *cursor = data;
    try {
        target.fromOldCharStream(&cursor);
        require(cursor <= data + size && cursor[-1] == ';');
        ask(target);
    } catch (const KRException &) {
        require(cursor == data && written(target) == before);
    } catch (const values::DuplicateChannelIdException &) {
        require(written(target) == before);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const char *data = reinterpret_cast<const char *>(bytes);
    readCurrentForm(data, size);
    readOldForm(data, size);
    return 0;
}
