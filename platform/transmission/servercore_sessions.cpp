// Who comes and who goes: the part of ServerCore that runs on the I/O thread and, for the birth of
// an adapter, on its controller's.
#include "platform/base/errorhandler.h"
#include "platform/transmission/controllergate_p.h"
#include "platform/transmission/iothread_p.h"
#include "platform/transmission/servercore_p.h"

#include <algorithm>
#include <exception>
#include <set>

namespace sbs {
namespace {

class SessionLink final : public AdapterLink {
public:
    SessionLink(std::shared_ptr<ServerCore> server, std::shared_ptr<ServerSession> session)
        : m_server(std::move(server)), m_session(std::move(session))
    {
    }
    void send(SendMode mode, const QByteArray &message) override
    {
        m_server->send(*m_session, mode, message);
    }

private:
    const std::shared_ptr<ServerCore> m_server;
    const std::shared_ptr<ServerSession> m_session;
};

bool carriesMessage(const frames::FromConsumer &frame)
{
    return std::holds_alternative<frames::Command>(frame);
}

std::string unknownKind(const QByteArray &kind)
{
    return "The server has no adapter \"" + kind.toStdString() + "\"";
}

} // namespace

void ServerCore::handle(std::vector<zmq::message_t> &parts)
{
    if (parts.size() != 2 && parts.size() != 3)
        return rejectFrame(std::to_string(parts.size()) + " parts");
    const auto frame = frames::parseFromConsumer(parts[1].data<char>(), parts[1].size());
    if (!frame || carriesMessage(*frame) != (parts.size() == 3))
        return rejectFrame("no frame of this protocol");
    handleFrame(parts[0].to_string(), *frame, parts.size() == 3 ? &parts[2] : nullptr);
}

void ServerCore::handleFrame(const std::string &route, const frames::FromConsumer &frame,
                             zmq::message_t *payload)
{
    const auto found = m_sessions.find(route);
    if (const auto *first = std::get_if<frames::Hello>(&frame))
        return found == m_sessions.end() ? hello(route, *first)
                                         : rejectFrame("a second hello on one connection");
    if (found == m_sessions.end()) {
        if (std::holds_alternative<frames::Bye>(frame))
            return;
        // A consumer of the server that stood here before: make it say hello.
        const Kelm::MutexLocker lock(m_mutex);
        const std::string farewell = encode(frames::Farewell{"The server doesn't know the link"});
        m_counts.rejectedFrames += !std::holds_alternative<frames::Heartbeat>(frame);
        transmitTo(route, farewell.data(), farewell.size(), nullptr);
        return;
    }
    const SessionPtr session = found->second;
    {
        const Kelm::MutexLocker lock(m_mutex);
        session->lastHeard = Clock::now();
    }
    if (std::holds_alternative<frames::Command>(frame))
        command(session, *payload);
    else if (const auto *news = std::get_if<frames::Progress>(&frame))
        progress(session, *news);
    else if (std::holds_alternative<frames::RequestState>(frame))
        requestState(session);
    else if (std::holds_alternative<frames::Bye>(frame))
        closeSession(session, Tell::nobody, "the consumer ended");
}

void ServerCore::hello(const std::string &route, const frames::Hello &hello)
{
    if (hello.version != frames::kVersion)
        return refuse(route, true,
                      "The server speaks version " + std::to_string(frames::kVersion) +
                          " of the protocol, the consumer version " +
                          std::to_string(hello.version));
    const QByteArray identity = QByteArray::fromStdString(hello.token);
    const auto former = std::ranges::find_if(
        m_sessions, [&](const auto &entry) { return entry.second->identity == identity; });
    if (former != m_sessions.end())
        closeSession(SessionPtr(former->second), Tell::nobody, "the consumer came back");
    if (m_sessions.size() >= m_options.maxConsumers)
        return refuse(route, false, "The server has as many consumers as it may have");

    const QString guid = QString::fromStdString(hello.windowGuid);
    std::shared_ptr<ControllerGate> gate;
    if (const std::string why = findWindow(guid, gate); !why.empty())
        return refuse(route, false, why);
    if (isBusy(*gate, 0))
        return refuse(route, false, "The window is too busy");

    const auto session =
        std::make_shared<ServerSession>(m_options, std::min(hello.credits, frames::kMaxCredits));
    session->route = route;
    session->windowGuid = guid;
    session->kind = QByteArray::fromStdString(hello.kind);
    session->identity = identity;
    session->gate = gate;
    session->lastHeard = session->lastSent = Clock::now();
    startSession(session);
}

std::string ServerCore::findWindow(const QString &guid, std::shared_ptr<ControllerGate> &gate)
{
    const auto found = m_windows.find(guid);
    if (found != m_windows.end() && found->second.gate->isOpen()) {
        gate = found->second.gate;
        return {};
    }
    if (found == m_windows.end() && m_windows.size() >= m_options.maxConsumers)
        return "The server has as many windows as it may have";
    try {
        IAdapterController *const controller = m_controllers->create(guid);
        if (!controller)
            return "The server has no such window";
        gate = ControllerGate::of(*controller);
        m_windows[guid] = {gate, Clock::now()};
        return {};
    } catch (const std::exception &error) {
        return std::string("The server can't make the window: ") + error.what();
    }
}

void ServerCore::startSession(const SessionPtr &session)
{
    const auto count = [this] {
        const Kelm::MutexLocker lock(m_mutex);
        m_counts.consumers = m_sessions.size();
    };
    m_sessions.emplace(session->route, session);
    count(); // before the consumer hears that it is one
    const bool posted =
        session->gate->post([self = shared_from_this(), session](IAdapterController &controller) {
            self->startAdapter(controller, session);
        });
    if (posted)
        return;
    m_sessions.erase(session->route);
    count();
    refuse(session->route, false, "The window is just ending");
}

void ServerCore::startAdapter(IAdapterController &controller, const SessionPtr &session)
{
    std::shared_ptr<Adapter> adapter;
    try {
        adapter = m_adapters->create(session->kind, session->identity);
    } catch (const std::exception &error) {
        return fail(*session, error.what());
    }
    if (!adapter)
        return fail(*session, unknownKind(session->kind));
    adapter->attach(std::make_shared<SessionLink>(shared_from_this(), session));
    ControllerGate::hold(controller, adapter);
    if (!announceReady(*session))
        return ControllerGate::release(controller, session->identity);
    controller.registerAdapter(adapter);
    adapter->InitializeClient();
    adapter->slotRequestFullStateUpdate();
}

bool ServerCore::announceReady(ServerSession &session)
{
    const Kelm::MutexLocker lock(m_mutex);
    if (!m_open || session.phase != ServerSession::Phase::starting)
        return false;
    session.phase = ServerSession::Phase::ready;
    const std::string frame =
        encode(frames::Ready{frames::kVersion, std::uint32_t(m_options.heartbeat.count())});
    const bool sent = transmit(session, frame.data(), frame.size(), nullptr);
    wakeIfReadable();
    return sent;
}

void ServerCore::fail(ServerSession &session, const std::string &reason)
{
    const Kelm::MutexLocker lock(m_mutex);
    if (!m_open || session.phase != ServerSession::Phase::starting)
        return;
    const std::string frame = encode(frames::Refused{true, reason});
    transmit(session, frame.data(), frame.size(), nullptr);
    session.phase = ServerSession::Phase::closed;
    m_io.wake();
}

/// Counted by window: a consumer that is shut out and comes back must not begin at nothing.
bool ServerCore::isBusy(const ControllerGate &gate, std::size_t moreBytes) const
{
    return gate.pendingWorks() >= m_options.maxPendingCommands ||
           gate.pendingBytes() + moreBytes > m_options.maxPendingCommandBytes;
}

/// Requests that wait for a busy adapter are one, up to the next command: each would be answered
/// with the same state.
void ServerCore::requestState(const SessionPtr &session)
{
    if (session->stateRequestPending.exchange(true))
        return;
    session->gate->post([session](IAdapterController &controller) {
        session->stateRequestPending.store(false);
        if (const auto adapter = ControllerGate::find(controller, session->identity))
            adapter->slotRequestFullStateUpdate();
    });
}

void ServerCore::command(const SessionPtr &session, zmq::message_t &payload)
{
    const std::size_t size = payload.size();
    if (isBusy(*session->gate, size))
        return closeSession(session, Tell::consumer, "The consumer sends too many commands");
    session->stateRequestPending.store(false); // the next one wants to know what this one did
    session->gate->post(
        [session,
         command = QByteArray(payload.data<char>(), int(size))](IAdapterController &controller) {
            if (const auto adapter = ControllerGate::find(controller, session->identity))
                adapter->slotCommand(command);
        },
        size);
}

void ServerCore::progress(const SessionPtr &session, const frames::Progress &frame)
{
    const Kelm::MutexLocker lock(m_mutex);
    if (session->flow.progress(frame.granted, frame.stateSeen))
        sendWaiting(*session);
    else
        ++m_counts.rejectedFrames;
}

void ServerCore::rejectFrame(const std::string &why)
{
    {
        const Kelm::MutexLocker lock(m_mutex);
        ++m_counts.rejectedFrames;
    }
    if (const auto times = m_rejectTrace.due())
        SPECTREE_TRACE(TraceWarnings,
                       QStringLiteral("The scan buffer server dropped %1 frames, the last one: %2")
                           .arg(times)
                           .arg(QString::fromStdString(why)));
}

void ServerCore::refuse(const std::string &route, bool final, const std::string &reason)
{
    if (const auto times = m_refuseTrace.due())
        SPECTREE_TRACE(
            TraceWarnings,
            QStringLiteral("The scan buffer server refused %1 consumers, the last one: %2")
                .arg(times)
                .arg(QString::fromStdString(reason)));
    const std::string frame = encode(frames::Refused{final, reason});
    const Kelm::MutexLocker lock(m_mutex);
    transmitTo(route, frame.data(), frame.size(), nullptr);
}

void ServerCore::closeSession(const SessionPtr &session, Tell tell, const std::string &reason)
{
    {
        const Kelm::MutexLocker lock(m_mutex);
        const std::string frame = encode(frames::Farewell{reason});
        if (tell == Tell::consumer)
            transmit(*session, frame.data(), frame.size(), nullptr);
        session->phase = ServerSession::Phase::closed;
        m_counts.consumers = m_sessions.size() - m_sessions.count(session->route);
    }
    SPECTREE_TRACE(TraceLifecycle, QStringLiteral("Consumer %1 of window %2 has gone: %3")
                                       .arg(QString::fromUtf8(session->kind), session->windowGuid,
                                            QString::fromStdString(reason)));
    session->gate->post([identity = session->identity](IAdapterController &controller) {
        ControllerGate::release(controller, identity);
    });
    if (const auto window = m_windows.find(session->windowGuid); window != m_windows.end())
        window->second.lastUsed = Clock::now();
    m_sessions.erase(session->route);
}

std::string ServerCore::reasonToClose(const ServerSession &session, Clock::time_point now) const
{
    if (session.phase == ServerSession::Phase::closed)
        return "its connection is gone";
    if (!session.gate->isOpen())
        return "The window has ended";
    if (now - session.lastHeard > m_options.silentAfter)
        return "The consumer was silent";
    if (session.flow.isStuck())
        return "The consumer takes in no state";
    return {};
}

void ServerCore::lookAfterSessions(Clock::time_point now)
{
    std::vector<std::pair<SessionPtr, std::string>> going;
    {
        const Kelm::MutexLocker lock(m_mutex);
        for (const auto &[route, session] : m_sessions) {
            if (std::string why = reasonToClose(*session, now); !why.empty()) {
                going.emplace_back(session, std::move(why));
            } else if (now - session->lastSent >= m_options.heartbeat) {
                const std::string beat = encode(frames::Beat{session->flow.lost()});
                transmit(*session, beat.data(), beat.size(), nullptr);
            }
        }
    }
    for (const auto &[session, why] : going)
        closeSession(session, Tell::consumer, why);
}

void ServerCore::releaseWindows(Clock::time_point now)
{
    std::set<QString> used;
    for (const auto &[route, session] : m_sessions)
        used.insert(session->windowGuid);
    for (auto entry = m_windows.begin(); entry != m_windows.end();) {
        Window &window = entry->second;
        if (used.contains(entry->first))
            window.lastUsed = now;
        const bool open = window.gate->isOpen();
        if (open && now - window.lastUsed < m_options.windowGrace) {
            ++entry;
            continue;
        }
        if (open)
            m_controllers->release(entry->first);
        entry = m_windows.erase(entry);
    }
}

} // namespace sbs
