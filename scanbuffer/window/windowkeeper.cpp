#include "scanbuffer/window/windowkeeper.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "scanbuffer/window/windowrelatedqobject.h"

#include <future>
#include <utility>

namespace sbs {

namespace {

/// Write-locks; a stall is reported and never turned into a failure.
class SPECTREE_SCOPED_CAPABILITY ReportingLocker {
public:
    explicit ReportingLocker(Kelm::ReadWriteLock &lock) SPECTREE_ACQUIRE(lock) : m_lock(lock)
    {
        constexpr int kStallMilliseconds = 2000;
        if (lock.tryLockForWrite(kStallMilliseconds))
            return;
        SPECTREE_TRACE(TraceWarnings,
                       QStringLiteral("Possible Deadlock4: tryLock failed from: %1")
                           .arg(reinterpret_cast<quintptr>(QThread::currentThreadId())));
        lock.lockForWrite();
    }
    ~ReportingLocker() SPECTREE_RELEASE() { m_lock.unlockWrite(); }
    ReportingLocker(const ReportingLocker &) = delete;
    ReportingLocker &operator=(const ReportingLocker &) = delete;

private:
    Kelm::ReadWriteLock &m_lock;
};

} // namespace

WindowKeeper::WindowKeeper(MakeWindow makeWindow) : m_makeWindow(std::move(makeWindow)) {}

WindowKeeper::~WindowKeeper()
{
    std::vector<QPointer<QThread>> ending;
    {
        const ReportingLocker lock(m_lock);
        for (auto &[guid, entry] : m_windows)
            end(entry);
        ending.swap(m_ending);
    }
    // The thread objects live on this thread, so none can go while it is waited for.
    for (const QPointer<QThread> &thread : ending) {
        if (!thread)
            continue;
        thread->wait();
        Kelm::syncAcquire(thread.data());
        delete thread.data();
    }
}

WindowRelatedQObject *WindowKeeper::createOrGet(const QString &winGUID)
{
    const ReportingLocker lock(m_lock);
    Entry &entry = m_windows[winGUID];
    if (entry.window == nullptr)
        entry = start(winGUID);
    return entry.window;
}

WindowKeeper::Entry WindowKeeper::start(const QString &winGUID)
{
    std::unique_ptr<WindowRelatedQObject> ownedWindow = m_makeWindow(winGUID);
    auto ownedThread = std::make_unique<QThread>();
    WindowRelatedQObject *const window = ownedWindow.get();
    QThread *const thread = ownedThread.get();
    thread->setObjectName(QStringLiteral("window %1").arg(winGUID));
    thread->moveToThread(m_home.thread());
    window->moveToThread(thread);
    std::promise<void> running;
    QObject::connect(thread, &QThread::started, window, [&running] {
        Kelm::syncRelease(&running);
        running.set_value();
    });
    QObject::connect(thread, &QThread::started, window,
                     &WindowRelatedQObject::slotWorkerThreadStarted);
    // In this order: the window goes while its thread still runs the last of its events.
    QObject::connect(thread, &QThread::finished, window, &QObject::deleteLater);
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    QObject::connect(window, &QObject::destroyed, [thread] { Kelm::syncRelease(thread); });
    Kelm::syncRelease(window);
    thread->start();
    if (!thread->isRunning())
        throw KRException(
            QStringLiteral("The system gives no thread for window %1: close other windows or "
                           "programs, or raise the limits of memory and threads")
                .arg(winGUID),
            __FILE__, "WindowKeeper", "start", __LINE__);
    // Before its event loop stands, a thread loses the wish to quit.
    running.get_future().wait();
    Kelm::syncAcquire(&running);
    return {ownedWindow.release(), ownedThread.release()};
}

void WindowKeeper::end(Entry &entry)
{
    if (entry.window == nullptr)
        return;
    std::erase_if(m_ending, [](const QPointer<QThread> &thread) { return thread.isNull(); });
    m_ending.emplace_back(entry.thread); // before it is told: it may be gone right after
    entry.thread->quit();
    entry = {};
}

void WindowKeeper::remove(const QString &winGUID)
{
    {
        const ReportingLocker lock(m_lock);
        if (const auto found = m_windows.find(winGUID); found != m_windows.end()) {
            end(found->second);
            m_windows.erase(found); // clients come with new GUIDs for ever
        }
    }
    SPECTREE_TRACE(TraceLifecycle,
                   QStringLiteral("Scanbufferserver deleted WindowData[%1]").arg(winGUID));
}

} // namespace sbs
