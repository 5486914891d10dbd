#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QThread>

/// Runs the event loop until \a done, at most a minute: the bound only ends a test that hangs.
template <typename Done>
bool waitFor(Done done)
{
    const QDeadlineTimer limit(60'000);
    while (!done()) {
        if (limit.hasExpired())
            return false;
        QCoreApplication::processEvents();
        QThread::usleep(500); // the processor is for those who are waited for
    }
    return true;
}
