#pragma once

#include "valueclasses/undo/undolistener.h"
#include "valueclasses/value.h"

#include <QString>

#include <optional>
#include <vector>

/// Undo over a tree connection: a manager on the server, its clients anywhere, and texts that both
/// sides have between them. docs/values.md tells what stands in the texts. Application thread;
/// nothing is owned, and a value or the manager may go first.
namespace values {

class UndoManager;

/// One end of such a text, watched for as long as this object lives. What goes through it can't be
/// undone: its undo manager is taken away, and must not come back.
class SPECTREE_EXPORT UndoRemoteValue : public IObserver {
public:
    explicit UndoRemoteValue(Value<QString> *value);
    ~UndoRemoteValue() override;
    UndoRemoteValue(const UndoRemoteValue &) = delete;
    UndoRemoteValue &operator=(const UndoRemoteValue &) = delete;

    void Update(Observable *subject, TChangeCode code) override;
    /// Empty, and without effect, when the value is gone.
    QString GetText() const;
    void SetText(const QString &text);
    /// Sends "number payload" with a number above the last one, so that an equal payload arrives
    /// too.
    void Send(const QString &payload);

protected:
    /// The text changed, and not by this end.
    virtual void TextChanged(const QString & /*text*/) {}
    /// What stands behind the number.
    static QString PayloadOf(const QString &text);

private:
    Value<QString> *m_value;
    Observable *m_subject; // the same, to be compared when it is half destroyed
};

/// Finishes and opens the stacks of a manager as clients ask for it.
class SPECTREE_EXPORT UndoRecordingTriggerByValueServer : public UndoRemoteValue,
                                                          public IUndoRecordingsListener {
public:
    UndoRecordingTriggerByValueServer(UndoManager *manager, Value<QString> *trigger);
    ~UndoRecordingTriggerByValueServer() override;
    void OnUndoRecordingsChanged() override;

protected:
    void TextChanged(const QString &text) override;

private:
    UndoManager *m_manager;
    std::optional<QString> m_wanted; // a stack to be opened when the present one is finished
};

class SPECTREE_EXPORT UndoRecordingTriggerByValueClient : private UndoRemoteValue {
public:
    explicit UndoRecordingTriggerByValueClient(Value<QString> *trigger);
    /// Finishes the server's open stack, then opens another one. A stack with an open transaction
    /// takes what follows until that ends, and then the other one is opened.
    void OpenNewUndoStack(const QString &description);
    void FinishCurrentUndoStack();
};

/// Publishes the descriptions of a manager's stacks, and runs stacks as clients ask for it.
class SPECTREE_EXPORT UndoRecordingsToValueServer : public UndoRemoteValue,
                                                    public IUndoRecordingsListener {
public:
    UndoRecordingsToValueServer(UndoManager *manager, Value<QString> *recordings,
                                Value<QString> *request);
    ~UndoRecordingsToValueServer() override;
    void OnUndoRecordingsChanged() override;

protected:
    void TextChanged(const QString &text) override;

private:
    UndoManager *m_manager;
    UndoRemoteValue m_recordings;
};

/// Shows what the server can undo. Listeners are told when that changes.
class SPECTREE_EXPORT UndoRecordingsToValueClient : private UndoRemoteValue {
public:
    UndoRecordingsToValueClient(Value<QString> *recordings, Value<QString> *request);
    /// Oldest first. Empty for a text that isn't one of a server.
    std::vector<QString> GetUndoStackDescriptions() const;
    /// Asks the server to undo the newest \a count stacks; UndoManager::kAllStacks for all. A
    /// server that can't changes nothing.
    void ExecuteUndo(unsigned int count);
    void AddRecordingsListener(IUndoRecordingsListener *l) { m_listeners.Add(l); }
    void DeleteRecordingsListener(IUndoRecordingsListener *l) { m_listeners.Remove(l); }

private:
    void TextChanged(const QString &text) override;

    UndoRemoteValue m_request;
    UndoRecordingsListenerNotifier m_listeners;
};

} // namespace values
