#pragma once

#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/scalars/scalarkind.h"
#include "valueclasses/valuebase.h"

#include <memory>
#include <vector>

namespace values {

/// An array of numbers that changes as a whole, on the road of ValueBase with code CC_VALUE.
/// Threads as in ValueBase.
template <typename T>
class SPECTREE_EXPORT ValueStream : public ValueBase {
public:
    using ValueTypename = T;

    using ValueBase::ValueBase;

    /// Copies \a count elements.
    void SetValue(const T *data, unsigned int count, IObserver *source);
    /// A copy, the caller's; null without elements.
    std::unique_ptr<T[]> GetValue(int &count) const;
    /// The elements, until the next change; null without any.
    const T *GetReferenceToValue(int &count) const;
    static bool CompareArrays(const T *a, unsigned int countA, const T *b, unsigned int countB);

    /// The little-endian bytes of the elements, one a character. \throws KRException for a text
    /// that doesn't hold whole elements.
    void SetStringValue(QString text, IObserver *source) override;
    QString GetStringValue() const override;
    /// The elements in decimal, parted by blanks; nothing is lost. \throws KRException for anything
    /// else.
    void SetStringValueReadable(const QString &text, IObserver *source);
    QString GetStringValueReadable() const;

    ValueType GetType() const override { return StreamKind<T>::kType; }
    QString GetTypeName() const override { return QLatin1String(StreamKind<T>::kTypeName); }
    void Assign(const ValueBase &other) override;
    bool Compare(const ValueBase *other) const override;

protected:
    void AddObjectStateStringForTransmission(std::string &out, unsigned int mode) override;
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;

private:
    std::vector<T> m_data;
};

/// Id 20: sets the elements of a ValueStream. Meant for mode 1; in text mode the readable list.
template <typename T>
class SPECTREE_EXPORT CommandSetValueStr : public ValueBase::CommandOnValue {
public:
    static constexpr int kId = 20;
    CommandSetValueStr(ValueStream<T> *value, std::vector<T> data, IObserver *source);
    CommandSetValueStr(ValueStream<T> *value, const char **pos, IObserver *source, int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;

private:
    std::vector<T> m_data;
};

#define SPECTREE_DECLARE_STREAM(T, FormatClass, Type, Name)                                        \
    extern template class SPECTREE_EXPORT CommandSetValueStr<T>;                                   \
    extern template class SPECTREE_EXPORT ValueStream<T>;
SPECTREE_FOR_EACH_STREAM(SPECTREE_DECLARE_STREAM)
#undef SPECTREE_DECLARE_STREAM

} // namespace values
