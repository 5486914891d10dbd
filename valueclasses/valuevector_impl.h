#pragma once

#include "platform/base/krexception.h"
#include "valueclasses/sequenceforms.h"
#include "valueclasses/valuevector.h"

#include <memory>
#include <typeinfo>
#include <utility>

namespace values {

template <typename T, typename F, typename S>
class ValueVector<T, F, S>::WholeForm {
public:
    static std::vector<T> FromStream(const char **pos, int mode)
    {
        return Sequence::read<std::vector<T>, S>(pos, mode);
    }
    static void Append(std::string &out, const std::vector<T> &items, int mode)
    {
        Sequence::append<S>(out, items.begin(), items.size(), mode);
    }
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
    std::vector<T> copy(items);
    if (undoToPresent())
        replaceItems(std::move(copy), source);
}

template <typename T, typename F, typename S>
void ValueVector<T, F, S>::replaceItems(std::vector<T> items, IObserver *source)
{
    m_items.swap(items);
    if (Record())
        RecordCommand(new CommandSetValue(this, m_items, source));
    HasChanged(CC_VALUE, source);
}

template <typename T, typename F, typename S>
void ValueVector<T, F, S>::Clear(IObserver *source)
{
    if (PostIfForeign([this, source] { Clear(source); }))
        return;
    if (!undoToPresent())
        return;
    m_items.clear();
    if (Record())
        RecordCommand(new CommandClear(this, source));
}

template <typename T, typename F, typename S>
void ValueVector<T, F, S>::SetStringValue(QString text, IObserver *source)
{
    std::vector<T> items;
    Sequence::forEachLine(text, [&](const QString &line) { items.push_back(F::GetValue(line)); });
    Detail::requireCount(items.size(), "SetStringValue");
    readItems(std::move(items), source);
}

template <typename T, typename F, typename S>
void ValueVector<T, F, S>::readItems(std::vector<T> items, IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, items = std::move(items), source] { readItems(items, source); });
    if (!undoToPresent())
        return;
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
    const auto &vector = CastForAssign<ValueVector>(other);
    if (PostAssignIfForeign(vector))
        return;
    const LifeWatch own(this), theirs(const_cast<ValueVector *>(&vector));
    ValueBase::operator=(other); // its undo manager comes with it
    if (!own.IsGone() && !theirs.IsGone())
        replaceItems(vector.m_items, nullptr);
}

template <typename T, typename F, typename S>
bool ValueVector<T, F, S>::Compare(const ValueBase *other) const
{
    if (other == this || other == nullptr)
        return other == this;
    if (typeid(*other) != typeid(*this))
        return false;
    const auto &vector = static_cast<const ValueVector &>(*other);
    return vector.GetName() == GetName() &&
           std::equal(m_items.begin(), m_items.end(), vector.m_items.begin(), vector.m_items.end(),
                      Sequence::isSame<T>);
}

template <typename T, typename F, typename S>
void ValueVector<T, F, S>::AddObjectStateStringForTransmission(std::string &out, unsigned int mode)
{
    ValueBase::AddObjectStateStringForTransmission(out, mode);
    CommandSetValue::Write(out, int(mode), m_items);
}

template <typename T, typename F, typename S>
Command *ValueVector<T, F, S>::CreateNextCommand(int id, const char **pos, IObserver *source,
                                                 int mode)
{
    Command *const own = CreateOneOf<CommandSetValue, CommandClear>(id, this, pos, source, mode);
    return own != nullptr ? own : ValueBase::CreateNextCommand(id, pos, source, mode);
}

template <typename T, typename F, typename S>
bool ValueVector<T, F, S>::undoToPresent()
{
    return GetUndoManager() == nullptr || AddUndo(new CommandSetValue(this, m_items, nullptr));
}

} // namespace values
