#include "platform/transmission/frames_p.h"
#include "transmission_rig.h"

#include <QDir>
#include <gtest/gtest.h>
#include <zmq.hpp>

#include <csignal>
#include <future>
#include <string>
#include <sys/syscall.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace rig;
using namespace sbs::frames;

/// A peer that says what it likes.
class RawPeer {
public:
    explicit RawPeer(const QByteArray &endpoint)
        : m_context(sbs::ConsumerGroup::sharedContext()),
          m_socket(*m_context, zmq::socket_type::dealer)
    {
        m_socket.set(zmq::sockopt::linger, 0);
        m_socket.set(zmq::sockopt::rcvtimeo, 30000);
        m_socket.connect(endpoint.constData());
    }
    void say(const std::vector<std::string> &parts)
    {
        for (std::size_t i = 0; i < parts.size(); ++i)
            m_socket.send(zmq::buffer(parts[i]),
                          i + 1 < parts.size() ? zmq::send_flags::sndmore : zmq::send_flags::none);
    }
    void sayHello(std::uint32_t credits = 1)
    {
        say({encode(Hello{kVersion, credits, "w", "Echo", "raw"})});
    }
    /// The next frame of type T; what else comes is passed over.
    template <typename T>
    std::optional<T> expect()
    {
        zmq::message_t part;
        while (m_socket.recv(part)) {
            const auto frame = parseFromServer(part.data<char>(), part.size());
            while (part.more())
                (void)m_socket.recv(part);
            if (frame && std::holds_alternative<T>(*frame))
                return std::get<T>(*frame);
        }
        return std::nullopt;
    }

    /// How many mass data come before the next state.
    int countMassdata()
    {
        zmq::message_t part;
        for (int count = 0; m_socket.recv(part);) {
            const auto frame = parseFromServer(part.data<char>(), part.size());
            while (part.more())
                (void)m_socket.recv(part);
            if (frame && std::holds_alternative<State>(*frame))
                return count;
            count += frame && std::holds_alternative<Massdata>(*frame);
        }
        return -1;
    }

private:
    std::shared_ptr<zmq::context_t> m_context;
    zmq::socket_t m_socket;
};

/// Keeps the thread of a window busy while it lives.
class BusyThread {
public:
    explicit BusyThread(QObject &window)
    {
        Kelm::post(&window, [end = m_end.get_future().share()] { end.wait(); });
    }
    ~BusyThread() { m_end.set_value(); }

private:
    std::promise<void> m_end;
};

TEST(TransmissionHostile, MalformedFramesAreCountedAndReachNoAdapter)
{
    Windows windows;
    const auto server = makeServer(windows);
    RawPeer peer(server->getEndpoint());
    const std::vector<std::vector<std::string>> junk = {
        {""},
        {"GET / HTTP/1.1"},
        {std::string(100000, '\x01')},
        {encode(Hello{kVersion, 1, "", "Echo", "t"})},
        {encode(FromConsumer(Hello{kVersion, 1, "w", "Echo", "t"})) + "x"},
        {encode(FromConsumer(Command{}))},                // without its message
        {encode(FromConsumer(Heartbeat{})), "a message"}, // with one that it hasn't
        {"a", "b", "c", "d"},
        std::vector<std::string>(100, "part"),
    };
    for (const auto &parts : junk)
        peer.say(parts);
    peer.say({encode(FromConsumer(Command{})), "no hello yet"});
    EXPECT_TRUE(peer.expect<Farewell>());
    EXPECT_EQ(server->statistics().rejectedFrames, junk.size() + 1);
    EXPECT_EQ(windows.m_made, 0);
    peer.sayHello();
    ASSERT_TRUE(peer.expect<State>());                   // and it is still served when it behaves
    peer.sayHello();                                     // twice on one connection
    peer.say({encode(FromConsumer(Progress{1, 1000}))}); // a state that was never sent
    peer.say({encode(FromConsumer(Progress{1ull << 60, 0}))}); // credits without end
    EXPECT_TRUE(waitFor([&] { return server->statistics().rejectedFrames == junk.size() + 4; }));
}

TEST(TransmissionHostile, AnotherProtocolVersionIsRefused)
{
    Windows windows;
    const auto server = makeServer(windows);
    RawPeer peer(server->getEndpoint());
    Hello hello{kVersion + 1, 1, "w", "Echo", "t"};
    peer.say({encode(hello) + "and what that version may add"});
    const auto refused = peer.expect<Refused>();
    ASSERT_TRUE(refused);
    EXPECT_TRUE(refused->final);
}

TEST(TransmissionHostile, ASilentPeersAdapterGoes)
{
    Windows windows;
    sbs::ServerOptions options = fastOptions();
    options.silentAfter = std::chrono::milliseconds(300);
    const auto server = makeServer(windows, options);
    RawPeer peer(server->getEndpoint());
    peer.sayHello();
    ASSERT_TRUE(peer.expect<Ready>());
    const auto farewell = peer.expect<Farewell>();
    ASSERT_TRUE(farewell);
    EXPECT_EQ(farewell->reason, "The consumer was silent");
    EXPECT_TRUE(waitFor([&] { return windows.m_released == 1; }));
}

TEST(TransmissionHostile, APeerThatTakesInNoStateIsDisconnected)
{
    Windows windows;
    sbs::ServerOptions options = fastOptions();
    options.maxUnseenStates = 10;
    const auto server = makeServer(windows, options);
    RawPeer peer(server->getEndpoint());
    peer.sayHello();
    ASSERT_TRUE(peer.expect<State>());
    windows.createOrGet(QStringLiteral("w"))->withAdapters([](sbs::Adapter &adapter) {
        for (int i = 0; i < 20; ++i)
            adapter.sendIncrementalStateUpdate("change");
    });
    const auto farewell = peer.expect<Farewell>();
    ASSERT_TRUE(farewell);
    EXPECT_EQ(farewell->reason, "The consumer takes in no state");
    EXPECT_TRUE(waitFor([&] { return server->statistics().consumers == 0; }));
}

