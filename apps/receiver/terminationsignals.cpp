#include "apps/receiver/terminationsignals.h"

#include <QSocketNotifier>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace receiver {
namespace {

int wakePipe[2] = {-1, -1};

// Only async-signal-safe calls may stand here.
extern "C" void wakeEventLoop(int)
{
    const int savedErrno = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(wakePipe[1], &byte, 1);
    errno = savedErrno;
}

void setHandler(void (*handler)(int), int flags)
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

} // namespace

TerminationSignals::TerminationSignals()
{
    if (pipe2(wakePipe, O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("no pipe for signals: the process has too many open files");
    m_notifier = new QSocketNotifier(wakePipe[0], QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, [this] {
        m_notifier->setEnabled(false);
        Q_EMIT caught();
    });
    // Once only: the second signal finds the default action, which ends the process.
    setHandler(wakeEventLoop, int(SA_RESETHAND | SA_RESTART));
}

TerminationSignals::~TerminationSignals()
{
    setHandler(SIG_DFL, 0);
    for (int &end : wakePipe) {
        close(end);
        end = -1;
    }
}

} // namespace receiver
