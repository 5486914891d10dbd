// The bodies of valuenumeric.h, for the file that instantiates them.
#pragma once

#include "valueclasses/value_impl.h"
#include "valueclasses/valuenumeric.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace values {

namespace Detail {
__extension__ using WideInt = __int128; // holds any number, step and count of this system

/// Whether limits can hold it.
template <typename T>
bool isNumber(T value)
{
    return value == value; // a NaN equals nothing
}

/// value + step * n, no further than any T goes.
template <typename T>
T stepped(T value, T step, int n)
{
    if constexpr (std::is_floating_point_v<T>) {
        return value + step * n;
    } else {
        using Limits = std::numeric_limits<T>;
        const WideInt sum = WideInt(value) + WideInt(step) * n;
        return T(std::clamp<WideInt>(sum, Limits::min(), Limits::max()));
    }
}
} // namespace Detail

template <typename T, typename F, typename S>
ValueNumeric<T, F, S>::ValueNumeric(QString name, TValueState state) : Base(std::move(name), state)
{
}

template <typename T, typename F, typename S>
ValueNumeric<T, F, S>::ValueNumeric(QString name, T value, T minimum, T maximum, T step,
                                    TValueState state)
    : Base(std::move(name), state), m_min(minimum), m_max(maximum), m_step(step)
{
    this->m_value = m_changingValue = Detail::isNumber(value) ? clipped(value) : m_min;
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::SetValue(T value, IObserver *source)
{
    if (!this->PostIfForeign([=, this] { ValueNumeric::SetValue(value, source); }))
        storeValue(value, source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::SetMin(T minimum, IObserver *source)
{
    if (!this->PostIfForeign([=, this] { ValueNumeric::SetMin(minimum, source); }))
        storeLimit(m_min, minimum, Number::MinimumId, source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::SetMax(T maximum, IObserver *source)
{
    if (!this->PostIfForeign([=, this] { ValueNumeric::SetMax(maximum, source); }))
        storeLimit(m_max, maximum, Number::MaximumId, source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::SetStep(T step, IObserver *source)
{
    if (step > T(0) && !this->PostIfForeign([=, this] { ValueNumeric::SetStep(step, source); }))
        storeLimit(m_step, step, Number::StepId, source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::SetMinMax(T minimum, T maximum, T step, IObserver *source)
{
    if (!this->PostIfForeign(
            [=, this] { ValueNumeric::SetMinMax(minimum, maximum, step, source); }))
        storeLimits(minimum, maximum, step, source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::SetMinMax(const QPair<T, T> &limits, IObserver *source)
{
    // The step is read behind the changes that wait.
    if (!this->PostIfForeign([=, this] { ValueNumeric::SetMinMax(limits, source); }))
        SetMinMax(limits.first, limits.second, GetStep(), source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::SetMinMax(const QPair<T, T> &limits, T step, IObserver *source)
{
    SetMinMax(limits.first, limits.second, step, source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::storeValue(T value, IObserver *source)
{
    if (value == this->m_value || !Detail::isNumber(value))
        return;
    m_changingValue = clipped(value);
    changeValue(m_changingValue, source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::changeValue(T value, IObserver *source)
{
    if (value == this->m_value)
        return;
    if (this->GetUndoManager() != nullptr &&
        !this->AddUndo(
            CreateNumberCommand(this->m_value, Number::ValueId, nullptr, CommandUse::Undo)))
        return;
    this->m_value = value;
    if (this->Record())
        forEachValueCommand([&](T number, int kind) {
            this->RecordCommand(CreateNumberCommand(number, kind, source, CommandUse::Record));
        });
    this->NotifyObservers(CC_VALUE, source);
}

/// The commands that set the value as it is: a replay clips, so a limit makes way for a value that
/// stands outside of it.
template <typename T, typename F, typename S>
template <typename Visit>
void ValueNumeric<T, F, S>::forEachValueCommand(Visit visit) const
{
    const T value = this->m_value;
    const bool above = value > m_max, outside = above || value < m_min;
    const int kind = above ? Number::MaximumId : Number::MinimumId;
    if (outside)
        visit(value, kind);
    visit(value, Number::ValueId);
    if (outside)
        visit(above ? m_max : m_min, kind);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::storeLimit(T &limit, T number, int kind, IObserver *source)
{
    if (Detail::isNumber(number))
        this->ChangeField(limit, number, CC_LIMITS, source,
                          [this, kind](T state, IObserver *on, CommandUse use) {
                              return CreateNumberCommand(state, kind, on, use);
                          });
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::storeLimits(T minimum, T maximum, T step, IObserver *source)
{
    struct Change {
        T &field;
        T number;
        int kind;
    };
    const Change changes[] = {{m_min, minimum, Number::MinimumId},
                              {m_max, maximum, Number::MaximumId},
                              {m_step, step, Number::StepId}};
    const auto differs = [](const Change &change) { return !(change.field == change.number); };
    const auto isNumber = [](const Change &change) { return Detail::isNumber(change.number); };
    if (std::none_of(std::begin(changes), std::end(changes), differs) ||
        !std::all_of(std::begin(changes), std::end(changes), isNumber))
        return;
    for (const Change &change : changes)
        if (this->GetUndoManager() != nullptr && differs(change) &&
            !this->AddUndo(
                CreateNumberCommand(change.field, change.kind, nullptr, CommandUse::Undo)))
            return;
    for (const Change &change : changes)
        if (this->Record() && differs(change))
            this->RecordCommand(
                CreateNumberCommand(change.number, change.kind, source, CommandUse::Record));
    for (const Change &change : changes)
        change.field = change.number;
    this->NotifyObservers(CC_LIMITS, source);
}

template <typename T, typename F, typename S>
T ValueNumeric<T, F, S>::clipped(T value) const
{
    return std::min(std::max(value, m_min), m_max);
}

template <typename T, typename F, typename S>
T ValueNumeric<T, F, S>::fromDouble(double number)
{
    if constexpr (std::is_floating_point_v<T>) {
        return T(number);
    } else {
        using Limits = std::numeric_limits<T>;
        if (std::isnan(number))
            return T(0);
        if (number <= double(Limits::min()))
            return Limits::min();
        return number >= double(Limits::max()) ? Limits::max() : T(number);
    }
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::doubleSetValue(double value, IObserver *source)
{
    SetValue(fromDouble(value), source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::doubleSetMin(double minimum, IObserver *source)
{
    SetMin(fromDouble(minimum), source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::doubleSetMax(double maximum, IObserver *source)
{
    SetMax(fromDouble(maximum), source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::doubleSetStep(double step, IObserver *source)
{
    SetStep(fromDouble(step), source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::doubleSetMinMax(double minimum, double maximum, double step,
                                            IObserver *source)
{
    SetMinMax(fromDouble(minimum), fromDouble(maximum), fromDouble(step), source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::StepUp(unsigned short n, IObserver *source)
{
    if (!this->PostIfForeign([=, this] { ValueNumeric::StepUp(n, source); }))
        SetValue(std::min(Detail::stepped(this->GetValue(), GetStep(), n), GetMax()), source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::StepDown(unsigned short n, IObserver *source)
{
    if (!this->PostIfForeign([=, this] { ValueNumeric::StepDown(n, source); }))
        SetValue(std::max(Detail::stepped(this->GetValue(), GetStep(), -n), GetMin()), source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::doubleSetChangingValue(double value, IObserver *source)
{
    if (!this->PostIfForeign([=, this] { ValueNumeric::doubleSetChangingValue(value, source); }))
        storeChangingValue(value, source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::storeChangingValue(double stored, IObserver *source)
{
    const T number = fromDouble(stored);
    if (number == m_changingValue || !Detail::isNumber(number))
        return;
    m_changingValue = clipped(number);
    this->NotifyObservers(CC_CHANGING, source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::EndChangingValue(IObserver *source)
{
    if (!this->PostIfForeign([=, this] { ValueNumeric::EndChangingValue(source); }))
        SetValue(m_changingValue, source);
}

template <typename T, typename F, typename S>
ValueTransaction ValueNumeric<T, F, S>::CreateTransaction(std::initializer_list<TChangeCode> codes,
                                                          IObserver *source)
{
    return ValueTransaction(*this, codes, source);
}

template <typename T, typename F, typename S>
ValueTransaction ValueNumeric<T, F, S>::CreateTransaction(TChangeCode code, IObserver *source)
{
    return ValueTransaction(*this, code, source);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::Assign(const ValueBase &other)
{
    const auto &same = ValueBase::CastForAssign<ValueNumeric>(other);
    if (this->PostAssignIfForeign(same))
        return;
    m_min = same.m_min;
    m_max = same.m_max;
    m_step = same.m_step;
    m_changingValue = same.m_changingValue;
    Base::Assign(other);
}

template <typename T, typename F, typename S>
bool ValueNumeric<T, F, S>::Compare(const ValueBase *other) const
{
    const auto *same = dynamic_cast<const ValueNumeric *>(other);
    return same != nullptr && (same == this || (Base::Compare(other) && m_min == same->m_min &&
                                                m_max == same->m_max && m_step == same->m_step));
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::AddObjectStateStringForTransmission(std::string &out, unsigned int mode)
{
    const auto add = [&](T number, int kind) {
        Number(this, number, kind, nullptr).AddCommandString(out, int(mode));
    };
    ValueBase::AddObjectStateStringForTransmission(out, mode);
    // The first time for readers that know no limits, the last time with the limits in force.
    add(this->m_value, Number::ValueId);
    add(m_min, Number::MinimumId);
    add(m_max, Number::MaximumId);
    add(m_step, Number::StepId);
    forEachValueCommand(add);
}

template <typename T, typename F, typename S>
Command *ValueNumeric<T, F, S>::CreateNextCommand(int id, const char **pos, IObserver *source,
                                                  int mode)
{
    if (Number::IsKind(id))
        return new Number(this, id, pos, source, mode);
    return Base::CreateNextCommand(id, pos, source, mode);
}

template <typename T, typename F, typename S>
Command *ValueNumeric<T, F, S>::CreateNumberCommand(T number, int kind, IObserver *source,
                                                    CommandUse use)
{
    return new Number(this, number, kind, source, use);
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::ReplayNumber(T number, int kind, IObserver *source)
{
    switch (kind) {
    case Number::ValueId:
        return SetValue(number, source);
    case Number::MinimumId:
        return SetMin(number, source);
    case Number::MaximumId:
        return SetMax(number, source);
    case Number::StepId:
        return SetStep(number, source);
    }
}

template <typename T, typename F, typename S>
void ValueNumeric<T, F, S>::RestoreNumber(T number, int kind, IObserver *source)
{
    switch (kind) {
    case Number::ValueId:
        m_changingValue = number;
        return changeValue(number, source);
    case Number::MinimumId:
        return storeLimit(m_min, number, kind, source);
    case Number::MaximumId:
        return storeLimit(m_max, number, kind, source);
    case Number::StepId:
        return storeLimit(m_step, number, kind, source);
    }
}

template <typename T, typename F, typename S>
CommandSetValueNum<T, F, S>::CommandSetValueNum(ValueNumeric<T, F, S> *value, T number, int kind,
                                                IObserver *source, CommandUse use)
    : CommandOnValue(kind, value, source), m_number(number), m_use(use)
{
}

template <typename T, typename F, typename S>
CommandSetValueNum<T, F, S>::CommandSetValueNum(ValueNumeric<T, F, S> *value, int kind,
                                                const char **pos, IObserver *source, int mode)
    : CommandOnValue(kind, value, pos, source),
      m_number(Detail::readField<S, T>(pos, mode, "CommandSetValueNum"))
{
}

template <typename T, typename F, typename S>
void CommandSetValueNum<T, F, S>::Execute()
{
    auto *value = static_cast<ValueNumeric<T, F, S> *>(GetValue());
    if (m_use == CommandUse::Undo)
        value->RestoreNumber(m_number, GetCommandId(), GetSource());
    else
        value->ReplayNumber(m_number, GetCommandId(), GetSource());
}

template <typename T, typename F, typename S>
void CommandSetValueNum<T, F, S>::AddCommandString(std::string &out, int mode) const
{
    Detail::appendCommand<S>(out, GetCommandId(), m_number, mode);
}

template <typename T, typename F, typename S>
Command *CommandSetValueNum<T, F, S>::Clone() const
{
    return new CommandSetValueNum(*this);
}

} // namespace values
