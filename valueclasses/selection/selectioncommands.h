#pragma once

#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/valueselection.h"

#include <optional>

/// The commands of a selection. docs/selections.md tells their forms.
namespace values {

/// Ids 20, 21, 22 and 26: chooses an item, or drops it silently when there is none like that.
class SPECTREE_EXPORT ValueSelection::CommandSelect : public CommandOnValue {
public:
    CommandSelect(ValueSelection *selection, Choice choice, IObserver *source);
    /// For undo: chooses the item at \a index, -1 for none, where \a choice alone would miss it.
    CommandSelect(ValueSelection *selection, Choice choice, int index);
    CommandSelect(ChoiceKind kind, ValueSelection *selection, const char **pos, IObserver *source,
                  int mode);
    static bool IsId(int id);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;

private:
    Choice m_choice;
    std::optional<int> m_index;
};

/// Id 23 appends an item, id 24 deletes the first one with that name, value and key.
class SPECTREE_EXPORT ValueSelection::CommandAddOrDeleteItem : public CommandOnValue {
public:
    enum Kind : int { Add = 23, Delete = 24 };

    CommandAddOrDeleteItem(Kind kind, ValueSelection *selection, SelectionItem item,
                           IObserver *source);
    /// For undo: at a place of its own.
    CommandAddOrDeleteItem(Kind kind, ValueSelection *selection, SelectionItem item, int position);
    CommandAddOrDeleteItem(Kind kind, ValueSelection *selection, const char **pos,
                           IObserver *source, int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;

private:
    SelectionItem m_item;
    std::optional<int> m_position;
};

/// Id 25.
class SPECTREE_EXPORT ValueSelection::CommandDeleteItems : public CommandOnValue {
public:
    static constexpr int kId = 25;
    CommandDeleteItems(ValueSelection *selection, IObserver *source);
    CommandDeleteItems(ValueSelection *selection, const char **pos, IObserver *source);
    void Execute() override;
    Command *Clone() const override;
};

} // namespace values
