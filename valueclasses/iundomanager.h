#pragma once

#include "valueclasses/commands/icommand.h"

namespace values {

class ValueBase;

/// A functor over commands: which one is meant.
class SPECTREE_EXPORT CommandPredicate {
public:
    virtual ~CommandPredicate() = default;
    virtual bool operator()(const KELM::ICommand &command) const = 0;
};

/// Collects the commands that restore old states, as far as a value calls it. Application thread.
class SPECTREE_EXPORT IUndoManager {
public:
    IUndoManager();
    IUndoManager(const IUndoManager &) : IUndoManager() {}
    IUndoManager &operator=(const IUndoManager &) = default;
    virtual ~IUndoManager();
    /// Whether \a manager still exists: a value may die after its manager.
    static bool IsAlive(const IUndoManager *manager);

    /// Owns \a command from the call on; false when it was dropped.
    virtual bool AddUndoCommand(KELM::ICommand *command) = 0;
    /// Replaces the command of the open stack for which \a predicate holds. Owns \a command only
    /// when the answer is true.
    virtual bool ReplaceUndoCommand_If(CommandPredicate *predicate, KELM::ICommand *command) = 0;
    /// Takes the command of the open stack out for which \a predicate holds. False without one.
    virtual bool RemoveUndoCommand_If(CommandPredicate *predicate) = 0;
    /// Forgets everything, unless undo runs.
    virtual void ResetUndoStacks() = 0;
    /// A value goes of which commands came here: forgets everything, while undo runs too.
    virtual void ForgetValue(const ValueBase *value) = 0;
};

} // namespace values
