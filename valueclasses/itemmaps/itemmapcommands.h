#pragma once

#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/itemmaps/valueitemmapbase.h"

/// The commands of an item map: uint32 key, image of the item. docs/selections.md tells their
/// forms.
namespace values {

/// Id 20.
template <typename T, typename F, typename A>
class CommandMapSetAt : public ValueBase::CommandOnValue {
public:
    static constexpr int kId = 20;
    CommandMapSetAt(ValueItemMapBase<T, F, A> *map, unsigned int key, T item, IObserver *source);
    CommandMapSetAt(ValueItemMapBase<T, F, A> *map, const char **pos, IObserver *source, int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override { return new CommandMapSetAt(*this); }

private:
    unsigned int m_key;
    T m_item;
};

/// Id 21.
template <typename T, typename F, typename A>
class CommandMapEraseAt : public ValueBase::CommandOnValue {
public:
    static constexpr int kId = 21;
    CommandMapEraseAt(ValueItemMapBase<T, F, A> *map, unsigned int key, IObserver *source);
    CommandMapEraseAt(ValueItemMapBase<T, F, A> *map, const char **pos, IObserver *source,
                      int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override { return new CommandMapEraseAt(*this); }

private:
    unsigned int m_key;
};

/// Id 22.
template <typename T, typename F, typename A>
class CommandMapClear : public ValueBase::CommandOnValue {
public:
    static constexpr int kId = 22;
    CommandMapClear(ValueItemMapBase<T, F, A> *map, IObserver *source);
    CommandMapClear(ValueItemMapBase<T, F, A> *map, const char **pos, IObserver *source);
    void Execute() override;
    Command *Clone() const override { return new CommandMapClear(*this); }
};

} // namespace values
