#pragma once

#include "valueclasses/selection/selectionitem.h"
#include "valueclasses/valuebase.h"

#include <QHash>
#include <QStringList>

#include <memory>
#include <vector>

namespace values {

/// An ordered list of named items and the choice among them: what stands behind a combo box or a
/// mode switch. An item is chosen by name, value, key or index; among equal ones the first counts.
/// Views show it through selection/valueselectionmodel.h.
///
/// Every change goes the road of ValueBase: CC_VALUE tells of a choice, CC_ITEM_ADDED of an item,
/// CC_LIST_REPLACED of a deleted one, CC_LIST_CLEARED of an empty list. Undo gives items their old
/// place and restores the choice; where a client couldn't follow it item by item, the whole list is
/// recorded anew.
///
/// Threads:   those of ValueBase. A change that had to be posted answers true.
/// Ownership: items belong to the selection; pointers to them hold until the item is deleted.
/// Cost:      a lookup by name is a hash lookup, every other one walks the items.
class SPECTREE_EXPORT ValueSelection : public ValueBase {
public:
    class CommandSelect; // the commands stand in selection/selectioncommands.h
    class CommandAddOrDeleteItem;
    class CommandDeleteItems;
    /// By what an item is chosen: the id of the command.
    enum ChoiceKind : int { ByName = 20, ByValue = 21, ByKey = 22, ByIndex = 26 };
    /// What tells an item; of the fields, the one that the kind names counts.
    struct Choice {
        ChoiceKind kind;
        QString name;
        double value = 0.0;
        Kelm::Long number; ///< key or index, -1 as an index for none
    };

    ValueSelection();
    explicit ValueSelection(QString name, TValueState state = VS_NORMAL);
    /// Copies the items and the choice, and of the base what it copies.
    ValueSelection(const ValueSelection &other);
    ValueSelection &operator=(const ValueSelection &other);
    ~ValueSelection() override;

    /// Chooses the item of that name.
    void SetStringValue(QString text, IObserver *source) override;
    /// The name of the chosen item, or nothing.
    QString GetStringValue() const override;
    ValueType GetType() const override { return VTYPE_ValueSelection; }
    QString GetTypeName() const override;
    /// \throws KRException for a value of another class.
    void Assign(const ValueBase &other) override;
    bool Compare(const ValueBase *other) const override;
    bool operator==(const ValueSelection &other) const { return ValueSelection::Compare(&other); }
    using ValueBase::OptimizeCommandList;
    /// Of the choices the last one stays, and of what comes before an emptied list nothing; other
    /// commands than those of a selection all stay.
    void OptimizeCommandList(CommandList &commands) override;

    // The choice. False, with nothing changed, when there is no such item.
    virtual SelectionItem *GetCurrentItem() const; ///< null without a choice
    virtual bool Select(Kelm::Long key, IObserver *source);
    /// With \a nearest the item whose value is nearest, when none has exactly this one.
    virtual bool Select(double value, IObserver *source, bool nearest);
    virtual bool Select(const wchar_t *name, IObserver *source);
    virtual bool Select(const QString &name, IObserver *source);
    bool Select(int key, IObserver *source) { return Select(Kelm::Long(key), source); }
    bool SelectIndex(Kelm::Long index, IObserver *source);
    /// One item on or back; from the last on to the first, and the other way round. Without a
    /// choice \a forward takes the first and back the last one.
    bool SelectNext(bool forward, IObserver *source);
    int GetCurrentIndex() const { return m_current; } ///< -1 without a choice
    /// A mark for programs, such as "the user left the preset"; every change of the choice puts it
    /// back to 0. A plain store: neither recorded nor notified.
    int GetChanged() const { return m_changed; }
    void SetChanged(int changed) { m_changed = changed; }

    // The items
    /// Items with these names; value and key are the place in the selection. One transaction.
    virtual void AddItems(const QStringList &names, IObserver *source);
    virtual void AddItem(const QString &name, double value, Kelm::Long key, IObserver *source);
    /// Owns \a item from the call on.
    virtual void AddItem(SelectionItem *item, IObserver *source);
    /// Appends copies of the other's items, in one transaction.
    virtual void AddItemsFrom(const ValueSelection &other, IObserver *source);
    /// Appends the items, in one transaction; nothing for none.
    void AppendItems(const std::vector<SelectionItem> &items, IObserver *source);
    /// These items, and the choice of that index among them; one transaction.
    void ReplaceItems(const std::vector<SelectionItem> &items, Kelm::Long chosen,
                      IObserver *source);
    std::vector<SelectionItem> GetItems() const; ///< copies
    /// Deletes the first item with the name, value and key of \a item, which may be one of this
    /// selection. The choice stays on its item; when that one goes, none is chosen.
    virtual bool DeleteItem(SelectionItem *item, IObserver *source);
    bool DeleteItem(const QString &name, double value, Kelm::Long key, IObserver *source);
    virtual void DeleteItems(IObserver *source);
    virtual int GetItemCount() const;
    virtual int GetItemIndex(Kelm::Long key) const;            ///< -1 for an unknown key
    virtual SelectionItem *GetItem(const QString &name) const; ///< these three give null
    virtual SelectionItem *GetItem(double value) const;        ///< when there is none
    virtual SelectionItem *GetItem(Kelm::Long key) const;
    virtual double GetCurrentValue() const; ///< 0 without a choice
    SelectionItem *GetItem(int key) const { return GetItem(Kelm::Long(key)); }
    SelectionItem *GetItemAt(int index) const;                       ///< null outside of the list
    virtual Kelm::Long GetKeyForItemName(const QString &name) const; ///< 0 for an unknown name
    virtual QString GetItemNameForKey(Kelm::Long key) const;         ///< empty for an unknown key

protected:
    void AddObjectStateStringForTransmission(std::string &out, unsigned int mode) override;
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;

private:
    using Items = std::vector<std::unique_ptr<SelectionItem>>;

    int indexOfName(const QString &name) const;
    int indexOfValue(double value, bool nearest) const;
    int indexOfItem(const QString &name, double value, Kelm::Long key) const;
    bool choose(int index, ChoiceKind kind, IObserver *source);
    void chooseNone(IObserver *source);
    Choice describe(ChoiceKind kind, int index) const;
    int find(const Choice &choice) const;
    bool restoreChoice(const Choice &choice, int index);
    void insertItem(int position, std::unique_ptr<SelectionItem> item, IObserver *source);
    bool removeItemAt(int position, const SelectionItem &expected, IObserver *source);
    void removeItem(int position, IObserver *source);
    void recordItems(IObserver *source);
    void copyItems(const ValueSelection &other);

    Items m_items;
    int m_current = -1;
    int m_changed = 0;
    mutable QHash<QString, int> m_firstByName; // empty: to be built by the next lookup
};

} // namespace values