TEST(TransmissionHostile, APeerThatOnlyGrantsIsSentNoMoreBytesThanTheLimit)
{
    Windows windows;
    sbs::ServerOptions options = fastOptions();
    options.maxQueuedMassdataBytes = 1000;
    options.silentAfter = std::chrono::seconds(60);
    const auto server = makeServer(windows, options);
    RawPeer peer(server->getEndpoint());
    peer.sayHello(1024);
    ASSERT_TRUE(peer.expect<State>() && peer.expect<State>());

    // What is sent, then a state as the mark behind it.
    struct Step {
        const char *name;
        std::uint64_t taken; // told before
        std::vector<int> sizes;
        int expected;
        std::uint64_t lost; // in all
    };
    const Step steps[] = {
        {"two under way, two wait", 0, std::vector<int>(20, 400), 2, 16},
        {"one taken, one of those that wait goes", 1, {}, 1, 16},
        {"all taken: the last one goes, and one beside it", 3, {400}, 2, 16},
        {"nothing under way: one goes, however long", 5, {5000, 1}, 1, 16},
        {"a long one waits for the end of what is under way", 6, {5000}, 1, 16},
        {"and goes then", 7, {}, 1, 16},
    };
    for (const Step &step : steps) {
        SCOPED_TRACE(step.name);
        const auto rejected = server->statistics().rejectedFrames;
        peer.say({encode(FromConsumer(Progress{1024 + step.taken, 0}))});
        peer.say({"junk"}); // counted when what came before it has been taken in
        ASSERT_TRUE(waitFor([&] { return server->statistics().rejectedFrames > rejected; }));
        EXPECT_EQ(server->statistics().rejectedFrames, rejected + 1);
        windows.createOrGet(QStringLiteral("w"))->withAdapters([&](sbs::Adapter &adapter) {
            for (const int size : step.sizes)
                adapter.sendMassdataStateIndependent(QByteArray(size, 'x'));
            adapter.sendIncrementalStateUpdate("mark");
        });
        EXPECT_EQ(peer.countMassdata(), step.expected);
        EXPECT_EQ(server->statistics().lostMessages, step.lost);
    }
}

TEST(TransmissionHostile, ABusyWindowIsNotBuriedInRequests)
{
    Windows windows;
    sbs::ServerOptions options = fastOptions();
    options.maxPendingCommandBytes = 1000;
    const auto server = makeServer(windows, options);
    RawPeer peer(server->getEndpoint());
    peer.sayHello();
    ASSERT_TRUE(peer.expect<State>() && peer.expect<State>());
    {
        const BusyThread busy(*windows.createOrGet(QStringLiteral("w")));
        for (int i = 0; i < 20; ++i)
            peer.say({encode(FromConsumer(RequestState{}))});
        peer.say({"junk"});
        ASSERT_TRUE(waitFor([&] { return server->statistics().rejectedFrames == 1; }));
    }
    ASSERT_EQ(peer.expect<State>()->number, 3u);
    peer.say({encode(FromConsumer(Command{})), "command"});
    EXPECT_FALSE(peer.expect<State>()->full) << "the 20 requests were not answered as one";
    const BusyThread busy(*windows.createOrGet(QStringLiteral("w")));
    for (int i = 0; i < 2; ++i)
        peer.say({encode(FromConsumer(Command{})), std::string(600, 'c')});
    const auto farewell = peer.expect<Farewell>();
    ASSERT_TRUE(farewell);
    EXPECT_EQ(farewell->reason, "The consumer sends too many commands");
}

TEST(TransmissionHostile, SignalsInterruptNothing)
{
    std::signal(SIGUSR1, [](int) {});
    Windows windows;
    const auto server = makeServer(windows);
    Consumer consumer(server->getEndpoint());
    ASSERT_TRUE(consumer.waitForReady());
    std::atomic<bool> over{false};
    std::thread nuisance([&] {
        for (const QDir threads(QStringLiteral("/proc/self/task")); !over; QThread::usleep(50))
            for (const QString &id : threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
                syscall(SYS_tgkill, getpid(), id.toInt(), SIGUSR1);
    });
    for (QDeadlineTimer limit(700); !limit.hasExpired(); runFor(1))
        windows.createOrGet(QStringLiteral("w"))->withAdapters([](sbs::Adapter &adapter) {
            adapter.sendIncrementalStateUpdate("x");
        });
    over = true;
    nuisance.join();
    EXPECT_TRUE(consumer.m_linkLost.isEmpty());
}

TEST(TransmissionHostile, AKilledConsumerIsReplacedWhenItComesBack)
{
    Windows windows;
    sbs::ServerOptions options = fastOptions();
    options.windowGrace = std::chrono::seconds(60);
    const auto server = makeServer(windows, options);
    {
        RawPeer killed(server->getEndpoint());
        killed.sayHello();
        ASSERT_TRUE(killed.expect<Ready>());
    }
    RawPeer back(server->getEndpoint());
    back.sayHello(); // the same token, before the server has missed the first
    ASSERT_TRUE(back.expect<Ready>());
    EXPECT_LE(server->statistics().consumers, 1u);
    Controller *const window = windows.createOrGet(QStringLiteral("w"));
    EXPECT_TRUE(waitFor([&] { return window->m_unregistered == 1 && window->m_registered == 2; }));
}

} // namespace
