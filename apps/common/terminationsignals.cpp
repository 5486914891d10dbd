#include "apps/common/terminationsignals.h"

#include <QSocketNotifier>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>

namespace apps {
namespace {

// What the handler uses; any thread may run it.
int wakePipe[2] = {-1, -1};
std::atomic<std::int64_t> firstSignal = 0; // nanoseconds of the monotonic clock; 0 for none yet
std::int64_t twinsNs = 0;
static_assert(std::atomic<std::int64_t>::is_always_lock_free);

void setHandler(void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

// Only async-signal-safe calls may stand here.
extern "C" void onTerminationSignal(int number)
{
    const int savedErrno = errno;
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    const std::int64_t now = time.tv_sec * std::int64_t(1000000000) + time.tv_nsec;
    std::int64_t first = 0;
    if (firstSignal.compare_exchange_strong(first, now)) {
        const char byte = 0;
        [[maybe_unused]] const auto written = write(wakePipe[1], &byte, 1);
    } else if (now - first >= twinsNs) {
        setHandler(SIG_DFL);
        raise(number); // comes when this handler returns
    }
    errno = savedErrno;
}

} // namespace

TerminationSignals::TerminationSignals(std::chrono::nanoseconds twins)
{
    if (pipe2(wakePipe, O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("no pipe for signals: the process has too many open files");
    m_notifier = new QSocketNotifier(wakePipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        m_notifier->setEnabled(false);
        Q_EMIT caught();
    });
    firstSignal = 0;
    twinsNs = twins.count();
    setHandler(onTerminationSignal);
}

TerminationSignals::~TerminationSignals()
{
    setHandler(SIG_DFL);
    for (int &end : wakePipe) {
        close(end);
        end = -1;
    }
}

} // namespace apps
