#pragma once

#include <QObject>

class QSocketNotifier;

namespace receiver {

/// Turns SIGINT and SIGTERM into a Qt signal on the thread of the event loop. A second one of them
/// ends the process at once, in the usual way. One object a process.
class TerminationSignals : public QObject {
    Q_OBJECT

public:
    TerminationSignals();
    ~TerminationSignals() override;

Q_SIGNALS:
    void caught();

private:
    QSocketNotifier *m_notifier;
};

} // namespace receiver
