#include "valueclasses/mapping/mappingcommands.h"

#include "platform/base/bytes.h"
#include "platform/base/krexception.h"
#include "valueclasses/commands/commandfield_p.h"
#include "valueclasses/commands/streamformat.h"

namespace values {

namespace {

constexpr int kOldIdOffset = 100;
constexpr int kWithdrawnId = 30;

/// Commands whose id is above 100 have an older form, too.
template <typename NumberCommand>
constexpr bool isIdOf(int id)
{
    return id == NumberCommand::kId || id == NumberCommand::kId - kOldIdOffset;
}

void ignoreCommandInitializeRangeMapping(const char **pos)
{
    constexpr const char *kName = "IgnoreCommandInitializeRangeMapping";
    const std::string_view field = commandField(*pos);
    if (field.empty())
        throw KRException("The command id in the passed string is empty.", __FILE__, "ValueMap",
                          kName, __LINE__);
    skipCommandField(pos, field, "ValueMap", kName);
    const auto count = Kelm::readLittleEndian<std::uint16_t>(pos);
    Kelm::requireBytes(*pos, count);
    *pos += count;
    Kelm::readTerminator(pos, "ValueMap", kName);
}

} // namespace

CommandOnMapping::CommandOnMapping(int id, MappingBase *value, IObserver *source)
    : CommandOnValue(id, value, source)
{
}

CommandOnMapping::CommandOnMapping(int id, MappingBase *value, const char **pos, IObserver *source)
    : CommandOnValue(id, value, pos, source)
{
}

void CommandOnMapping::Execute() { ExecuteOn(static_cast<MappingBase *>(GetValue())); }

void CommandOnMapping::skipOldBytes(int idRead, int id, const char **pos)
{
    constexpr std::size_t kOldBytes = 2;
    if (idRead == id)
        return;
    Kelm::requireBytes(*pos, kOldBytes);
    *pos += kOldBytes;
}

void CommandOnMapping::appendText(std::string &out, double number)
{
    StreamFormat<double>::Append(out, number, ModeText);
    out += ';';
}

void CommandOnMapping::appendText(std::string &out, std::uint64_t number)
{
    StreamFormat<std::uint64_t>::Append(out, number, ModeText);
    out += ';';
}

template <typename Operation, typename... Numbers>
CommandOfNumbers<Operation, Numbers...>::CommandOfNumbers(MappingBase *value, IObserver *source,
                                                          Numbers... numbers)
    : CommandOnMapping(kId, value, source), m_numbers(numbers...)
{
}

template <typename Operation, typename... Numbers>
CommandOfNumbers<Operation, Numbers...>::CommandOfNumbers(int idRead, MappingBase *value,
                                                          const char **pos, IObserver *source)
    : CommandOnMapping(kId, value, pos, source)
{
    constexpr bool isEndOfScan = std::is_same_v<Operation, EndOfScanOperation>;
    if (isEndOfScan && idRead != kId)
        return; // the older form is its id alone
    std::apply([pos](auto &...number) { ((number = Kelm::readLittleEndian<Numbers>(pos)), ...); },
               m_numbers);
    if (isEndOfScan)
        return; // no ";" closes it
    skipOldBytes(idRead, kId, pos);
    if constexpr (sizeof...(Numbers) != 0)
        Kelm::readTerminator(pos, "ValueMap", Operation::kName);
}

template <typename Operation, typename... Numbers>
void CommandOfNumbers<Operation, Numbers...>::ExecuteOn(MappingBase *mapping)
{
    std::apply([mapping](const auto &...number) { Operation::apply(*mapping, number...); },
               m_numbers);
}

template <typename Operation, typename... Numbers>
void CommandOfNumbers<Operation, Numbers...>::AddCommandString(std::string &out, int mode) const
{
    constexpr bool isEndOfScan = std::is_same_v<Operation, EndOfScanOperation>;
    CommandOnMapping::AddCommandString(out, mode);
    const bool text = isTextMode(mode) && !isEndOfScan;
    std::apply(
        [&out, text](const auto &...number) {
            ((text ? appendText(out, number) : Kelm::appendLittleEndian(out, number)), ...);
        },
        m_numbers);
    if (!text && !isEndOfScan && sizeof...(Numbers) != 0)
        out += ';';
}

#define SPECTREE_INSTANTIATE(Name, id, ...)                                                        \
    template class CommandOfNumbers<Name##Operation __VA_OPT__(, ) __VA_ARGS__>;
SPECTREE_FOR_EACH_MAPPING_COMMAND(SPECTREE_INSTANTIATE)

bool isMappingCommand(int id)
{
#define SPECTREE_COMPARE(Name, number, ...) || isIdOf<Command##Name>(id)
    return id == kWithdrawnId SPECTREE_FOR_EACH_MAPPING_COMMAND(SPECTREE_COMPARE);
#undef SPECTREE_COMPARE
}

Command *createMappingCommand(int id, MappingBase *value, const char **pos, IObserver *source)
{
#define SPECTREE_CREATE(Name, number, ...)                                                         \
    if (isIdOf<Command##Name>(id))                                                                 \
        return new Command##Name(id, value, pos, source);
    SPECTREE_FOR_EACH_MAPPING_COMMAND(SPECTREE_CREATE)
#undef SPECTREE_CREATE
    ignoreCommandInitializeRangeMapping(pos);
    return nullptr;
}

} // namespace values
