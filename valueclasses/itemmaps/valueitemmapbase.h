#pragma once

#include "valueclasses/itemmaps/changelog.h"
#include "valueclasses/valuebase.h"

#include <concepts>
#include <list>
#include <unordered_map>

namespace values {

/// An item that knows its key.
template <typename T>
concept KeyItem = std::derived_from<T, valueitemmap::IKeyItemTemplate<unsigned int>>;

/// The format of an item: its printed text, and the image that stands in commands, closed by ";".
template <typename F, typename T>
concept ItemFormat = requires(const T &item, T &read, const char **pos)
{
    {
        F::GetString(item)
        } -> std::convertible_to<QString>;
    {
        F::toStandardString(item)
        } -> std::convertible_to<std::string>;
    {
        F::fromCharStream(pos, read)
        } -> std::same_as<bool>; // false: no ";" behind the image
};

/// A value that holds records under 32-bit keys, with a log of its last 100 changes. `A` is the
/// adapter that gives views the texts and icons of a record's columns.
///
/// Every change that changes something is undoable, logged, recorded and told with HasChanged, code
/// CC_VALUE: a transaction doesn't hold it back. Assign only logs. A stored item that knows its key
/// knows the one that it stands under.
///
/// Threads: those of ValueBase. A change that had to be posted answers with the key that it got.
template <typename T, typename F, typename A>
requires ItemFormat<F, T>
class SPECTREE_EXPORT ValueItemMapBase
    : public ValueBase,
      public valueitemmap::IHasChangeLogValueTemplate<unsigned int> {
public:
    using Items = std::unordered_map<unsigned int, T>;

    ValueItemMapBase() = default;
    explicit ValueItemMapBase(QString name, TValueState state = VS_NORMAL);
    ValueItemMapBase(const ValueItemMapBase &other) = default;
    /// Assign: the own log goes on, so that its readers see the change.
    ValueItemMapBase &operator=(const ValueItemMapBase &other);

    /// The text of one item and how many more there are; empty for an empty map.
    QString GetStringValue() const override;
    /// \throws KRException for a value of another class.
    void Assign(const ValueBase &other) override;
    bool Compare(const ValueBase *other) const override;
    bool operator==(const ValueItemMapBase &other) const
    {
        return ValueItemMapBase::Compare(&other);
    }

    /// Adds or replaces the record; the invalid key takes a new one. Returns the key. An equal
    /// record changes nothing.
    virtual unsigned int SetAt(unsigned int key, const T &item, IObserver *source);
    /// Nothing for a key that isn't there.
    virtual void EraseAt(unsigned int key, IObserver *source);
    virtual void Clear(IObserver *source);
    /// The first free key from the number of records on: keys of erased records come back.
    virtual unsigned int CreateNewUniqueKey() const;

    /// These three take the key from the item; one that has none gets a new key.
    unsigned int Add(const T &item, IObserver *source);
    unsigned int Set(const T &item, IObserver *source) { return Add(item, source); }
    unsigned int PushBack(const T &item, IObserver *source) { return Add(item, source); }
    /// Sets all items in one transaction. With \a eraseOthers no other records remain; with
    /// \a compare these go one by one and equal records stay untouched, without it the map is
    /// cleared first.
    void Set(const std::list<T> &items, bool eraseOthers, bool compare,
             IObserver *source) requires KeyItem<T>;
    void Set(const Items &items, bool eraseOthers, bool compare, IObserver *source);
    /// The map holds \a items and nothing else.
    void SetMap(const Items &items, IObserver *source) { Set(items, true, true, source); }

    std::size_t Size() const { return m_items.size(); }
    /// \throws KRException for a key that isn't there.
    const T &At(unsigned int key) const;
    /// The key of a record that equals \a item, the invalid key when there is none. Walks the map.
    unsigned int find(const T &item) const;
    const Items &GetItems() const { return m_items; }
    static constexpr unsigned int GetInvalidKey() { return valueitemmap::InvalidKey; }

    const valueitemmap::ChangeLog &GetChangeLog() const override { return m_changeLog; }
    std::vector<unsigned int> IndexVector() const override;
    bool Contains(unsigned int key) const override { return m_items.contains(key); }
    ValueBase *GetValueBase() override { return this; }

protected:
    void AddObjectStateStringForTransmission(std::string &out, unsigned int mode) override;
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;

    /// The record, or null. Who changes it in place logs the change.
    T *GetStored(unsigned int key);
    void LogChange(valueitemmap::ChangeKind kind, unsigned int key);

private:
    template <typename Range, typename KeyOf, typename ItemOf>
    void setAll(const Range &range, bool eraseOthers, bool compare, IObserver *source, KeyOf keyOf,
                ItemOf itemOf);

    Items m_items;
    valueitemmap::ChangeLog m_changeLog{valueitemmap::ChangeLogCapacity};
    std::uint64_t m_nextSerial = 0;
};

} // namespace values
