#pragma once

#include "valueclasses/itemmaps/valueitemmapbase.h"
#include "valueclasses/selection/imultiselection.h"
#include "valueclasses/selection/multiselectionitem.h"

namespace values {

/// Items that can each be selected and enabled, under keys that are their indices: what stands
/// behind a list of check boxes or, where the kind is exclusive, of radio buttons.
///
/// An exclusive kind has at most one selected item: selecting one deselects the other, also when
/// the item comes selected. Undo and commands repeat that at the far end.
///
/// Threads: those of ValueBase. A change that had to be posted answers true.
template <typename Item, typename Format, typename Adapter, bool Exclusive>
class SPECTREE_EXPORT ValueMultiSelection : public ValueItemMapBase<Item, Format, Adapter>,
                                            public IMultiSelection {
public:
    using Base = ValueItemMapBase<Item, Format, Adapter>;

    ValueMultiSelection() = default;
    explicit ValueMultiSelection(QString name, TValueState state = VS_NORMAL);

    ValueMultiSelection(const ValueMultiSelection &) = default;
    ValueMultiSelection &operator=(const ValueMultiSelection &other)
    {
        ValueMultiSelection::Assign(other);
        return *this;
    }

    ValueType GetType() const override;
    QString GetTypeName() const override;
    /// \throws KRException for a value of another class.
    void Assign(const ValueBase &other) override;
    bool Compare(const ValueBase *other) const override;
    bool operator==(const ValueMultiSelection &other) const
    {
        return ValueMultiSelection::Compare(&other);
    }

    unsigned int SetAt(unsigned int key, const Item &item, IObserver *source) override;
    ValueBase *GetValueBase() override { return this; }

    bool SelectAt(unsigned int index, bool selected, IObserver *source) override;
    bool RestoreSelectedAt(unsigned int index, bool selected, IObserver *source) override;
    bool SelectOnlyAt(unsigned int index, IObserver *source) override;
    bool EnableAt(unsigned int index, bool enabled, IObserver *source) override;
    bool IsSelectedAt(unsigned int index) const override;
    bool IsEnabledAt(unsigned int index) const override;
    QString GetTextAt(unsigned int index) const override;
    std::vector<unsigned int> GetSelectedIndices() const override;
    /// The lowest index that is selected, the invalid key when none is.
    unsigned int GetCurrentIndex() const;
    /// What a view shows: the text of the selected item, or the text for none or for several.
    QString GetSelectionText() const;

    bool GetAllowEmptySelection() const override { return m_allowEmpty; }
    void SetAllowEmptySelection(bool allow, IObserver *source) override;
    const QString &GetEmptyText() const override { return m_emptyText; }
    void SetEmptyText(const QString &text, IObserver *source) override;
    const QString &GetMultiSelectedText() const override { return m_multiSelectedText; }
    void SetMultiSelectedText(const QString &text, IObserver *source) override;

protected:
    void AddObjectStateStringForTransmission(std::string &out, unsigned int mode) override;
    Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode) override;

private:
    const Item *itemAt(unsigned int index) const;
    template <typename FlagCommand>
    bool storeFlag(unsigned int index, bool flag, IObserver *source);

    bool m_allowEmpty = true;
    QString m_emptyText;
    QString m_multiSelectedText;
};

/// Item, format, adapter, exclusive, type number, registered name.
#define SPECTREE_FOR_EACH_MULTI_SELECTION(X)                                                       \
    X(StringMultiSelectionItem, StringMultiSelectionItemFormat, MultiSelectionItemAdapter, false,  \
      VTYPE_StringMultiSelection, "ValueStringMultiSelection")                                     \
    X(StringMultiSelectionItem, StringMultiSelectionItemFormat, MultiSelectionItemAdapter, true,   \
      VTYPE_StringExclusiveSelection, "ValueStringExclusiveSelection")                             \
    X(StringDoubleMultiSelectionItem, StringDoubleMultiSelectionItemFormat,                        \
      MultiSelectionItemAdapter, false, VTYPE_StringDoubleMultiSelection,                          \
      "ValueStringDoubleMultiSelection")                                                           \
    X(StringDoubleMultiSelectionItem, StringDoubleMultiSelectionItemFormat,                        \
      MultiSelectionItemAdapter, true, VTYPE_StringDoubleExclusiveSelection,                       \
      "ValueStringDoubleExclusiveSelection")

using ValueStringMultiSelection =
    ValueMultiSelection<StringMultiSelectionItem, StringMultiSelectionItemFormat,
                        MultiSelectionItemAdapter, false>;
using ValueStringExclusiveSelection =
    ValueMultiSelection<StringMultiSelectionItem, StringMultiSelectionItemFormat,
                        MultiSelectionItemAdapter, true>;
using ValueStringDoubleMultiSelection =
    ValueMultiSelection<StringDoubleMultiSelectionItem, StringDoubleMultiSelectionItemFormat,
                        MultiSelectionItemAdapter, false>;
using ValueStringDoubleExclusiveSelection =
    ValueMultiSelection<StringDoubleMultiSelectionItem, StringDoubleMultiSelectionItemFormat,
                        MultiSelectionItemAdapter, true>;

extern template class SPECTREE_EXPORT ValueItemMapBase<
    StringMultiSelectionItem, StringMultiSelectionItemFormat, MultiSelectionItemAdapter>;
extern template class SPECTREE_EXPORT
    ValueItemMapBase<StringDoubleMultiSelectionItem, StringDoubleMultiSelectionItemFormat,
                     MultiSelectionItemAdapter>;
#define SPECTREE_DECLARE(Item, Format, Adapter, exclusive, type, name)                             \
    extern template class SPECTREE_EXPORT ValueMultiSelection<Item, Format, Adapter, exclusive>;
SPECTREE_FOR_EACH_MULTI_SELECTION(SPECTREE_DECLARE)
#undef SPECTREE_DECLARE

} // namespace values
