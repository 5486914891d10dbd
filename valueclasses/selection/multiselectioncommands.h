#pragma once

#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/selection/imultiselection.h"

/// The commands that a multi-selection has beside those of an item map. docs/selections.md tells
/// their forms.
namespace values {

/// Whether a command with id 33 at \a command sets the flag (CommandAllowEmptySelection) and not
/// the text (CommandMapEmptyText): in text its field is "true" or "false"; in binary the ";" stands
/// behind one byte 0 or 1, and the string ends there or goes on with an id.
SPECTREE_EXPORT bool isEmptySelectionFlag(const char *command, int mode);

/// The base of the commands on a multi-selection.
class SPECTREE_EXPORT CommandOnMultiSelection : public ValueBase::CommandOnValue {
protected:
    CommandOnMultiSelection(int id, IMultiSelection *selection, IObserver *source)
        : CommandOnValue(id, selection->GetValueBase(), source), m_selection(selection)
    {
    }
    CommandOnMultiSelection(int id, IMultiSelection *selection, const char **pos, IObserver *source)
        : CommandOnValue(id, selection->GetValueBase(), pos, source), m_selection(selection)
    {
    }
    IMultiSelection &GetSelection() const { return *m_selection; }

private:
    IMultiSelection *m_selection;
};

/// A flag of one item.
class SPECTREE_EXPORT CommandFlagAt : public CommandOnMultiSelection {
public:
    void AddCommandString(std::string &out, int mode) const override;

protected:
    CommandFlagAt(int id, IMultiSelection *selection, unsigned int index, bool flag,
                  IObserver *source);
    CommandFlagAt(int id, IMultiSelection *selection, const char **pos, IObserver *source,
                  int mode);
    unsigned int m_index;
    bool m_flag;
};

/// Id 31.
class SPECTREE_EXPORT CommandSelectAt : public CommandFlagAt {
public:
    static constexpr int kId = 31;
    CommandSelectAt(IMultiSelection *selection, unsigned int index, bool selected,
                    IObserver *source);
    CommandSelectAt(IMultiSelection *selection, const char **pos, IObserver *source, int mode);
    void Execute() override;
    Command *Clone() const override;
};

/// Id 32.
class SPECTREE_EXPORT CommandEnableAt : public CommandFlagAt {
public:
    static constexpr int kId = 32;
    CommandEnableAt(IMultiSelection *selection, unsigned int index, bool enabled,
                    IObserver *source);
    CommandEnableAt(IMultiSelection *selection, const char **pos, IObserver *source, int mode);
    void Execute() override;
    Command *Clone() const override;
};

/// Id 33.
class SPECTREE_EXPORT CommandAllowEmptySelection : public CommandOnMultiSelection {
public:
    static constexpr int kId = 33;
    CommandAllowEmptySelection(IMultiSelection *selection, bool allow, IObserver *source);
    CommandAllowEmptySelection(IMultiSelection *selection, const char **pos, IObserver *source,
                               int mode);
    void Execute() override;
    void AddCommandString(std::string &out, int mode) const override;
    Command *Clone() const override;

private:
    bool m_allow;
};

/// A text of the selection.
class SPECTREE_EXPORT CommandMapText : public CommandOnMultiSelection {
public:
    void AddCommandString(std::string &out, int mode) const override;

protected:
    CommandMapText(int id, IMultiSelection *selection, QString text, IObserver *source);
    CommandMapText(int id, IMultiSelection *selection, const char **pos, IObserver *source,
                   int mode);
    QString m_text;
};

/// Id 33, too.
class SPECTREE_EXPORT CommandMapEmptyText : public CommandMapText {
public:
    static constexpr int kId = 33;
    CommandMapEmptyText(IMultiSelection *selection, QString text, IObserver *source);
    CommandMapEmptyText(IMultiSelection *selection, const char **pos, IObserver *source, int mode);
    void Execute() override;
    Command *Clone() const override;
};

/// Id 34.
class SPECTREE_EXPORT CommandMapMultiSelectedText : public CommandMapText {
public:
    static constexpr int kId = 34;
    CommandMapMultiSelectedText(IMultiSelection *selection, QString text, IObserver *source);
    CommandMapMultiSelectedText(IMultiSelection *selection, const char **pos, IObserver *source,
                                int mode);
    void Execute() override;
    Command *Clone() const override;
};

/// The command with one of these ids, or null for any other id.
SPECTREE_EXPORT Command *createMultiSelectionCommand(int id, IMultiSelection *selection,
                                                     const char **pos, IObserver *source, int mode);

} // namespace values
