#pragma once

#include "valueclasses/valuetransaction.h"

namespace values {

class ValueBase;

/// A number with limits and a step, for callers that needn't know its type: all in double, in the
/// unit of the value, as the outside sees it. ValueNumeric tells the rules.
class SPECTREE_EXPORT IValueNumeric {
public:
    virtual ~IValueNumeric() = default;
    virtual ValueBase *GetValueBase() = 0;
    virtual void doubleSetValue(double value, IObserver *source) = 0;
    virtual void doubleSetMin(double minimum, IObserver *source) = 0;
    virtual void doubleSetMax(double maximum, IObserver *source) = 0;
    virtual void doubleSetStep(double step, IObserver *source) = 0;
    /// \a n steps towards a limit, and no further.
    virtual void StepUp(unsigned short n, IObserver *source) = 0;
    virtual void StepDown(unsigned short n, IObserver *source) = 0;
    virtual double doubleGetMin() const = 0;
    virtual double doubleGetMax() const = 0;
    virtual double doubleGetStep() const = 0;
    virtual double doubleGetValue() const = 0;
    /// Where a slider stands that is being dragged: notifies CC_CHANGING, leaves the value alone,
    /// makes no command.
    virtual void doubleSetChangingValue(double value, IObserver *source) = 0;
    virtual double doubleGetChangingValue() const = 0;
    /// Makes the changing value the value.
    virtual void EndChangingValue(IObserver *source) = 0;
    virtual ValueTransaction CreateTransaction(TChangeCode code, IObserver *source) = 0;
    /// \a value as the type of the value holds it: cut towards zero for whole numbers.
    virtual double castToValueType(double value) const = 0;
    /// All three at once, with one notification.
    virtual void doubleSetMinMax(double minimum, double maximum, double step,
                                 IObserver *source) = 0;
};

} // namespace values
