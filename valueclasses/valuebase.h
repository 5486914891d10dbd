#pragma once

#include "platform/base/instancecounter.h"
#include "platform/base/objecttimer.h"
#include "valueclasses/commands/command.h"
#include "valueclasses/isupporttransaction.h"
#include "valueclasses/itreeitem.h"
#include "valueclasses/ivalue.h"
#include "valueclasses/lifewatch.h"
#include "valueclasses/valuetransaction.h"

#include <atomic>
#include <functional>
#include <type_traits>
#include <utility>

namespace values {

class InternalProtocolCommandListOptimizer;
class IUndoManager;
class NotifyDistinction;
class ValueDescriptor;
class ValueItem;

/// The base of every value: name, state, descriptor, observers, transactions, recorded commands and
/// undo.
///
/// Every setter goes one road: an equal value ends it; the undo manager gets a command that
/// restores the old state; the new state is stored; the change is recorded; observers are notified.
/// While they are, the new state and the recorded commands are readable; the outermost notification
/// ends with both command lists emptied. During a transaction nobody is notified, so that its
/// commands reach the observers as one string at its end.
///
/// Threads:   a value lives on the application thread and holds no lock. A setter may be called on
///            another thread once there is an application object: the store happens there, by one
///            writer at a time, and the notification is posted. Where recording or undo is on, or
///            earlier changes still wait, the whole change is posted instead; see PostChange.
///            Destroying a value on another thread ends the process; so does notifying there one
///            that was made before the application object.
/// Ownership: commands belong to the list that holds them; observers, tree item, descriptor and
///            undo manager are not owned. A value whose changes went to an undo manager empties it
///            when it dies, since nothing can restore it; other managers it leaves alone.
/// Errors:    KRException, with nothing changed.
class SPECTREE_EXPORT ValueBase : public IValue,
                                  public IDeleteSubject,
                                  public Kelm::IHasTimerCallback,
                                  public IOptimizeTrigger,
                                  public virtual Observable,
                                  public virtual ISupportTransaction,
                                  private Kelm::Counted<ValueBase> {
public:
    static constexpr const char *kInstanceName = "ValueBase";

    class CommandOnValue; // the commands stand in valuecommands.h
    class CommandHasChanged;
    class CommandSetState;
    class CommandSetValueDescriptor;
    class CommandStartTransaction;
    class CommandEndTransaction;
    class CommandUpdateTimerTime;
    class CommandSetTranslationNamespace;
    class FindCommandEndTransactionPredicate;

    ValueBase();
    /// \throws KRException unless \a name is made of ASCII letters, digits and "_.- :".
    explicit ValueBase(QString name, TValueState state = VS_NORMAL);
    /// Copies name, state, type, properties, auto-delete, descriptor, timer period, undo manager;
    /// nothing else.
    ValueBase(const ValueBase &other);
    /// On another thread only while neither value records, has undo or has changes that wait there;
    /// else it takes Assign.
    ValueBase &operator=(const ValueBase &other);
    ~ValueBase() override;

    // Name, place and description
    const QString &GetName() const { return m_name; }
    /// \throws KRException for an empty name. Neither undo nor recording.
    void SetName(const QString &name, IObserver *source);
    /// The path of the item that holds this value, or nothing.
    QString GetPathName() const;
    ValueItem *GetValueItem() const;
    /// Remembers the type for Compare, and the item's path for messages about a deleted value: as
    /// long as there is an item, it is asked at the end.
    void SetLastCompletePathName();
    /// For the item that leaves this value.
    void SetLastCompletePathName(const QString &path);
    void SetDeleteObserver(ITreeItem *item) override { m_deleteObserver = item; }
    ITreeItem *GetDeleteObserver() const override { return m_deleteObserver; }
    const ValueDescriptor *GetValueDescriptor() const { return m_descriptor; }
    void SetValueDescriptor(const ValueDescriptor *descriptor);
    /// "VdStr" at first.
    const std::string &GetTranslationNamespace() const;
    void SetTranslationNamespace(const char *name, IObserver *source);
    unsigned int GetProperties() const { return m_properties; }
    bool HasPropertyStore() const { return (m_properties & PropertyStore) != 0; }
    bool HasPropertyExport() const { return (m_properties & PropertyExport) != 0; }
    void SetFlagStore(bool on) { setProperty(PropertyStore, on); }
    void SetFlagExport(bool on) { setProperty(PropertyExport, on); }

    // Value and state
    /// Every kind overrides these two. This is what a value answers while it dies: the type that it
    /// had in a tree.
    ValueType GetType() const override { return m_type; }
    QString GetTypeName() const override { return {}; }
    void SetStringValue(QString text, IObserver *source) override;
    QString GetStringValue() const override;
    TValueState GetState() const override { return m_state; }
    void SetState(TValueState state, IObserver *source) override;
    bool Compare(const ValueBase *other) const override;
    bool operator==(const ValueBase &other) const { return ValueBase::Compare(&other); }

    // Observers
    /// Records the change, ends a suppression of notifications and notifies.
    void HasChanged(TChangeCode code, IObserver *source) override;
    void NotifyObservers(TChangeCode code, IObserver *source) override;
    /// Notifies on this thread. Public for the hand-over only.
    void NotifyObserversDistinct(TChangeCode code, IObserver *source);
    void ResumeNotifyObservers() { setFlag(NotifyEnabled, true); }
    /// Either deletes an auto-delete value that has no observer left.
    void DeleteObserver(IObserver *observer) override;
    void DeleteObservers() override;
    bool IsAutoDelete() const { return hasFlag(AutoDelete); }
    void SetAutoDelete(bool on);
    /// Called once, at the end of the destruction, after the observers.
    void BindNotifyDeleteFn(std::function<void(ValueBase *)> function);

    // Transactions
    void StartTransaction(IObserver *source) override;
    void EndTransaction(TChangeCode code, IObserver *source) override;
    /// Whether notifications are held back; false after HasChanged inside a transaction.
    bool IsTransactionActive() const override { return !hasFlag(NotifyEnabled); }
    ValueTransaction CreateTransaction(TChangeCode code, const IObserver *source);

    // Undo and recording. On and Off are counted.
    IUndoManager *GetUndoManager() const { return m_undoManager.load(std::memory_order_relaxed); }
    /// Changes go to \a manager from now on, or to none for null. What went to another one stays
    /// there; a transaction that is open is undone there change by change.
    void SetUndoManager(IUndoManager *manager);
    void CommandRecordingOn();
    void CommandRecordingOff();
    bool IsCommandRecording() const { return hasFlag(Recording); }
    void SuspendCommandRecording(bool suspend);
    void CommandRecordingOnForTransmission();
    void CommandRecordingOffForTransmission();
    bool IsCommandRecordingForTransmission() const { return hasFlag(RecordingForTransmission); }
    void SuspendCommandRecordingForTransmission(bool suspend);
    const CommandList &GetCommandList() const;
    const CommandList &GetCommandListForTransmission() const;
    void ClearCommandListForTransmission();

    // Command strings; docs/commands.md tells their grammar.
    std::string GetCommandStringForTransmission(unsigned int mode) override;
    virtual std::string GetCommandStringForRecording(unsigned int mode);
    /// Appends the commands of the string to \a out, executing none. \throws KRException for a
    /// malformed string, with \a out as it was.
    void SetCommandString(const std::string &commands,
                          std::vector<std::unique_ptr<KELM::ICommand>> &out, IObserver *source,
                          int mode) override;
    /// Parses all, then executes in order: a malformed string changes nothing.
    void SetCommandString(const std::string &commands, IObserver *source, int mode) override;
    /// Commands that rebuild the whole value.
    std::string GetObjectStateStringForTransmission(unsigned int mode);
    std::string GetObjectStateStringForRecording();
    static std::string CreateCommandString(const CommandList &commands, unsigned int mode);

    // Optimizers of connections
    /// Null here: a plain value needs none.
    virtual std::shared_ptr<CommandListOptimizer>
    CreateCommandListOptimizer(bool server, InternalProtocolCommandListOptimizer *protocol);
    virtual void OptimizeCommandList(std::shared_ptr<CommandListOptimizer> &optimizer);
    /// Appends clones of the commands recorded for transmission.
    virtual void OptimizeCommandList(CommandList &commands);
    void UpdateOptimizersCommandList(std::shared_ptr<CommandListOptimizer> &optimizer) override;
    void PreWorkOptimizersCommandList(std::shared_ptr<CommandListOptimizer> &optimizer) override;
    /// Empty without an optimizer.
    std::string GetOptimizedCommandString(std::shared_ptr<CommandListOptimizer> optimizer,
                                          bool clear, unsigned int mode);
    void ClearOptimizedCommandList(std::shared_ptr<CommandListOptimizer> optimizer);

    // Update timer
    /// Period in ms, 0 ends the timer; returns the timer's id, or 0. Application thread.
    virtual int SetUpdateTimerTime(unsigned int milliseconds);
    unsigned int GetUpdateTimerTime() const;
    /// These three throw KRException unless a class overrides them.
    void OnTimer(int id) override;
    virtual void OverrideTimer(unsigned int milliseconds);
    virtual void KillOverrideTimer(int id);

protected:
    /// Called before the commands of the whole state are formed, for a class that has to bring up
    /// to date what it keeps. Nothing here.
    virtual void PrepareObjectState() {}
    virtual void AddObjectStateStringForTransmission(std::string &out, unsigned int mode);
    virtual void AddObjectStateStringForRecording(std::string &out);
    /// Both own \a command from the call on.
    virtual void AddCommand(Command *command);
    virtual void AddCommandForTransmission(Command *command);
    /// The command that stands at \a *pos, owned by the caller, its bytes consumed; null when it
    /// was applied at once. Hands every id that it doesn't know to its base.
    virtual Command *CreateNextCommand(int id, const char **pos, IObserver *source, int mode);
    /// The id at the position, -1 for an empty field. \throws KRException for other than digits.
    static int ExtractCommandId(const char *position);

    /// True when a change must be recorded.
    bool Record() const { return hasFlag(Recording | RecordingForTransmission); }
    /// Gives \a command to the lists that record; owns it from the call on.
    void RecordCommand(Command *command);
    static TChangeCode GetUndoChangeCode(TChangeCode code);
    /// Hold notifications back and let them go, without counter, command or undo.
    void StartTrImpl() { setFlag(NotifyEnabled, false); }
    void EndTrImpl(TChangeCode code, IObserver *source);

    /// The road of a change to one member, whole; a setter needs no more than this. An equal
    /// \a value ends it. \a make(state, source, use) gives a new command that sets \a state.
    template <typename T, typename MakeCommand>
    void ChangeField(T &field, std::type_identity_t<T> value, TChangeCode code, IObserver *source,
                     MakeCommand make)
    {
        if (IsChangeForeign()) [[unlikely]] // asked first, so that nothing is copied in vain
            PostChange([=, this, &field] { ChangeField(field, value, code, source, make); });
        else if (!(field == value))
            StoreChanged(field, std::move(value), code, source, make);
    }
    /// The road behind the test for an equal value, on a thread that may go it.
    template <typename T, typename MakeCommand>
    void StoreChanged(T &field, std::type_identity_t<T> value, TChangeCode code, IObserver *source,
                      const MakeCommand &make)
    {
        if (GetUndoManager() != nullptr &&
            !AddUndo(make(std::as_const(field), nullptr, CommandUse::Undo)))
            return;
        field = std::move(value);
        if (Record())
            RecordCommand(make(std::as_const(field), source, CommandUse::Record));
        NotifyObservers(code, source);
    }
    /// The first line of a setter with a road of its own: posts \a repeat, which calls the setter
    /// again, when this thread may neither record nor undo but has to. True when it did.
    template <typename Repeat>
    bool PostIfForeign(Repeat &&repeat)
    {
        if (!IsChangeForeign()) [[likely]]
            return false;
        PostChange(std::forward<Repeat>(repeat));
        return true;
    }
    bool IsChangeForeign() const
    {
        // Behind the last posted change, its stores are seen.
        constexpr unsigned kPosts = Recording | RecordingForTransmission | ChangesPosted;
        return ((m_flags.load(std::memory_order_acquire) & kPosts) != 0 ||
                GetUndoManager() != nullptr) &&
               isForeignThread();
    }
    /// As PostIfForeign, for Assign. An \a other whose own changes are posted is read behind them
    /// and must live until then, else nothing is assigned; of any other one a copy goes along.
    template <typename V>
    bool PostAssignIfForeign(const V &other)
    {
        const ValueBase &base = other;
        if (base.IsChangeForeign()) {
            postAssign(const_cast<ValueBase &>(base));
            return true;
        }
        if (!IsChangeForeign())
            return false;
        // The poster may be the last to drop the change, and no value may end on its thread.
        PostChange([this, copy = std::make_shared<V>(other)]() mutable {
            auto own = std::move(copy);
            static_cast<V *>(this)->V::Assign(*own); // the copy is a V, whatever this is
            const KeepLastDeletedObject keep;        // nobody knew the copy
            own.reset();
        });
        return true;
    }
    /// The same for a kind that can't be copied: \a other is read there, whatever it is.
    bool PostAssignByReference(const ValueBase &other);
    /// Runs \a change on the application thread, after those posted before; dropped when this value
    /// dies first. The first one is traced. While 10 000 wait, the caller waits for up to a second.
    void PostChange(std::function<void()> change);
    /// Gives \a command to the undo manager, which there is; owns it from the call on. False when
    /// somebody who listens to the manager has deleted this value.
    [[nodiscard]] bool AddUndo(Command *command);
    /// \a other as a \a V. \throws KRException when it is none.
    template <typename V>
    static const V &CastForAssign(const ValueBase &other)
    {
        if (const auto *same = dynamic_cast<const V *>(&other))
            return *same;
        failAssign(other);
    }

private:
    struct Rare; // what few values have, made on first use
    enum Flag : unsigned char {
        NotifyEnabled = 1,
        Recording = 2,
        RecordingForTransmission = 4,
        AutoDelete = 8,
        HandsOver = 16,     // an application object existed at construction
        ChangesPosted = 32, // changes of other threads wait on the application thread
        HasUndo = 64,       // the undo manager was given a command of this value
    };
    enum Property : unsigned int { PropertyStore = 1, PropertyExport = 2 };

    // Another thread may ask for a flag while the application thread sets one.
    bool hasFlag(unsigned flags) const
    {
        return (m_flags.load(std::memory_order_relaxed) & flags) != 0;
    }
    /// Behind the last of the changes that waited, its stores are seen.
    bool changesWait() const
    {
        return (m_flags.load(std::memory_order_acquire) & ChangesPosted) != 0;
    }
    /// Posts \a repeat when it would overtake changes that wait on the application thread.
    bool postBehind(std::function<void()> repeat);
    void setFlag(Flag flag, bool on);
    static unsigned char initialFlags();
    void setProperty(Property property, bool on);
    void storeName(const QString &name);
    void storeTranslationNamespace(const std::string &name, IObserver *source);
    void takePlaceElsewhere(const ValueBase &other);
    bool isForeignThread() const;
    void forgetUndo();
    Rare &rare();
    void updateRecordingFlags();
    void executeAll(const std::vector<std::unique_ptr<KELM::ICommand>> &commands);
    void endTransactions(const std::vector<std::unique_ptr<KELM::ICommand>> &commands,
                         std::size_t next);
    void releaseCommands();
    int startTimer(unsigned int milliseconds);
    NotifyDistinction &handOver();
    void notifyHere(TChangeCode code, IObserver *source);
    [[noreturn]] void failWrongThread(TChangeCode code) const;
    [[noreturn]] static void failAssign(const ValueBase &other);
    void postAssign(ValueBase &other);
    void postLate(std::unique_ptr<Command> command, void (ValueBase::*add)(Command *));
    bool closeUndoBracket(TChangeCode code);
    friend class NotifyDistinction;
    void NotificationEnded() override;

    QString m_name;
    const ValueDescriptor *m_descriptor = nullptr;
    ITreeItem *m_deleteObserver = nullptr;
    std::atomic<IUndoManager *> m_undoManager{nullptr};
    std::atomic<NotifyDistinction *> m_handOver{nullptr}; // owned, made by the first that needs it
    std::unique_ptr<Rare> m_rare;
    TValueState m_state = VS_NORMAL;
    ValueType m_type = VTYPE_Unknown;
    int m_transactionCount = 0;
    unsigned int m_properties = 0;
    std::atomic<unsigned char> m_flags;
};

} // namespace values
