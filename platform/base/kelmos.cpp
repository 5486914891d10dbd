#include "platform/base/kelmos.h"

#include "platform/base/kelmos_p.h"

#include <QCoreApplication>
#include <QThread>

#include <atomic>
#include <chrono>
#include <exception>

constinit std::atomic<const void *> Kelm::Detail::appThread{nullptr};
constinit thread_local char Kelm::Detail::threadMark = 0;

namespace {

using Kelm::Detail::appThread;
using Kelm::Detail::threadMark;

std::atomic<bool> unloading{false};

void forgetAppThread() { appThread.store(nullptr, std::memory_order_relaxed); }

void noteAppThread()
{
    // A library that is loaded after the application object was made gets here on any thread.
    if (auto *const app = QCoreApplication::instance();
        app != nullptr && app->thread() != QThread::currentThread()) {
        QMetaObject::invokeMethod(app, noteAppThread, Qt::QueuedConnection);
        return;
    }
    appThread.store(&threadMark, std::memory_order_relaxed);
    Kelm::setUnloading(false);
    qAddPostRoutine(forgetAppThread);
}
Q_COREAPP_STARTUP_FUNCTION(noteAppThread)

/// When the library is closed, on whatever thread: before its own static objects go. At the end of
/// the process they have gone already.
[[gnu::destructor]] void noteUnloading() { Kelm::setUnloading(true); }

class Platform final : public IKelmOS {
public:
    bool IsAppThread() const override
    {
        return appThread.load(std::memory_order_relaxed) == &threadMark;
    }
    bool IsAcceptableThread() const override { return Kelm::isAcceptableThread(); }
    bool IsAppThreadKnown() const override
    {
        return appThread.load(std::memory_order_relaxed) != nullptr;
    }
    KRTimeStamp GetCurrentTime() const override
    {
        using namespace std::chrono;
        return KRTimeStamp(
            duration_cast<microseconds>(system_clock::now().time_since_epoch()).count());
    }
    std::uint64_t GetTickCount() const override
    {
        using namespace std::chrono;
        return std::uint64_t(
            duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
    }
};

} // namespace

const IKelmOS &KelmOS::Get()
{
    // Never destroyed: a thread that still runs at exit may come here.
    static const auto *const platform = new Platform;
    return *platform;
}

bool Kelm::isAcceptableThread() { return Detail::isAcceptableThread(); }

bool Kelm::isUnloading() { return unloading.load(std::memory_order_relaxed); }
void Kelm::setUnloading(bool on) { unloading.store(on, std::memory_order_relaxed); }
void Kelm::terminate() { std::terminate(); }
