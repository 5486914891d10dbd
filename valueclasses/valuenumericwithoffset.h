#pragma once

#include "valueclasses/valuenumeric.h"

namespace values {

/// A number that is stored with an offset, as a level behind a gain: the outside sets and sees
/// value and limits without it. Commands, undo and comparison use the stored numbers; the offset
/// itself is neither recorded nor undone.
template <typename T, typename F = DefaultFormat<T>, typename S = StreamFormat<T, F>>
class SPECTREE_EXPORT ValueNumericWithOffset : public ValueNumeric<T, F, S> {
public:
    using Base = ValueNumeric<T, F, S>;
    using Base::Base;
    using Base::SetMinMax;

    void SetValue(T value, IObserver *source) override;
    T GetValue() const override { return this->m_value - m_offset; }
    void SetMinMax(T minimum, T maximum, T step, IObserver *source) override;
    void SetMin(T minimum, IObserver *source) override;
    void SetMax(T maximum, IObserver *source) override;
    T GetMin() const override { return this->m_min - m_offset; }
    T GetMax() const override { return this->m_max - m_offset; }
    void doubleSetChangingValue(double value, IObserver *source) override;
    double doubleGetChangingValue() const override
    {
        return double(this->m_changingValue - m_offset);
    }
    void EndChangingValue(IObserver *source) override;

    T GetOffset() const { return m_offset; }
    /// The outside view stays, the stored numbers move. One that isn't finite is ignored.
    void SetOffset(T offset, IObserver *source);
    /// Offset and limits in one transaction; a value that is outside of the new limits goes to the
    /// nearer one. Notifies CC_VALUE and CC_LIMITS where something changed.
    void SetOffsetMinMax_KeepValueInRange(T offset, T minimum, T maximum, T step,
                                          IObserver *source);

    ValueType GetType() const override { return VTYPE_ValueNumericFloatWithOffset; }
    QString GetTypeName() const override { return QStringLiteral("ValueNumericFloatWithOffset"); }
    void Assign(const ValueBase &other) override;

protected:
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;
    Command *CreateNumberCommand(T number, int kind, IObserver *source, CommandUse use) override;
    void ReplayNumber(T number, int kind, IObserver *source) override;

private:
    void SetMinWithoutOffset(T stored, IObserver *source);
    void SetMaxWithoutOffset(T stored, IObserver *source);

    T m_offset = T(0);
};

/// CommandSetValueNum, on the stored numbers.
template <typename T, typename F = DefaultFormat<T>, typename S = StreamFormat<T, F>>
class SPECTREE_EXPORT CommandSetValueNumWithOffset : public CommandSetValueNum<T, F, S> {
public:
    using CommandSetValueNum<T, F, S>::CommandSetValueNum;
    Command *Clone() const override;
};

extern template class SPECTREE_EXPORT CommandSetValueNumWithOffset<double>;
extern template class SPECTREE_EXPORT ValueNumericWithOffset<double>;

} // namespace values
