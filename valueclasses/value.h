#pragma once

#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/scalars/scalarkind.h"
#include "valueclasses/valuebase.h"

namespace values {

template <typename T>
using DefaultFormat = typename Detail::DefaultFormat<T>::type;

/// A value that holds one T. F prints and reads it, S is its form inside a command.
///
/// Changes go the road of ValueBase with code CC_VALUE: an equal value is no change, undo puts the
/// old one back, observers see the new one. A NaN equals nothing, so each set of it is a change.
/// Threads as in ValueBase. The bodies stand in value_impl.h, for a further T.
template <typename T, typename F = DefaultFormat<T>, typename S = StreamFormat<T, F>>
class SPECTREE_EXPORT Value : public ValueBase {
public:
    using ValueTypename = T;
    using Format = F;

    Value() = default;
    /// \throws KRException for a name that ValueBase refuses.
    explicit Value(QString name, TValueState state = VS_NORMAL);
    Value(QString name, T value, TValueState state = VS_NORMAL);

    virtual void SetValue(T value, IObserver *source);
    virtual T GetValue() const { return m_value; }

    /// F reads the text; one that it can't read becomes what F says, as a rule 0.
    void SetStringValue(QString text, IObserver *source) override;
    QString GetStringValue() const override;
    ValueType GetType() const override { return ScalarKind<T>::kType; }
    QString GetTypeName() const override { return QLatin1String(ScalarKind<T>::kTypeName); }
    /// \throws KRException when \a other isn't a value of this kind.
    void Assign(const ValueBase &other) override;
    bool Compare(const ValueBase *other) const override;
    bool operator==(const Value &other) const { return Compare(&other); }

    using ValueBase::OptimizeCommandList;
    /// Drops what a later command makes superfluous: a value or change mark before a value, a
    /// change mark before one, a state before one.
    void OptimizeCommandList(CommandList &commands) override;

protected:
    void AddObjectStateStringForTransmission(std::string &out, unsigned int mode) override;
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;

    T m_value{};
};

/// Id 20: sets the value of a Value.
template <typename T, typename F = DefaultFormat<T>, typename S = StreamFormat<T, F>>
class SPECTREE_EXPORT CommandSetValue : public ValueBase::CommandOnValue {
public:
    static constexpr int kId = 20;
    CommandSetValue(Value<T, F, S> *value, T newValue, IObserver *source);
    /// \throws KRException when the field or its ";" is missing.
    CommandSetValue(Value<T, F, S> *value, const char **pos, IObserver *source, int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;

private:
    T m_newValue;
};

#define SPECTREE_DECLARE_SCALAR(T, FormatClass, Type, Name)                                        \
    extern template class SPECTREE_EXPORT CommandSetValue<T>;                                      \
    extern template class SPECTREE_EXPORT Value<T>;
SPECTREE_FOR_EACH_SCALAR(SPECTREE_DECLARE_SCALAR)
#undef SPECTREE_DECLARE_SCALAR

} // namespace values
