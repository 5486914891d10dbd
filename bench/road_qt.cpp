#include "road_qt.h"

#include "road.h"

#include <QByteArray>
#include <QDataStream>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <benchmark/benchmark.h>

namespace road {

namespace {

QByteArray fold(const short *samples, int channels)
{
    QByteArray pixels(kPixels, '\0');
    foldPlain(samples, channels, reinterpret_cast<unsigned char *>(pixels.data()));
    return pixels;
}

} // namespace

QtWorker::QtWorker(quint16 port, bool folded) : m_folded(folded)
{
    m_socket = new QTcpSocket(this);
    m_socket->connectToHost(QStringLiteral("127.0.0.1"), port);
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
}

void QtWorker::onScan(const QVector<short> &scan)
{
    QDataStream stream(m_socket);
    if (m_folded)
        stream << qCompress(fold(scan.constData(), scan.size()));
    else
        stream << qCompress(reinterpret_cast<const uchar *>(scan.constData()),
                            scan.size() * int(sizeof(short)));
}

namespace {

/// One window: a thread that folds and sends, and a thread that reads.
struct Window {
    QThread sending, reading;
    QtWorker *worker = nullptr;   // lives on sending
    QTcpServer *server = nullptr; // lives on reading
};

class QtRoad final : public Road {
public:
    QtRoad(const Load &load, bool folded) : Road(load.windows), m_folded(folded)
    {
        qRegisterMetaType<QVector<short>>();
        for (int i = 0; i < load.windows; ++i) {
            m_windows.push_back(std::make_unique<Window>());
            start(*m_windows.back(), i);
        }
    }

    ~QtRoad() override
    {
        for (auto &window : m_windows) {
            run(window->sending, [&] { delete window->worker; });
            run(window->reading, [&] { delete window->server; });
            for (QThread *thread : {&window->sending, &window->reading}) {
                thread->quit();
                thread->wait();
            }
        }
    }

    void feed(const std::vector<short> &scan, std::uint64_t) override
    {
        Q_EMIT m_feeder.scanReady(QVector<short>(scan.begin(), scan.end()));
    }

private:
    /// Runs \a work on \a thread and waits for it.
    template <typename Work>
    static void run(QThread &thread, Work work)
    {
        QObject context;
        context.moveToThread(&thread);
        QMetaObject::invokeMethod(
            &context,
            [&] {
                work();
                context.moveToThread(nullptr);
            },
            Qt::BlockingQueuedConnection);
    }

    void start(Window &window, int index)
    {
        window.reading.start();
        window.sending.start();
        quint16 port = 0;
        run(window.reading, [&] {
            window.server = new QTcpServer;
            window.server->listen(QHostAddress::LocalHost);
            port = window.server->serverPort();
            QObject::connect(window.server, &QTcpServer::newConnection, window.server,
                             [this, &window, index] { read(window, index); });
        });
        run(window.sending, [&] { window.worker = new QtWorker(port, m_folded); });
        QObject::connect(&m_feeder, &QtFeeder::scanReady, window.worker, &QtWorker::onScan,
                         Qt::QueuedConnection);
    }

    void read(Window &window, int index)
    {
        QTcpSocket *socket = window.server->nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket, index] {
            QDataStream stream(socket);
            for (;;) {
                stream.startTransaction();
                QByteArray packed;
                stream >> packed;
                if (!stream.commitTransaction())
                    return;
                showRow(qUncompress(packed));
                arrived(index, 1);
            }
        });
    }

    /// A whole scan is folded where it is shown.
    void showRow(const QByteArray &content) const
    {
        const QByteArray row = m_folded ? content
                                        : fold(reinterpret_cast<const short *>(content.constData()),
                                               content.size() / int(sizeof(short)));
        benchmark::DoNotOptimize(row.constData());
    }

    bool m_folded;
    QtFeeder m_feeder;
    std::vector<std::unique_ptr<Window>> m_windows;
};

} // namespace

std::unique_ptr<Road> makeQtRoad(const Load &load) { return std::make_unique<QtRoad>(load, false); }

std::unique_ptr<Road> makeFoldedQtRoad(const Load &load)
{
    return std::make_unique<QtRoad>(load, true);
}

} // namespace road
