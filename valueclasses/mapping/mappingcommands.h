#pragma once

#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/mapping/mappingbase.h"

#include <tuple>

/// The commands that every spectral value understands, whatever its samples are. docs/commands.md
/// tells their ids and forms.
namespace values {

/// The second base of the commands on a mapping: the same change on any mapping.
class SPECTREE_EXPORT ICommandOnValueMapping {
public:
    virtual ~ICommandOnValueMapping() = default;
    virtual void ExecuteOn(MappingBase *mapping) = 0;
};

/// A command that targets a mapping. Its payload is binary in every mode but the text one, which
/// is for readers of logs: nothing parses it.
class SPECTREE_EXPORT CommandOnMapping : public ValueBase::CommandOnValue,
                                         public ICommandOnValueMapping {
public:
    CommandOnMapping(int id, MappingBase *value, IObserver *source);
    CommandOnMapping(int id, MappingBase *value, const char **pos, IObserver *source);
    void Execute() override;

protected:
    /// Skips the two bytes that forms with an older id have before their ";".
    static void skipOldBytes(int idRead, int id, const char **pos);
    static void appendText(std::string &out, double number);
    static void appendText(std::string &out, std::uint64_t number);
};

/// A command whose payload is at most a few numbers. Operation tells its id, its name, whether a
/// ";" closes it, and what it does with its numbers.
template <typename Operation, typename... Numbers>
class SPECTREE_EXPORT CommandOfNumbers : public CommandOnMapping {
public:
    static constexpr int kId = Operation::kId;

    CommandOfNumbers(MappingBase *value, IObserver *source, Numbers... numbers);
    /// \a idRead is this command's id or its older one.
    CommandOfNumbers(int idRead, MappingBase *value, const char **pos, IObserver *source);
    void ExecuteOn(MappingBase *mapping) override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override { return new CommandOfNumbers(*this); }

private:
    std::tuple<Numbers...> m_numbers;
};

/// What each of them does, by name; X(name, id, numbers).
#define SPECTREE_FOR_EACH_MAPPING_COMMAND(X)                                                       \
    X(ClearXValue, 124, double)                                                                    \
    X(ClearRange, 125, double, double)                                                             \
    X(InvalidateRange, 126, double, double)                                                        \
    X(ClearData, 27)                                                                               \
    X(EndOfScan, 128, KRTimeStamp)                                                                 \
    X(SetTimeStamp, 29, KRTimeStamp)                                                               \
    X(EndOfHistory, 32)                                                                            \
    X(SetWidth4Interpolation, 33, double)                                                          \
    X(ResetGrowOnly, 37)                                                                           \
    X(SetScanPerSecond, 38, double)

#define SPECTREE_DECLARE(Name, id, ...)                                                            \
    struct Name##Operation {                                                                       \
        static constexpr int kId = id;                                                             \
        static constexpr const char *kName = "Command" #Name;                                      \
        template <typename... Numbers>                                                             \
        static void apply(MappingBase &mapping, const Numbers &...numbers)                         \
        {                                                                                          \
            mapping.Name(numbers...);                                                              \
        }                                                                                          \
    };                                                                                             \
    using Command##Name = CommandOfNumbers<Name##Operation __VA_OPT__(, ) __VA_ARGS__>;            \
    extern template class SPECTREE_EXPORT                                                          \
        CommandOfNumbers<Name##Operation __VA_OPT__(, ) __VA_ARGS__>;
SPECTREE_FOR_EACH_MAPPING_COMMAND(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

/// True for the ids of these commands, current and older, and of the withdrawn one.
SPECTREE_EXPORT bool isMappingCommand(int id);
/// The command at \a *pos, owned by the caller; null for the withdrawn one, which is skipped.
/// \pre isMappingCommand(id)
SPECTREE_EXPORT Command *createMappingCommand(int id, MappingBase *value, const char **pos,
                                              IObserver *source);

} // namespace values
