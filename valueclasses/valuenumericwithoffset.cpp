#include "valueclasses/valuenumericwithoffset.h"

#include "valueclasses/valuenumeric_impl.h"

namespace values {

template <typename T, typename F, typename S>
void ValueNumericWithOffset<T, F, S>::SetValue(T value, IObserver *source)
{
    if (this->PostIfForeign([=, this] { ValueNumericWithOffset::SetValue(value, source); }) ||
        value == this->GetValue()) // the sum may differ from what is stored, by rounding
        return;
    this->storeValue(value + m_offset, source);
}

template <typename T, typename F, typename S>
void ValueNumericWithOffset<T, F, S>::SetMinMax(T minimum, T maximum, T step, IObserver *source)
{
    if (!this->PostIfForeign(
            [=, this] { ValueNumericWithOffset::SetMinMax(minimum, maximum, step, source); }))
        this->storeLimits(minimum + m_offset, maximum + m_offset, step, source);
}

template <typename T, typename F, typename S>
void ValueNumericWithOffset<T, F, S>::SetMin(T minimum, IObserver *source)
{
    if (!this->PostIfForeign([=, this] { ValueNumericWithOffset::SetMin(minimum, source); }))
        SetMinWithoutOffset(minimum + m_offset, source);
}

template <typename T, typename F, typename S>
void ValueNumericWithOffset<T, F, S>::SetMax(T maximum, IObserver *source)
{
    if (!this->PostIfForeign([=, this] { ValueNumericWithOffset::SetMax(maximum, source); }))
        SetMaxWithoutOffset(maximum + m_offset, source);
}

template <typename T, typename F, typename S>
void ValueNumericWithOffset<T, F, S>::SetMinWithoutOffset(T stored, IObserver *source)
{
    Base::SetMin(stored, source);
}

template <typename T, typename F, typename S>
void ValueNumericWithOffset<T, F, S>::SetMaxWithoutOffset(T stored, IObserver *source)
{
    Base::SetMax(stored, source);
}

template <typename T, typename F, typename S>
void ValueNumericWithOffset<T, F, S>::doubleSetChangingValue(double value, IObserver *source)
{
    if (!this->PostIfForeign(
            [=, this] { ValueNumericWithOffset::doubleSetChangingValue(value, source); }))
        this->storeChangingValue(value + double(m_offset), source);
}

template <typename T, typename F, typename S>
void ValueNumericWithOffset<T, F, S>::EndChangingValue(IObserver *source)
{
    if (!this->PostIfForeign([=, this] { ValueNumericWithOffset::EndChangingValue(source); }))
        this->storeValue(this->m_changingValue, source);
}

template <typename T, typename F, typename S>
void ValueNumericWithOffset<T, F, S>::SetOffset(T offset, IObserver *source)
{
    if (!std::isfinite(offset) || this->PostIfForeign([=, this] { SetOffset(offset, source); }))
        return;
    const T value = GetValue(), minimum = GetMin(), maximum = GetMax();
    const LifeWatch watch(this);
    m_offset = offset;
    SetMinMax(minimum, maximum, this->m_step, nullptr);
    if (!watch.IsGone())
        SetValue(value, source);
}

template <typename T, typename F, typename S>
void ValueNumericWithOffset<T, F, S>::SetOffsetMinMax_KeepValueInRange(T offset, T minimum,
                                                                       T maximum, T step,
                                                                       IObserver *source)
{
    const auto isNaN = [](T number) { return std::isnan(number); };
    if (!std::isfinite(offset) || isNaN(minimum) || isNaN(maximum) || isNaN(step) ||
        this->PostIfForeign([=, this] {
            SetOffsetMinMax_KeepValueInRange(offset, minimum, maximum, step, source);
        }))
        return;
    const auto limits = [this] {
        return std::make_tuple(this->m_min, this->m_max, this->m_step, m_offset);
    };
    const T valueBefore = this->m_value;
    const auto limitsBefore = limits();
    const LifeWatch watch(this);
    ISupportTransaction &transaction = *this;
    transaction.StartTransaction(source);
    if (!watch.IsGone())
        SetOffset(offset, source);
    if (!watch.IsGone())
        SetMinMax(minimum, maximum, step, nullptr);
    if (!watch.IsGone() && GetValue() > GetMax())
        SetValue(GetMax(), source);
    else if (!watch.IsGone() && GetValue() < GetMin())
        SetValue(GetMin(), source);
    if (watch.IsGone())
        return;
    const bool limitsChanged = limits() != limitsBefore;
    transaction.EndTransaction(this->m_value == valueBefore ? CC_NONE : CC_VALUE, source);
    if (limitsChanged && !watch.IsGone())
        this->NotifyObservers(CC_LIMITS, source);
}

template <typename T, typename F, typename S>
void ValueNumericWithOffset<T, F, S>::Assign(const ValueBase &other)
{
    const auto &same = ValueBase::CastForAssign<ValueNumericWithOffset>(other);
    if (this->PostAssignIfForeign(same))
        return;
    m_offset = same.m_offset;
    Base::Assign(other);
}

template <typename T, typename F, typename S>
Command *ValueNumericWithOffset<T, F, S>::CreateNextCommand(int id, const char **pos,
                                                            IObserver *source, int mode)
{
    using Stored = CommandSetValueNumWithOffset<T, F, S>;
    if (Stored::IsKind(id))
        return new Stored(this, id, pos, source, mode);
    return Base::CreateNextCommand(id, pos, source, mode);
}

template <typename T, typename F, typename S>
Command *ValueNumericWithOffset<T, F, S>::CreateNumberCommand(T number, int kind, IObserver *source,
                                                              CommandUse use)
{
    return new CommandSetValueNumWithOffset<T, F, S>(this, number, kind, source, use);
}

template <typename T, typename F, typename S>
void ValueNumericWithOffset<T, F, S>::ReplayNumber(T number, int kind, IObserver *source)
{
    using Stored = CommandSetValueNumWithOffset<T, F, S>;
    switch (kind) {
    case Stored::ValueId:
        return Base::SetValue(number, source);
    case Stored::MinimumId:
        return SetMinWithoutOffset(number, source);
    case Stored::MaximumId:
        return SetMaxWithoutOffset(number, source);
    case Stored::StepId:
        return this->SetStep(number, source);
    }
}

template <typename T, typename F, typename S>
Command *CommandSetValueNumWithOffset<T, F, S>::Clone() const
{
    return new CommandSetValueNumWithOffset(*this);
}

template class CommandSetValueNumWithOffset<double>;
template class ValueNumericWithOffset<double>;

} // namespace values
