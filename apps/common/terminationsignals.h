#pragma once

#include <QObject>

#include <chrono>

class QSocketNotifier;

namespace apps {

/// Turns SIGINT and SIGTERM into a Qt signal on the thread of the event loop, so that a program can
/// end in order. A second one of them ends the process at once, in the usual way, also while the
/// event loop doesn't run. One object a process.
///
/// Two that come within \a twins are one: timeout(1) tells a process and then the process's group.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(std::chrono::nanoseconds twins = std::chrono::milliseconds(100));
    ~TerminationSignals() override;

Q_SIGNALS:
    /// Emitted once.
    void caught();

private:
    QSocketNotifier *m_notifier;
};

} // namespace apps
