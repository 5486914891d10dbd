#pragma once

#include "valueclasses/commands/fieldcommand.h"

#include <list>

namespace values {

/// A sequence that is changed element by element, each change a command. T is the element, F its
/// text format, S its form inside a command. docs/lists.md tells the kinds and their forms.
///
/// A change goes the road of every setter (ValueBase) without a test for equality: undo, store,
/// record, HasChanged. HasChanged is recorded, too, and ends a suppression of notifications. While
/// observers run the list has changed already.
///
/// Elements are found by value, the first equal one: undoing an insertion removes that one. A walk
/// (First, Next, Current) has one position; a change that removes its element moves it on.
///
/// Threads: as ValueBase.
/// Errors:  a text that isn't the form of an element throws KRException, with nothing changed.
///          Positions out of range are reported to the trace or answered with Null().
template <typename T, typename F = typename Detail::DefaultFormat<T>::type,
          typename S = StreamFormat<T, F>>
class SPECTREE_EXPORT ValueList : public ValueBase {
public:
    using Element = T;
    using Format = F;

    static constexpr int kToEnd = -1; ///< as a position: behind the last element

    ValueList() = default;
    explicit ValueList(QString name, TValueState state = VS_NORMAL);
    /// As operator=; the walk is at the end.
    ValueList(const ValueList &other);
    /// Copies the base and the elements, and moves the walk to the first; tells nobody.
    ValueList &operator=(const ValueList &other);

    // Changes
    void PushBack(const T &value, IObserver *source);
    void PushFront(const T &value, IObserver *source);
    /// In front of the first element equal to \a before; reported, and at the end, without one.
    void Insert(const T &before, const T &value, IObserver *source);
    /// In front of the element at \a position, or at the end where there is none.
    void InsertAt(Kelm::Long position, const T &value, IObserver *source);
    /// Removes the first equal element; does nothing without one.
    void Erase(const T &value, IObserver *source);
    /// Reported, and nothing done, where there is no element.
    void EraseAt(Kelm::Long position, IObserver *source);
    /// Removes the element of the walk and moves it to the next; does nothing at the end.
    void EraseCurrent(IObserver *source);
    /// Replaces all and moves the walk to the first element.
    void SetList(const std::list<T> &items, IObserver *source);
    void Clear(IObserver *source);

    // The walk
    /// Each yields the element, or Null() at the end.
    const T &First();
    /// From the end on to the first element.
    const T &Next();
    const T &Current() const;
    /// True on the last element and at the end.
    bool IsLast() const;
    void ToBegin() { m_current = m_items.begin(); }

    // Reading
    bool Empty() const { return m_items.empty(); }
    std::size_t Size() const { return m_items.size(); }
    /// Null() where there is none. Linear.
    const T &At(Kelm::Long position) const;
    const std::list<T> &GetList() const { return m_items; }
    /// A default element.
    static const T &Null();
    /// What NotifyListChanged was given last; -1 and a default element at first.
    Kelm::Long GetLastListCmdIndex() const { return m_lastIndex; }
    const T &GetLastListCmdItem() const { return m_lastItem; }
    bool operator==(const ValueList &other) const { return ValueList::Compare(&other); }

    /// One element a line; the first empty line ends the text. Empties the list and appends, in a
    /// transaction of code CC_LIST_REPLACED.
    void SetStringValue(QString text, IObserver *source) override;
    /// Each element's text and a line feed.
    QString GetStringValue() const override;
    ValueType GetType() const override;
    QString GetTypeName() const override;
    /// As operator=; forgets the last list command, records the elements and ends with
    /// CC_LIST_REPLACED. Without undo. \throws KRException for a value of another class
    void Assign(const ValueBase &other) override;
    /// Class, name and elements.
    bool Compare(const ValueBase *other) const override;
    using ValueBase::OptimizeCommandList;
    /// Behind the clones of what was recorded: drops the list commands in front of the last Clear.
    void OptimizeCommandList(CommandList &commands) override;

    /// The whole list as a field: what doesn't fit into its count follows the command as insertions
    /// at the end.
    class WholeForm;
    using CommandInsert = FieldCommand<"ValueList::CommandInsert", 20, &ValueList::InsertAt,
                                       CommandFieldOf<Kelm::Long>, CommandFieldOf<T, S>>;
    using CommandErase =
        FieldCommand<"ValueList::CommandErase", 21, &ValueList::Erase, CommandFieldOf<T, S>>;
    using CommandClear = FieldCommand<"ValueList::CommandClear", 22, &ValueList::Clear>;
    using CommandSetList = FieldCommand<"ValueList::CommandSetList", 23, &ValueList::SetList,
                                        CommandFieldOf<std::list<T>, WholeForm>>;

protected:
    std::list<T> &Items() { return m_items; }
    /// For subclasses: remembers index and item, and calls HasChanged.
    void NotifyListChanged(TChangeCode code, Kelm::Long index, const T &item, IObserver *source);
    void AddObjectStateStringForTransmission(std::string &out, unsigned int mode) override;
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;

private:
    using Iterator = typename std::list<T>::iterator;

    Iterator at(Kelm::Long position);
    Kelm::Long indexOf(Iterator item);
    void insert(Iterator before, Kelm::Long recordedAs, const T &value, IObserver *source);
    void erase(Iterator item, IObserver *source);
    void setItems(std::list<T> items, IObserver *source);
    void replaceItems(std::list<T> items, IObserver *source);
    void refill(const std::list<T> &items, IObserver *source);
    [[nodiscard]] bool undoToPresent(); // as AddUndo

    std::list<T> m_items;
    Iterator m_current = m_items.end();
    Kelm::Long m_lastIndex = -1;
    T m_lastItem{};
};

/// Type number and registered name of a list kind: `kType` and `kTypeName`.
template <typename T, typename F>
struct ListKind;

} // namespace values
