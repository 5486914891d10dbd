#pragma once

#include "memmap/logvtdata.h"
#include "valueclasses/valuenumeric.h"
#include "valueclasses/valueselection.h"

#include <cmath>

namespace values {

/// One argument of a log line: the path of a value, the number by which the template names it, and,
/// while it is connected, the value. It belongs to its log, which does the observing.
class SPECTREE_EXPORT LogVTData::ValuePtr {
public:
    /// \a token is "#3" for the index 3; anything behind its first character that isn't a number
    /// from 0 on gives -1, which is never stored.
    ValuePtr(LogVTData &log, const QString &path, const QString &token);
    ValuePtr(const ValuePtr &) = delete;
    ValuePtr &operator=(const ValuePtr &) = delete;
    /// Leaves the value.
    virtual ~ValuePtr();

    /// Empty without a value.
    virtual QString GetText() const = 0;
    /// Null without one.
    ValueBase *GetValue() const { return m_value; }
    /// Finds the value, unless it has one. False, and traced, for no value at the path or one of
    /// another kind.
    bool Connect();
    void Disconnect();

    const QString &GetPath() const { return m_path; }
    const QString &GetToken() const { return m_token; }
    int GetIndex() const { return m_index; }

protected:
    virtual bool Fits(const ValueBase &value) const = 0;
    virtual const char *GetKind() const = 0; ///< the class that fits, for the trace

private:
    LogVTData &m_log;
    QString m_path, m_token;
    int m_index;
    ValueBase *m_value = nullptr;
};

/// An argument of which the value is a \a V.
template <typename V>
class ValuePtrOf : public LogVTData::ValuePtr {
public:
    using LogVTData::ValuePtr::ValuePtr;

protected:
    bool Fits(const ValueBase &value) const override
    {
        return dynamic_cast<const V *>(&value) != nullptr;
    }
    /// Null also while the value dies: an observer in front of the log may change a trigger then.
    const V *Get() const { return dynamic_cast<const V *>(GetValue()); }
};

/// An argument that is a number, multiplied by a factor before it is written.
template <typename V>
class ValuePtrWithFactor : public ValuePtrOf<V> {
public:
    /// A \a factor of 0, or one that isn't a number, acts as 1.
    ValuePtrWithFactor(LogVTData &log, const QString &path, const QString &token,
                       double factor = 1.0)
        : ValuePtrOf<V>(log, path, token),
          m_factor(std::isfinite(factor) && factor != 0 ? factor : 1.0)
    {
    }

protected:
    double GetFactor() const { return m_factor; }

private:
    double m_factor;
};

/// Rounded to a whole number.
class SPECTREE_EXPORT ValuePtr_ValueNumericInt : public ValuePtrWithFactor<ValueNumeric<int>> {
public:
    using ValuePtrWithFactor::ValuePtrWithFactor;
    QString GetText() const override;

protected:
    const char *GetKind() const override { return "ValueNumericInt"; }
};

/// With six decimals.
class SPECTREE_EXPORT ValuePtr_ValueNumericFloat : public ValuePtrWithFactor<ValueNumeric<double>> {
public:
    using ValuePtrWithFactor::ValuePtrWithFactor;
    QString GetText() const override;

protected:
    const char *GetKind() const override { return "ValueNumericFloat"; }
};

/// The number of the chosen item, with six decimals; empty without a choice.
class SPECTREE_EXPORT ValuePtr_ValueNumericSelection : public ValuePtrWithFactor<ValueSelection> {
public:
    using ValuePtrWithFactor::ValuePtrWithFactor;
    QString GetText() const override;

protected:
    const char *GetKind() const override { return "ValueNumericSelection"; }
};

/// The name of the chosen item.
class SPECTREE_EXPORT ValuePtr_ValueSelection : public ValuePtrOf<ValueSelection> {
public:
    using ValuePtrOf::ValuePtrOf;
    QString GetText() const override;

protected:
    const char *GetKind() const override { return "ValueSelection"; }
};

class SPECTREE_EXPORT ValuePtr_ValueString : public ValuePtrOf<Value<QString>> {
public:
    using ValuePtrOf::ValuePtrOf;
    QString GetText() const override;

protected:
    const char *GetKind() const override { return "ValueString"; }
};

} // namespace values
