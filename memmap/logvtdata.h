#pragma once

#include "memmap/ilogvtdata.h"
#include "platform/base/logwriter.h"
#include "platform/base/observable.h"

#include <QByteArray>

#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace values {

class LogConfigLines;
class ValueBase;

/// Watches trigger values of the tree and writes one line to the log service at each change of one
/// (code 3): a template in which "#0", "#1" and so on stand for the text of other values.
///
/// What to watch comes from a configuration file (docs/logs.md), or from the setters of a class
/// derived from this one. Lines go out once it is loaded, connected and enabled.
/// Ownership: objects belong to the log. It only observes its values: they and the log may die in
///            any order. A value whose state becomes 1 is gone: its object is deleted, so that the
///            token stays in the text, and its trigger is cleared; neither comes back.
/// Threads:   the application thread.
/// Errors:    traced with the warnings; nothing throws. A line of more than kMaximumLine characters
///            isn't sent.
class SPECTREE_EXPORT LogVTData : public ILogVTData, public CLogWriter, public IObserver {
public:
    class ValuePtr; // valueptr.h

    static constexpr int kMaximumFileSize = 1 << 20; ///< bytes
    static constexpr int kMaximumLine = 1 << 20;     ///< characters

    LogVTData();
    ~LogVTData() override;

    /// Drops what was watched first, then connects. A value that isn't in the tree doesn't make it
    /// fail. What was read before the reason to stop stays, but no line goes out.
    bool LoadFromFile(QString name) override;
    /// The same with the content of a file.
    bool LoadFromText(const QByteArray &content);

    /// False when there is no value at the path.
    bool AddTrigger_ValuePath(const QString &path);
    /// False at first.
    void EnableTrigger(bool on) { m_triggerEnabled = on; }
    /// Whether a trigger is watched.
    bool isTriggerAvailable() const;
    /// Finds the values that aren't watched yet, and begins to write. Once more changes nothing.
    bool connect() override;
    /// Leaves all values, until connect finds them again by their paths.
    virtual void disconnect();
    /// Does nothing without a template or a logger type.
    void toLogger() override;
    /// Forgets the objects and the triggers.
    void DeleteObservables();

    void Update(Observable *subject, TChangeCode code) override;

protected:
    /// Connects one object; a value that can't be watched is traced.
    bool tstConnect(ValuePtr *object);
    /// Puts \a object at its index, in the place of the one there; drops it without an index.
    void StoreObject(std::unique_ptr<ValuePtr> object);
    /// Stores \a object and connects it. False, with the object kept, when its value isn't there.
    bool SetObject(std::unique_ptr<ValuePtr> object);
    /// The same with a new \a Object for the value at \a path; include valueptr.h.
    template <typename Object>
    bool SetArgument(int index, const QString &path)
    {
        return SetObject(std::make_unique<Object>(*this, path, QStringLiteral("#%1").arg(index)));
    }
    /// Empty where there is none, or its value isn't there.
    QString GetObjectText(int index) const;
    void SetLogger(const QString &type, const QString &messageTemplate);
    const QString &GetLoggerType() const { return m_loggerType; }
    const QString &GetLoggerSend() const { return m_loggerSend; }
    /// Sends \a text in the form of a data line.
    void SendData(const QString &text);
    void TraceTooLong() const;

    // Watching is counted, since one value may be trigger and argument.
    void Watch(ValueBase *value);
    void Unwatch(ValueBase *value);
    /// The value that is going away, when \a code says so; null otherwise.
    static ValueBase *GoneValue(Observable *subject, TChangeCode code);

private:
    struct Trigger {
        QString path;     // empty: its value is gone for good
        ValueBase *value; // null: not watched
    };

    bool readObjects(LogConfigLines &lines);
    bool readLogger(LogConfigLines &lines);
    bool readTriggers(LogConfigLines &lines);
    void readObject(const QString &line);
    std::map<int, std::unique_ptr<ValuePtr>>::const_iterator objectAt(const QChar *digits,
                                                                      int *length) const;
    void forgetValue(ValueBase *value);

    // Sparse: an index of two thousand millions costs what 0 costs.
    std::map<int, std::unique_ptr<ValuePtr>> m_objects;
    std::vector<Trigger> m_triggers;
    std::unordered_map<ValueBase *, int> m_watched;
    QString m_loggerType;
    QString m_loggerSend;
    bool m_triggerEnabled = false;
    bool m_connected = false;
    bool m_sending = false;
};

} // namespace values
