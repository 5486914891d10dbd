#pragma once

#include "platform/base/krexception.h"
#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/sequenceforms.h"
#include "valueclasses/valuevector.h"

#include <utility>

namespace values {

template <typename T, typename F, typename S>
class ValueVector<T, F, S>::CommandSetValue : public ValueBase::CommandOnValue {
public:
    static constexpr int kId = 20;

    CommandSetValue(ValueBase *vector, std::vector<T> items, IObserver *source)
        : CommandOnValue(kId, vector, source), m_items(std::move(items))
    {
    }
    CommandSetValue(ValueBase *vector, const char **pos, IObserver *source, int mode)
        : CommandOnValue(kId, vector, pos, source)
    {
        Sequence::read<S>(pos, mode, "ValueVector::CommandSetValue", "CommandSetValue",
                          [this](T &&item) { m_items.push_back(std::move(item)); });
    }
    void Execute() override
    {
        static_cast<ValueVector *>(GetValue())->SetValue(m_items, GetSource());
    }
    void AddCommandString(std::string &out, int mode) const override { write(out, m_items, mode); }
    Command *Clone() const override { return new CommandSetValue(*this); }

    static void write(std::string &out, const std::vector<T> &items, int mode)
    {
        CommandOnValue(kId, nullptr, nullptr).AddCommandString(out, mode);
        Sequence::append<S>(out, items.begin(), items.size(), mode);
    }

private:
    std::vector<T> m_items;
};

template <typename T, typename F, typename S>
class ValueVector<T, F, S>::CommandClear : public ValueBase::CommandOnValue {
public:
    static constexpr int kId = 22;

    using CommandOnValue::CommandOnValue;
    void Execute() override { static_cast<ValueVector *>(GetValue())->Clear(GetSource()); }
    Command *Clone() const override { return new CommandClear(*this); }
};

template <typename T, typename F, typename S>
ValueVector<T, F, S>::ValueVector(QString name, TValueState state)
    : ValueBase(std::move(name), state)
{
}

namespace Detail {
inline void requireCount(std::size_t count, const char *functionName)
{
    if (count > Sequence::kMaxCount)
        throw KRException(QStringLiteral("vector<T> too long"), "valueclasses/valuevector_impl",
                          "ValueVector", functionName, __LINE__);
}
} // namespace Detail

template <typename T, typename F, typename S>
void ValueVector<T, F, S>::SetValue(const std::vector<T> &items, IObserver *source)
{
    Detail::requireCount(items.size(), "SetValue");
    if (IsChangeForeign())
        return PostChange([this, items, source] { SetValue(items, source); });
    std::vector<T> replaced(items);
    undoToPresent();
    m_items.swap(replaced);
    if (Record())
        RecordCommand(new CommandSetValue(this, m_items, source));
    HasChanged(CC_VALUE, source);
}

template <typename T, typename F, typename S>
void ValueVector<T, F, S>::Clear(IObserver *source)
{
    if (PostIfForeign([this, source] { Clear(source); }))
        return;
    undoToPresent();
    m_items.clear();
    if (Record())
        RecordCommand(new CommandClear(CommandClear::kId, this, source));
}

template <typename T, typename F, typename S>
void ValueVector<T, F, S>::SetStringValue(QString text, IObserver *source)
{
    std::vector<T> items;
    Sequence::forEachLine(text, [&](const QString &line) { items.push_back(F::GetValue(line)); });
    Detail::requireCount(items.size(), "SetStringValue");
    replace(std::move(items), source);
}

template <typename T, typename F, typename S>
void ValueVector<T, F, S>::replace(std::vector<T> items, IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, items = std::move(items), source] { replace(items, source); });
    undoToPresent();
    m_items.swap(items);
    HasChanged(CC_VALUE, source);
}

template <typename T, typename F, typename S>
QString ValueVector<T, F, S>::GetStringValue() const
{
    QString text;
    for (const T &item : m_items)
        text += F::GetString(item) + QLatin1String(" - ");
    return text;
}

template <typename T, typename F, typename S>
ValueType ValueVector<T, F, S>::GetType() const
{
    return VectorKind<T, F>::kType;
}

template <typename T, typename F, typename S>
QString ValueVector<T, F, S>::GetTypeName() const
{
    return QString::fromLatin1(VectorKind<T, F>::kTypeName);
}

template <typename T, typename F, typename S>
void ValueVector<T, F, S>::Assign(const ValueBase &other)
{
    ValueVector::operator=(CastForAssign<ValueVector>(other));
    HasChanged(CC_VALUE, nullptr);
}

template <typename T, typename F, typename S>
bool ValueVector<T, F, S>::Compare(const ValueBase *other) const
{
    if (other == this)
        return true;
    const auto *vector = dynamic_cast<const ValueVector *>(other);
    return vector != nullptr && vector->GetName() == GetName() && vector->m_items == m_items;
}

template <typename T, typename F, typename S>
void ValueVector<T, F, S>::AddObjectStateStringForTransmission(std::string &out, unsigned int mode)
{
    ValueBase::AddObjectStateStringForTransmission(out, mode);
    CommandSetValue::write(out, m_items, int(mode));
}

template <typename T, typename F, typename S>
Command *ValueVector<T, F, S>::CreateNextCommand(int id, const char **pos, IObserver *source,
                                                 int mode)
{
    switch (id) {
    case CommandSetValue::kId:
        return new CommandSetValue(this, pos, source, mode);
    case CommandClear::kId:
        return new CommandClear(id, this, pos, source);
    default:
        return ValueBase::CreateNextCommand(id, pos, source, mode);
    }
}

template <typename T, typename F, typename S>
void ValueVector<T, F, S>::undoToPresent()
{
    if (GetUndoManager() != nullptr)
        AddUndo(new CommandSetValue(this, m_items, nullptr));
}

} // namespace values
