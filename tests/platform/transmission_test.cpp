#include "fault.h"
#include "transmission_rig.h"

#include <gtest/gtest.h>
#include <zmq.hpp>

#include <string>

namespace {

using namespace rig;

TEST(Transmission, StateThenCommandsThenMassdataInTheirOrder)
{
    Windows windows;
    const auto server = makeServer(windows);
    Consumer consumer(server->getEndpoint());
    consumer.m_connector->sendCommand("early"); // waits for the adapter
    ASSERT_TRUE(consumer.waitForReady());
    ASSERT_TRUE(waitFor([&] { return consumer.m_states.contains("early"); }));
    EXPECT_EQ(consumer.m_states, (QList<QByteArray>{"hello", "full:", "early"}));

    const QByteArray large(300000, 'x'); // more than what is copied into a message
    windows.createOrGet(QStringLiteral("w"))->withAdapters([&](sbs::Adapter &adapter) {
        adapter.sendMassdata("row");
        adapter.sendMassdataStateIndependent(large);
        adapter.sendMassdata("");
    });
    ASSERT_TRUE(waitFor([&] { return consumer.m_massdata.size() == 3; }));
    EXPECT_EQ(consumer.m_massdata, (QList<QByteArray>{"row", large, ""}));
    consumer.m_connector->requestFullState();
    EXPECT_TRUE(waitFor([&] { return consumer.m_states.last() == "full:early"; }));
    consumer.m_connector.reset();
    EXPECT_TRUE(waitFor([&] { return windows.m_released == 1; })); // the grace time is over
    EXPECT_EQ(server->statistics().consumers, 0u);
    EXPECT_FALSE(windows.m_wrongThread);
}

TEST(Transmission, ASlowConsumerLosesMassdataButNoState)
{
    constexpr int kRows = 5000, kStates = 100;
    Windows windows;
    const auto server = makeServer(windows, [] {
        sbs::ServerOptions options = fastOptions();
        options.maxQueuedMassdata = 8;
        options.silentAfter = std::chrono::seconds(60);
        return options;
    }());
    Consumer consumer(server->getEndpoint());
    ASSERT_TRUE(consumer.waitForReady());
    consumer.m_states.clear();
    // This thread's event loop stands still meanwhile.
    windows.createOrGet(QStringLiteral("w"))->withAdapters([](sbs::Adapter &adapter) {
        for (int i = 0; i < kRows; ++i) {
            adapter.sendMassdataStateIndependent(QByteArray::number(i));
            if (i % (kRows / kStates) == 0)
                adapter.sendIncrementalStateUpdate(QByteArray::number(i));
        }
    });
    ASSERT_TRUE(waitFor([&] {
        return !consumer.m_massdata.isEmpty() &&
               consumer.m_massdata.last() == QByteArray::number(kRows - 1);
    }));
    ASSERT_EQ(consumer.m_states.size(), kStates);
    for (int i = 0; i < kStates; ++i)
        EXPECT_EQ(consumer.m_states[i].toInt(), i * (kRows / kStates));
    // Every row is either here or counted, on all three sides, and the newest came through.
    const auto lost = std::uint64_t(kRows - consumer.m_massdata.size());
    EXPECT_GT(lost, 0u);
    EXPECT_TRUE(waitFor([&] { return consumer.m_connector->lostMessages() == lost; }));
    EXPECT_TRUE(waitFor([&] { return windows.m_lost == lost; }));
    EXPECT_EQ(server->statistics().lostMessages, lost);
}

TEST(Transmission, MassdataOfAnOldStateAreDroppedUnsent)
{
    Windows windows;
    const auto server = makeServer(windows);
    sbs::ConsumerOptions options;
    options.credits = 1;
    Consumer consumer(server->getEndpoint(), QStringLiteral("w"), "Echo", options);
    ASSERT_TRUE(consumer.waitForReady());
    windows.createOrGet(QStringLiteral("w"))->withAdapters([](sbs::Adapter &adapter) {
        adapter.sendMassdata("first"); // takes the only credit
        adapter.sendMassdata("old");
        adapter.sendMassdataStateIndependent("free");
        adapter.sendIncrementalStateUpdate("state");
        adapter.sendMassdata("new");
    });
    ASSERT_TRUE(waitFor([&] { return consumer.m_massdata.contains("new"); }));
    EXPECT_EQ(consumer.m_massdata, (QList<QByteArray>{"first", "free", "new"}));
    EXPECT_EQ(windows.m_lost, 0u); // outdated, not lost
}

TEST(Transmission, MassdataThatTheirBytesHoldBackFollow)
{
    Windows windows;
    sbs::ServerOptions server = fastOptions();
    server.maxQueuedMassdataBytes = 1000;
    const auto running = makeServer(windows, server);
    Consumer consumer(running->getEndpoint());
    ASSERT_TRUE(consumer.waitForReady());
    const QByteArray row(400, 'r');
    windows.createOrGet(QStringLiteral("w"))->withAdapters([&](sbs::Adapter &adapter) {
        for (int i = 0; i < 4; ++i) // far fewer than the credits
            adapter.sendMassdata(row);
    });
    EXPECT_TRUE(waitFor([&] {
        return consumer.m_massdata == QList<QByteArray>{row, row, row, row};
    }));
}

TEST(Transmission, CommandsThatTheLinkDidNotTakeFollowLater)
{
    Windows windows;
    const auto server = makeServer(windows);
    Consumer consumer(server->getEndpoint());
    ASSERT_TRUE(consumer.waitForReady());
    std::unique_ptr<Consumer> other;
    {
        const Kelm::MutexLocker locker(windows.m_door);
        other = std::make_unique<Consumer>(server->getEndpoint(), QStringLiteral("other"));
        ASSERT_TRUE(waitFor([&] { return windows.m_asked == 2; })); // the server is at the door
        for (int i = 0; i < 3500; ++i) // more than all queues on the way hold
            consumer.m_connector->sendCommand(QByteArray(12000, 'c'));
        consumer.m_connector->sendCommand("last");
    }
    EXPECT_TRUE(waitFor([&] { return consumer.m_states.contains("last"); }));
    consumer.m_connector->sendCommand("after");
    EXPECT_TRUE(waitFor([&] { return consumer.m_states.contains("after"); }));
}

TEST(Transmission, AServerThatComesBackIsFoundAgain)
{
    Windows windows;
    auto server = makeServer(windows);
    const QByteArray endpoint = server->getEndpoint();
    Consumer consumer(endpoint);
    ASSERT_TRUE(consumer.waitForReady());
    server.reset();
    ASSERT_TRUE(waitFor([&] { return consumer.m_linkLost.size() == 1; }));
    EXPECT_TRUE(consumer.waitForTrouble("no server answers"));
    consumer.m_states.clear();

    server = makeServer(windows, fastOptions(endpoint));
    ASSERT_TRUE(consumer.waitForReady(2));
    windows.createOrGet(QStringLiteral("w"))->withAdapters([](sbs::Adapter &adapter) {
        adapter.sendMassdata("again");
    });
    EXPECT_TRUE(waitFor([&] { return consumer.m_massdata.contains("again"); }));
}

TEST(Transmission, EachConsumerHasItsAdapterAndALateOneGetsTheFullState)
{
    Windows windows;
    const auto server = makeServer(windows);
    Consumer first(server->getEndpoint());
    ASSERT_TRUE(first.waitForReady());
    Consumer late(server->getEndpoint());
    Consumer other(server->getEndpoint(), QStringLiteral("other"));
    ASSERT_TRUE(late.waitForReady());
    ASSERT_TRUE(other.waitForReady());
    EXPECT_EQ(windows.m_made, 2);
    EXPECT_EQ(windows.createOrGet(QStringLiteral("w"))->m_registered, 2);
    first.m_connector.reset();
    EXPECT_TRUE(
        waitFor([&] { return windows.createOrGet(QStringLiteral("w"))->m_unregistered == 1; }));
    runFor(300); // beyond the grace time: the window has a consumer still
    EXPECT_EQ(windows.m_released, 0);
    EXPECT_EQ(server->statistics().consumers, 2u);
}

TEST(Transmission, AWindowThatEndsByItselfIsMadeAnew)
{
    Windows windows;
    const auto server = makeServer(windows);
    Consumer consumer(server->getEndpoint());
    ASSERT_TRUE(consumer.waitForReady());
    windows.end(QStringLiteral("w"));
    ASSERT_TRUE(waitFor([&] { return consumer.m_ready == 2; }));
    EXPECT_EQ(consumer.m_linkLost.size(), 1);
    EXPECT_EQ(windows.m_made, 2);
}

TEST(Transmission, RefusesWithAReason)
{
    Windows windows;
    sbs::ServerOptions options = fastOptions();
    options.maxConsumers = 1;
    const auto server = makeServer(windows, options);
    Consumer kind(server->getEndpoint(), QStringLiteral("w"), "KFactor");
    ASSERT_TRUE(waitFor([&] { return kind.m_refused.size() == 1; }));
    EXPECT_TRUE(kind.m_refused[0].contains("KFactor"));
    ASSERT_TRUE(waitFor([&] { return windows.m_released == 1; })); // made for nobody
    Consumer forbidden(server->getEndpoint(), QStringLiteral("forbidden"));
    EXPECT_TRUE(forbidden.waitForTrouble("no such window"));
    Consumer first(server->getEndpoint());
    ASSERT_TRUE(first.waitForReady());
    Consumer second(server->getEndpoint());
    EXPECT_TRUE(second.waitForTrouble("as many consumers"));
    first.m_connector.reset();
    EXPECT_TRUE(second.waitForReady()); // there is room now
}

TEST(Transmission, AConnectorMayBeDeletedInItsOwnSlots)
{
    Windows windows;
    const auto server = makeServer(windows);
    using C = sbs::ConsumerConnector;
    const auto deleteIn = [&](auto signal) {
        Consumer consumer(server->getEndpoint());
        QObject::connect(consumer.m_connector.get(), signal, qApp,
                         [&] { consumer.m_connector.reset(); });
        EXPECT_TRUE(waitFor([&] { return !consumer.m_connector; }));
        runFor(20);
    };
    deleteIn(&C::signalAdapterReady);
    deleteIn(&C::signalStateUpdate);
}

TEST(Transmission, BadEndpointsAndBusyPortsAreToldInASentence)
{
    Windows windows;
    const auto server = makeServer(windows);
    for (const QByteArray &endpoint :
         {server->getEndpoint(), QByteArray("tcp://nowhere"), QByteArray("inproc://x"),
          QByteArray("tcp://192.0.2.1:5000"), QByteArray()}) {
        SCOPED_TRACE(endpoint.constData());
        const QString reason = QString::fromStdString(
            faultOf([&] { makeServer(windows, fastOptions(endpoint)); }).reason);
        EXPECT_TRUE(reason.contains('"' + QString::fromUtf8(endpoint) + '"'));
        EXPECT_TRUE(reason.endsWith('.'));
    }
    EXPECT_THROW(Consumer("nowhere"), KRException);
    EXPECT_THROW(Consumer(server->getEndpoint(), QString()), KRException);
    const auto everywhere = makeServer(windows, fastOptions("tcp://*:*"));
    EXPECT_FALSE(everywhere->getEndpoint().contains("0.0.0.0"));
    EXPECT_FALSE(everywhere->getEndpoint().endsWith(":*"));
    EXPECT_TRUE(sbs::Server::isLoopback(server->getEndpoint()));
    for (const char *far : {"tcp://*:*", "tcp://127.0.0.1.example.org:5", "tcp://128.0.0.1:5"})
        EXPECT_FALSE(sbs::Server::isLoopback(far)) << far;
    Consumer consumer(everywhere->getEndpoint());
    EXPECT_TRUE(consumer.waitForReady());
}

} // namespace
