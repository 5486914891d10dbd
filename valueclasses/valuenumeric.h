#pragma once

#include "valueclasses/scalars/ivaluenumeric.h"
#include "valueclasses/value.h"

#include <QPair>

#include <initializer_list>

namespace values {

template <typename T, typename F, typename S>
class CommandSetValueNum;

/// A number with minimum, maximum and step; at first 0, 1 and 1.
///
/// SetValue clips to the limits. A change of the limits leaves the value alone, even outside of
/// them; the next SetValue clips. Undo and the strings of a value outside of its limits restore it
/// there. A double beyond the range of a whole T becomes the nearest T, a NaN 0. A double that is
/// no number has no place between limits: the setters ignore it. Limits and step notify CC_LIMITS.
/// Threads as in ValueBase. Bodies: valuenumeric_impl.h.
template <typename T, typename F = DefaultFormat<T>, typename S = StreamFormat<T, F>>
class SPECTREE_EXPORT ValueNumeric : public Value<T, F, S>, public IValueNumeric {
public:
    using Base = Value<T, F, S>;

    ValueNumeric() = default;
    explicit ValueNumeric(QString name, TValueState state = VS_NORMAL);
    /// Clips \a value to the limits.
    ValueNumeric(QString name, T value, T minimum, T maximum, T step = T(1),
                 TValueState state = VS_NORMAL);

    void SetValue(T value, IObserver *source) override;

    /// Notifies once for all that differs. The order of the limits isn't checked.
    virtual void SetMinMax(T minimum, T maximum, T step, IObserver *source);
    virtual void SetMin(T minimum, IObserver *source);
    virtual void SetMax(T maximum, IObserver *source);
    /// A step that isn't positive is ignored.
    virtual void SetStep(T step, IObserver *source);
    virtual T GetMin() const { return m_min; }
    virtual T GetMax() const { return m_max; }
    virtual T GetStep() const { return m_step; }
    virtual ValueTransaction CreateTransaction(std::initializer_list<TChangeCode> codes,
                                               IObserver *source);
    QPair<T, T> GetMinMax() const { return {GetMin(), GetMax()}; }
    void SetMinMax(const QPair<T, T> &limits, IObserver *source);
    void SetMinMax(const QPair<T, T> &limits, T step, IObserver *source);

    ValueBase *GetValueBase() override { return this; }
    void doubleSetValue(double value, IObserver *source) override;
    void doubleSetMin(double minimum, IObserver *source) override;
    void doubleSetMax(double maximum, IObserver *source) override;
    void doubleSetStep(double step, IObserver *source) override;
    void StepUp(unsigned short n, IObserver *source) override;
    void StepDown(unsigned short n, IObserver *source) override;
    double doubleGetMin() const override { return double(GetMin()); }
    double doubleGetMax() const override { return double(GetMax()); }
    double doubleGetStep() const override { return double(GetStep()); }
    double doubleGetValue() const override { return double(this->GetValue()); }
    void doubleSetChangingValue(double value, IObserver *source) override;
    double doubleGetChangingValue() const override { return double(m_changingValue); }
    void EndChangingValue(IObserver *source) override;
    ValueTransaction CreateTransaction(TChangeCode code, IObserver *source) override;
    double castToValueType(double value) const override { return double(fromDouble(value)); }
    void doubleSetMinMax(double minimum, double maximum, double step, IObserver *source) override;

    ValueType GetType() const override { return NumericKind<T>::kType; }
    QString GetTypeName() const override { return QLatin1String(NumericKind<T>::kTypeName); }
    void Assign(const ValueBase &other) override;
    bool Compare(const ValueBase *other) const override;
    bool operator==(const ValueNumeric &other) const { return Compare(&other); }

protected:
    friend class CommandSetValueNum<T, F, S>;

    void AddObjectStateStringForTransmission(std::string &out, unsigned int mode) override;
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;
    /// A new command of this class's family; \a kind is its id.
    virtual Command *CreateNumberCommand(T number, int kind, IObserver *source, CommandUse use);
    /// What a recorded command does with the stored \a number.
    virtual void ReplayNumber(T number, int kind, IObserver *source);
    /// What an undo command does: as it was, whatever limits it now.
    void RestoreNumber(T number, int kind, IObserver *source);

    // What the setters do with stored numbers, on a thread that may.
    void storeValue(T value, IObserver *source);
    void storeLimit(T &limit, T number, int kind, IObserver *source);
    void storeLimits(T minimum, T maximum, T step, IObserver *source);
    void storeChangingValue(double stored, IObserver *source);
    static T fromDouble(double number);

    T m_min = T(0);
    T m_max = T(1);
    T m_step = T(1);
    T m_changingValue = T(0); // a stored number, as the three above

private:
    using Number = CommandSetValueNum<T, F, S>;

    void changeValue(T value, IObserver *source);
    template <typename Visit>
    void forEachValueCommand(Visit visit) const;
    T clipped(T value) const;
};

/// Ids 20 to 23: sets the value, the minimum, the maximum or the step of a ValueNumeric.
template <typename T, typename F = DefaultFormat<T>, typename S = StreamFormat<T, F>>
class SPECTREE_EXPORT CommandSetValueNum : public ValueBase::CommandOnValue {
public:
    enum Kind : int { ValueId = 20, MinimumId = 21, MaximumId = 22, StepId = 23 };
    static constexpr bool IsKind(int id) { return id >= ValueId && id <= StepId; }

    CommandSetValueNum(ValueNumeric<T, F, S> *value, T number, int kind, IObserver *source,
                       CommandUse use = CommandUse::Record);
    /// \throws KRException when the field or its ";" is missing.
    CommandSetValueNum(ValueNumeric<T, F, S> *value, int kind, const char **pos, IObserver *source,
                       int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;

private:
    T m_number;
    CommandUse m_use = CommandUse::Record;
};

#define SPECTREE_DECLARE_NUMERIC(T, FormatClass, Type, Name)                                       \
    extern template class SPECTREE_EXPORT CommandSetValueNum<T>;                                   \
    extern template class SPECTREE_EXPORT ValueNumeric<T>;
SPECTREE_FOR_EACH_NUMERIC(SPECTREE_DECLARE_NUMERIC)
#undef SPECTREE_DECLARE_NUMERIC

} // namespace values
