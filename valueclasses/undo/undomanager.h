#pragma once

#include "valueclasses/iundomanager.h"
#include "valueclasses/undo/undolistener.h"

#include <QString>

#include <deque>
#include <memory>
#include <optional>
#include <vector>

namespace values {

/// One group of inverse commands, which is undone as a whole.
class UndoStack {
public:
    explicit UndoStack(QString text) : description(std::move(text)) {}

    QString description;
    std::vector<std::unique_ptr<KELM::ICommand>> commands; // the last one runs first
    /// Where the commands of transactions stand that began in this stack and haven't ended; rising.
    std::vector<std::size_t> openBrackets;
};

/// Collects inverse commands in stacks, and runs them backwards on request.
///
/// Values take part once SetUndoManager has given them this manager. Between OpenNewUndoStack and
/// FinishCurrentUndoStack their changes go into one stack. A change outside of an open stack
/// empties the history: what follows it could no longer be undone consistently. What undo itself
/// changes leaves no trace here; there is no redo.
///
/// Ownership: commands belong to the manager; values and listeners don't. A value that dies empties
/// the history when a command of it ever went there; the manager may die before its values, but
/// no value may change after that before it was given another one or none.
/// Threads:   application thread.
class SPECTREE_EXPORT UndoManager : public IUndoManager {
public:
    /// The count that stands for all stacks.
    static constexpr unsigned int kAllStacks = 0xFFFFFFFF;

    /// Keeps the newest \a maxStacks stacks.
    explicit UndoManager(unsigned int maxStacks);
    /// A copy has the limit and nothing else: a change can be undone once. Assignment takes the
    /// limit over and empties the history.
    UndoManager(const UndoManager &other);
    UndoManager &operator=(const UndoManager &other);
    ~UndoManager() override;

    /// False, with nothing done, while a stack is open or undo runs.
    bool OpenNewUndoStack(const QString &description);
    /// Without an open stack, or while undo runs, \a command is dropped.
    bool AddUndoCommand(KELM::ICommand *command) override;
    /// Both take the first command of the open stack for which \a predicate holds; of the brackets
    /// of one value the innermost.
    bool ReplaceUndoCommand_If(CommandPredicate *predicate, KELM::ICommand *command) override;
    bool RemoveUndoCommand_If(CommandPredicate *predicate) override;
    /// Keeps the open stack unless it is empty. While a transaction that began in it is open it
    /// stays open, too, and is finished with the end of the last one.
    void FinishCurrentUndoStack();
    /// Undoes the newest \a count stacks. False, with nothing done, for 0, for more than there are,
    /// while a stack is open and while undo runs. \throws what a command throws: the run ends
    /// there, with the transactions ended that it had begun, and the history emptied.
    bool ExecuteUndoStacks(unsigned int count);
    void ResetUndoStacks() override;
    void ForgetValue(const ValueBase *value) override;

    /// Of the finished stacks, oldest first.
    std::vector<QString> GetUndoStackDescriptions() const;
    unsigned int GetMaxStacksSize() const { return m_maxStacksSize; }
    bool IsExecuting() const { return m_executing; }

    /// Listeners are called when the change is complete.
    void AddRecordingsListener(IUndoRecordingsListener *l) { m_recordingsListeners.Add(l); }
    void DeleteRecordingsListener(IUndoRecordingsListener *l) { m_recordingsListeners.Remove(l); }
    void AddExecutionListener(IUndoExecutionListener *l) { m_executionListeners.Add(l); }
    void DeleteExecutionListener(IUndoExecutionListener *l) { m_executionListeners.Remove(l); }

private:
    void keepCurrentStack();
    void dropCurrentStack();
    void run(UndoStack &stack);
    void endTransactions(const UndoStack &stack);
    void closeBracket(std::size_t position);
    bool isGone(const ValueBase *value) const;
    void executionEnded();
    std::optional<std::size_t> find(const CommandPredicate &predicate) const;
    void tellRecordings() const;

    UndoRecordingsListenerNotifier m_recordingsListeners;
    UndoExecutionListenerNotifier m_executionListeners;
    std::unique_ptr<UndoStack> m_currentStack;
    bool m_finishWanted = false; // the current stack waits for its brackets
    bool m_executing = false;
    bool m_abandoned = false;                        // what is left to run isn't run any more
    std::vector<const ValueBase *> m_gone;           // values that went while undo runs
    std::deque<std::unique_ptr<UndoStack>> m_stacks; // finished, oldest first
    unsigned int m_maxStacksSize;
};

} // namespace values
