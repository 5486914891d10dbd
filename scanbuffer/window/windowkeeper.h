#pragma once

#include "platform/base/export.h"
#include "platform/base/sync.h"

#include <QPointer>
#include <QString>
#include <QThread>

#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace sbs {

class WindowRelatedQObject;

/// Owns the windows of a data source and the worker thread of each.
///
/// A window is born on the thread that first asks for it, moved to its worker thread, and destroyed
/// there when that thread ends. The thread object itself goes by its finished() signal, on the
/// thread that made the keeper; what is left then, the keeper's destructor takes.
///
/// Threads: any, except for construction and destruction.
class SPECTREE_EXPORT WindowKeeper {
public:
    using MakeWindow = std::function<std::unique_ptr<WindowRelatedQObject>(const QString &)>;

    explicit WindowKeeper(MakeWindow makeWindow);
    /// Ends all windows and waits for their threads.
    ~WindowKeeper();

    /// The window of a GUID; one that was removed is made anew.
    /// \throws KRException when the system gives no thread; the next call tries again.
    WindowRelatedQObject *createOrGet(const QString &winGUID);
    /// Lets the window's thread end; does not wait for it. Traces, also for an unknown GUID.
    void remove(const QString &winGUID);

private:
    struct Entry {
        WindowRelatedQObject *window = nullptr; // null when none could be made
        QThread *thread = nullptr;
    };

    Entry start(const QString &winGUID);
    void end(Entry &entry) SPECTREE_REQUIRES(m_lock);

    const MakeWindow m_makeWindow;
    QObject m_home; // thread objects live where the keeper was made
    Kelm::ReadWriteLock m_lock;
    std::map<QString, Entry> m_windows SPECTREE_GUARDED_BY(m_lock);
    std::vector<QPointer<QThread>> m_ending SPECTREE_GUARDED_BY(m_lock);
};

} // namespace sbs
