#pragma once

#include "platform/base/sync.h"
#include "platform/transmission/adapter.h"
#include "platform/transmission/adaptercontroller.h"
#include "platform/transmission/adapterfactory.h"
#include "platform/transmission/consumerconnector.h"
#include "platform/transmission/consumergroup.h"
#include "platform/transmission/server.h"
#include "waitfor.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <QList>
#include <QThread>

#include <atomic>
#include <functional>
#include <map>
#include <memory>

/// A data source of plain byte arrays with one kind of adapter, "Echo", for tests over loopback.
namespace rig {

inline void runFor(int milliseconds)
{
    QDeadlineTimer limit(milliseconds);
    while (!limit.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

/// Its state is a text that commands append to; it counts what it is asked for.
class EchoAdapter final : public sbs::Adapter {
public:
    using Adapter::Adapter;
    void slotCommand(QByteArray command) override
    {
        m_text += command;
        sendIncrementalStateUpdate(command);
    }
    void slotRequestFullStateUpdate() override { sendFullStateUpdate("full:" + m_text); }
    void InitializeClient() override { sendIncrementalStateUpdate("hello"); }

private:
    QByteArray m_text;
};

class Controller final : public sbs::IAdapterController {
public:
    ~Controller() override { dropAdapters(); }
    void registerAdapter(std::weak_ptr<sbs::Adapter> adapter) override
    {
        m_all[adapter.lock()->identity()] = adapter;
        m_registered.fetch_add(1);
        m_wrongThread = m_wrongThread || QThread::currentThread() != thread();
    }
    void unregisterAdapter(const QByteArray &identity) override
    {
        m_all.erase(identity);
        m_unregistered.fetch_add(1);
        m_wrongThread = m_wrongThread || QThread::currentThread() != thread();
    }
    /// Runs \a work with each adapter, on the controller's thread, and waits.
    void withAdapters(const std::function<void(sbs::Adapter &)> &work)
    {
        std::atomic<bool> done{false};
        Kelm::post(this, [&] {
            for (const auto &[identity, adapter] : m_all)
                if (const auto held = adapter.lock())
                    work(*held);
            done.store(true);
        });
        while (!done.load())
            QThread::usleep(100);
    }

    std::atomic<int> m_registered{0}, m_unregistered{0};
    std::atomic<bool> m_wrongThread{false};

private:
    std::map<QByteArray, std::weak_ptr<sbs::Adapter>> m_all; // on its own thread
};

/// Keeps the windows of a server, each with its thread. Window "forbidden" is not there.
class Windows {
public:
    ~Windows()
    {
        for (const QString &guid : guids())
            end(guid);
    }
    Controller *createOrGet(const QString &guid)
    {
        const Kelm::MutexLocker lock(m_mutex);
        Entry &entry = m_entries[guid];
        if (entry.controller)
            return entry.controller;
        ++m_made;
        entry.controller = new Controller;
        entry.thread = new QThread;
        entry.controller->moveToThread(entry.thread);
        QObject::connect(
            entry.controller, &Controller::signalLostMessages, entry.controller,
            [this](std::uint64_t count) { m_lost.fetch_add(count); }, Qt::DirectConnection);
        entry.thread->start();
        return entry.controller;
    }
    /// Ends a window in its own thread, as a data source may at any time.
    void end(const QString &guid)
    {
        Entry entry;
        {
            const Kelm::MutexLocker lock(m_mutex);
            std::swap(entry, m_entries[guid]);
            m_entries.erase(guid);
        }
        if (!entry.controller)
            return;
        m_wrongThread = m_wrongThread || entry.controller->m_wrongThread.load();
        Controller *const controller = entry.controller;
        QThread *const thread = entry.thread;
        Kelm::post(controller, [controller, thread] {
            delete controller;
            thread->quit();
        });
        thread->wait();
        Kelm::syncAcquire(thread);
        delete thread;
    }
    QList<QString> guids()
    {
        const Kelm::MutexLocker lock(m_mutex);
        QList<QString> all;
        for (const auto &[guid, entry] : m_entries)
            all.append(guid);
        return all;
    }

    Kelm::Mutex m_door; // while it is held, the server waits for the window that it asks for
    std::atomic<int> m_asked{0}, m_made{0}, m_released{0};
    std::atomic<std::uint64_t> m_lost{0};
    std::atomic<bool> m_wrongThread{false};

private:
    struct Entry {
        Controller *controller = nullptr;
        QThread *thread = nullptr;
    };
    Kelm::Mutex m_mutex;
    std::map<QString, Entry> m_entries SPECTREE_GUARDED_BY(m_mutex);
};

class Adapters final : public sbs::IAdapterFactory {
public:
    std::shared_ptr<sbs::Adapter> create(const QByteArray &name,
                                         const QByteArray &identity) const override
    {
        return name == "Echo" ? std::make_shared<EchoAdapter>(identity) : nullptr;
    }
};

class Controllers final : public sbs::IAdapterControllerFactory {
public:
    explicit Controllers(Windows &windows) : m_windows(windows) {}
    sbs::IAdapterController *create(const QString &guid) const override
    {
        ++m_windows.m_asked;
        const Kelm::MutexLocker lock(m_windows.m_door);
        return guid == QStringLiteral("forbidden") ? nullptr : m_windows.createOrGet(guid);
    }
    void release(const QString &guid) const override
    {
        m_windows.end(guid);
        m_windows.m_released.fetch_add(1);
    }

private:
    Windows &m_windows;
};

inline sbs::ServerOptions fastOptions(const QByteArray &endpoint = "tcp://127.0.0.1:*")
{
    sbs::ServerOptions options;
    options.endpoint = endpoint;
    options.heartbeat = std::chrono::milliseconds(30);
    options.silentAfter = std::chrono::seconds(60); // raw peers don't beat
    options.windowGrace = std::chrono::milliseconds(150);
    return options;
}

inline std::unique_ptr<sbs::Server> makeServer(Windows &windows,
                                               const sbs::ServerOptions &options = fastOptions())
{
    return std::make_unique<sbs::Server>(std::make_unique<Adapters>(),
                                         std::make_unique<Controllers>(windows), options);
}

/// A consumer that remembers all it is told.
class Consumer {
public:
    explicit Consumer(const QByteArray &address, const QString &guid = QStringLiteral("w"),
                      const QByteArray &kind = "Echo", sbs::ConsumerOptions options = {})
    {
        options.retryMs = 100;
        options.silentMs = 5000;
        const sbs::ConsumerGroup group(address, guid, options);
        m_connector =
            std::make_unique<sbs::ConsumerConnector>(nullptr, kind, address, group.getContext());
        using C = sbs::ConsumerConnector;
        C *const c = m_connector.get();
        QObject::connect(c, &C::signalStateUpdate, c, [this](QByteArray m) { m_states << m; });
        QObject::connect(c, &C::signalMassdata, c, [this](QByteArray m) { m_massdata << m; });
        QObject::connect(c, &C::signalAdapterReady, c, [this] { ++m_ready; });
        QObject::connect(c, &C::signalRefused, c, [this](QString why) { m_refused << why; });
        QObject::connect(c, &C::signalLinkLost, c, [this](QString why) { m_linkLost << why; });
        QObject::connect(c, &C::signalUnreachable, c, [this](QString why) { m_trouble << why; });
        c->join(group);
    }

    /// Whatever else it was told before.
    bool waitForTrouble(const char *text)
    {
        return waitFor([&] {
            return std::any_of(m_trouble.begin(), m_trouble.end(),
                               [&](const QString &told) { return told.contains(text); });
        });
    }
    bool waitForReady(int times = 1)
    {
        return waitFor([&] { return m_ready >= times && m_states.contains("full:"); });
    }

    std::unique_ptr<sbs::ConsumerConnector> m_connector;
    QList<QByteArray> m_states, m_massdata;
    QList<QString> m_refused, m_linkLost, m_trouble;
    int m_ready = 0;
};

} // namespace rig
