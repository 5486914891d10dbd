#pragma once

#include <QObject>
#include <QVector>

class QTcpSocket;

namespace road {

/// The two ends of the queued signal of the usual Qt way.
class QtFeeder : public QObject {
    Q_OBJECT
Q_SIGNALS:
    void scanReady(const QVector<short> &scan);
};

/// Sends each scan, whole or already folded to a row, packed with qCompress over its socket.
class QtWorker : public QObject {
    Q_OBJECT
public:
    QtWorker(quint16 port, bool folded);
    void onScan(const QVector<short> &scan);

private:
    QTcpSocket *m_socket;
    bool m_folded;
};

} // namespace road
