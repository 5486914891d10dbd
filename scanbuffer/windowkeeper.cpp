#include "scanbuffer/windowkeeper.h"

#include "platform/base/errorhandler.h"
#include "scanbuffer/windowrelatedqobject.h"

#include <QScopeGuard>

#include <utility>

namespace sbs {

WindowKeeper::WindowKeeper(MakeWindow makeWindow) : m_makeWindow(std::move(makeWindow)) {}

WindowKeeper::~WindowKeeper()
{
    std::vector<QPointer<QThread>> ending;
    {
        lockForWrite();
        for (auto &[guid, entry] : m_windows)
            end(entry);
        ending.swap(m_ending);
        m_lock.unlockWrite();
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

void WindowKeeper::lockForWrite()
{
    constexpr int kStallMilliseconds = 2000;
    if (m_lock.tryLockForWrite(kStallMilliseconds))
        return;
    SPECTREE_TRACE(TraceWarnings, QStringLiteral("Possible Deadlock4: tryLock failed from: %1")
                                      .arg(reinterpret_cast<quintptr>(QThread::currentThreadId())));
    m_lock.lockForWrite();
}

WindowRelatedQObject *WindowKeeper::createOrGet(const QString &winGUID)
{
    lockForWrite();
    const auto unlock =
        qScopeGuard([this]() SPECTREE_NO_THREAD_SAFETY_ANALYSIS { m_lock.unlockWrite(); });
    Entry &entry = m_windows[winGUID];
    if (entry.window == nullptr)
        entry = start(winGUID);
    return entry.window;
}

WindowKeeper::Entry WindowKeeper::start(const QString &winGUID)
{
    WindowRelatedQObject *const window = m_makeWindow(winGUID).release();
    auto *const thread = new QThread;
    thread->setObjectName(QStringLiteral("window %1").arg(winGUID));
    thread->moveToThread(m_home.thread());
    window->moveToThread(thread);
    QObject::connect(thread, &QThread::started, window,
                     &WindowRelatedQObject::slotWorkerThreadStarted);
    // In this order: the window goes while its thread still runs the last of its events.
    QObject::connect(thread, &QThread::finished, window, &QObject::deleteLater);
    QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
    QObject::connect(window, &QObject::destroyed, [thread] { Kelm::syncRelease(thread); });
    Kelm::syncRelease(window);
    thread->start();
    return {window, thread};
}

void WindowKeeper::end(Entry &entry)
{
    if (entry.window == nullptr)
        return;
    entry.thread->quit();
    std::erase_if(m_ending, [](const QPointer<QThread> &thread) { return thread.isNull(); });
    m_ending.emplace_back(entry.thread);
    entry = {};
}

void WindowKeeper::remove(const QString &winGUID)
{
    lockForWrite();
    if (const auto found = m_windows.find(winGUID); found != m_windows.end())
        end(found->second);
    m_lock.unlockWrite();
    SPECTREE_TRACE(TraceLifecycle,
                   QStringLiteral("Scanbufferserver deleted WindowData[%1]").arg(winGUID));
}

} // namespace sbs
