#pragma once

#include "platform/base/bytes.h"
#include "valueclasses/commands/commandtags.h"
#include "valueclasses/commands/streamformat.h"
#include "valueclasses/commands/valuecommands.h"

#include <algorithm>
#include <string_view>
#include <tuple>

namespace values {

/// A text as a template argument.
template <std::size_t Size>
struct FixedText {
    consteval FixedText(const char (&from)[Size]) // NOLINT: converts like a text
    {
        std::copy_n(from, Size, text);
    }
    char text[Size];
};

/// One field of a FieldCommand: its type, and its form inside the command.
template <typename T, typename S = StreamFormat<T>>
struct CommandFieldOf {
    using Type = T;
    using Stream = S;
};

namespace Detail {
template <typename Member>
struct ClassOfMember;
template <typename Result, typename Class, typename... Arguments>
struct ClassOfMember<Result (Class::*)(Arguments...)> {
    using type = Class;
};
} // namespace Detail

/// A command that repeats one call: Operation gets the fields, in their order, and the source.
///
/// Its form is the id, the fields with a ";" between two of them in text only, and one closing ";"
/// in every mode; without fields it is the id alone. \a Name stands in the errors of a reader.
template <FixedText Name, int Id, auto Operation, typename... Fields>
class FieldCommand final : public ValueBase::CommandOnValue {
public:
    static constexpr int kId = Id;
    using Target = typename Detail::ClassOfMember<decltype(Operation)>::type;

    FieldCommand(Target *target, typename Fields::Type... fields, IObserver *source)
        : CommandOnValue(Id, valueOf(target), source), m_target(target),
          m_fields(std::move(fields)...)
    {
    }
    /// \throws KRException where a field or the closing ";" is missing.
    FieldCommand(Target *target, const char **pos, IObserver *source, int mode)
        : CommandOnValue(Id, valueOf(target), pos, source), m_target(target),
          m_fields(read(pos, mode))
    {
    }

    void Execute() override
    {
        std::apply([this](const auto &...field) { (m_target->*Operation)(field..., GetSource()); },
                   m_fields);
    }
    void AddCommandString(std::string &out, int mode) const override
    {
        std::apply([&](const auto &...field) { Write(out, mode, field...); }, m_fields);
    }
    Command *Clone() const override { return new FieldCommand(*this); }

    /// Appends such a command without making it.
    static void Write(std::string &out, int mode, const typename Fields::Type &...fields)
    {
        CommandOnValue(Id, nullptr, nullptr).AddCommandString(out, mode);
        [[maybe_unused]] bool isFirst = true;
        ((separate(out, mode, isFirst), AppendField<typename Fields::Stream>(out, fields, mode)),
         ...);
        if constexpr (sizeof...(Fields) > 0)
            out += ';';
    }

private:
    using Values = std::tuple<typename Fields::Type...>;

    static ValueBase *valueOf(Target *target)
    {
        if constexpr (std::is_base_of_v<ValueBase, Target>)
            return target;
        else
            return target->GetValueBase();
    }

    static constexpr const char *functionName()
    {
        return Name.text + (std::string_view(Name.text).rfind(':') + 1);
    }

    static void separate(std::string &out, int mode, bool &isFirst)
    {
        if (!std::exchange(isFirst, false))
            AddSemicolon(out, mode);
    }

    template <typename Field>
    static typename Field::Type readField(const char **pos, int mode, bool &isFirst)
    {
        if (!std::exchange(isFirst, false))
            EatSemicolon(pos, mode);
        const auto readIt = [&] { return Field::Stream::FromStream(pos, mode); };
        // A structure has errors of its own; of any other field only the end can be missing.
        if constexpr (std::is_void_v<typename Detail::DefaultFormat<typename Field::Type>::type>)
            return readIt();
        else
            return Detail::withCommandTags(Name.text, functionName(), readIt);
    }

    static Values read([[maybe_unused]] const char **pos, [[maybe_unused]] int mode)
    {
        [[maybe_unused]] bool isFirst = true;
        Values fields{readField<Fields>(pos, mode, isFirst)...}; // braces: in their order
        if constexpr (sizeof...(Fields) > 0)
            Kelm::readTerminator(pos, Name.text, functionName());
        return fields;
    }

    Target *m_target; // a base of the value, perhaps not ValueBase
    Values m_fields;
};

/// The command of these that has the id, its bytes consumed; null when none has.
template <typename... Commands, typename Target>
Command *CreateOneOf(int id, Target *target, const char **pos, IObserver *source, int mode)
{
    Command *made = nullptr;
    static_cast<void>(
        ((id == Commands::kId && (made = new Commands(target, pos, source, mode), true)) || ...));
    return made;
}

} // namespace values
