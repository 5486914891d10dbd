#pragma once

#include "platform/base/instancecounter.h"
#include "platform/base/sync.h"
#include "platform/base/tracelimit.h"
#include "platform/transmission/frames_p.h"
#include "platform/transmission/server.h"
#include "platform/transmission/serversession_p.h"

#include <zmq.hpp>

#include <map>
#include <memory>
#include <string>
#include <vector>

namespace sbs {

class IoThread;

/// The inside of a Server: its socket, its sessions and their windows.
///
/// The I/O thread reads and decides who comes and goes. Adapters send on their own threads: the
/// socket changes hands under m_mutex, which spares each message a change of threads. The
/// factories are never called under it.
class ServerCore : public std::enable_shared_from_this<ServerCore>,
                   private Kelm::Counted<ServerCore> {
public:
    static constexpr const char *kInstanceName = "sbs::ServerCore";

    ServerCore(std::unique_ptr<IAdapterFactory const> adapters,
               std::unique_ptr<IAdapterControllerFactory const> controllers,
               const ServerOptions &options, IoThread &io);

    const QByteArray &endpoint() const { return m_endpoint; }
    const std::string &domain() const { return m_domain; }
    /// What poll() waits on.
    int descriptor() const { return m_descriptor; }
    Server::Statistics statistics() const;

    // On the I/O thread:
    bool allows(const std::string &clientKey);
    /// Takes in what has come, and looks after sessions and windows. True when there is more.
    bool service();
    /// Milliseconds until service() is needed without an event; -1 for never.
    int tickInterval() const;
    void shutDown();

    /// A message of an adapter. Any thread.
    void send(ServerSession &session, SendMode mode, const QByteArray &message);

private:
    using SessionPtr = std::shared_ptr<ServerSession>;
    enum class Tell { consumer, nobody };
    struct Window {
        std::shared_ptr<ControllerGate> gate;
        Clock::time_point lastUsed;
    };

    void bind(const ServerOptions &options) SPECTREE_REQUIRES(m_mutex);
    void setKeys(const ServerOptions &options) SPECTREE_REQUIRES(m_mutex);

    // Incoming, on the I/O thread
    bool receiveBatch(std::vector<std::vector<zmq::message_t>> &batch);
    void handle(std::vector<zmq::message_t> &parts);
    void handleFrame(const std::string &route, const frames::FromConsumer &frame,
                     zmq::message_t *payload);
    void hello(const std::string &route, const frames::Hello &hello);
    std::string findWindow(const QString &guid, std::shared_ptr<ControllerGate> &gate);
    void startSession(const SessionPtr &session);
    bool isBusy(const ControllerGate &gate, std::size_t moreBytes) const;
    void requestState(const SessionPtr &session);
    void command(const SessionPtr &session, zmq::message_t &payload);
    void progress(const SessionPtr &session, const frames::Progress &frame);
    void rejectFrame(const std::string &why);
    void refuse(const std::string &route, bool final, const std::string &reason);

    // On a controller's thread
    void startAdapter(IAdapterController &controller, const SessionPtr &session);
    bool announceReady(ServerSession &session);
    void fail(ServerSession &session, const std::string &reason);

    // Life and death, on the I/O thread
    void closeSession(const SessionPtr &session, Tell tell, const std::string &reason);
    void lookAfterSessions(Clock::time_point now);
    std::string reasonToClose(const ServerSession &session, Clock::time_point now) const
        SPECTREE_REQUIRES(m_mutex);
    void releaseWindows(Clock::time_point now);

    // Outgoing
    bool transmit(ServerSession &session, const char *header, std::size_t size,
                  const QByteArray *payload) SPECTREE_REQUIRES(m_mutex);
    bool transmitTo(const std::string &route, const char *header, std::size_t size,
                    const QByteArray *payload) SPECTREE_REQUIRES(m_mutex);
    void sendState(ServerSession &session, bool full, const QByteArray &message)
        SPECTREE_REQUIRES(m_mutex);
    void sendWaiting(ServerSession &session) SPECTREE_REQUIRES(m_mutex);
    void wakeIfReadable() SPECTREE_REQUIRES(m_mutex);

    const ServerOptions m_options;
    IoThread &m_io; // outlives the socket: shutDown() comes first
    const std::shared_ptr<IAdapterFactory const> m_adapters;
    std::unique_ptr<IAdapterControllerFactory const> m_controllers; // the I/O thread's own
    std::string m_domain;
    std::vector<std::string> m_allowedKeys; // raw
    QByteArray m_endpoint;
    int m_descriptor = -1;

    mutable Kelm::Mutex m_mutex;
    zmq::socket_t m_socket SPECTREE_GUARDED_BY(m_mutex);
    bool m_open SPECTREE_GUARDED_BY(m_mutex) = true;
    Server::Statistics m_counts SPECTREE_GUARDED_BY(m_mutex);

    Kelm::TraceLimit m_rejectTrace, m_refuseTrace;

    // The I/O thread's own
    std::map<std::string, SessionPtr> m_sessions; // by route
    std::map<QString, Window> m_windows;
};

} // namespace sbs
