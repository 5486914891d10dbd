#include "../platform/transmission_rig.h"
#include "platform/base/krexception.h"
#include "scanbuffer/dataconsumer.h"
#include "scanbuffer/messages/mdata.h"

#include <gtest/gtest.h>
#include <zmq.hpp>

#include <set>

namespace {

using namespace rig;

TEST(AdapterType, NamesAndNumbersAreOneToOne)
{
    std::set<QByteArray> names;
    for (const auto &[type, name] : sbs::adapterNames()) {
        EXPECT_EQ(sbs::adapterName(type), name);
        EXPECT_EQ(sbs::adapterType(name), type);
        names.insert(name);
    }
    EXPECT_EQ(names.size(), 22u);
    EXPECT_EQ(sbs::adapterType("YRange2"), 19);
    EXPECT_TRUE(sbs::adapterName(Adapter_Type(10)).isEmpty());
    EXPECT_EQ(sbs::adapterType("curve"), AdapterType_None);
}

class Probe final : public DataConsumer {
public:
    using DataConsumer::DataConsumer;
    QList<int> m_types;
    int m_ready = 0;
    bool m_throws = false;

protected:
    void handleData(const MData &message) override
    {
        m_types << int(message.GetType());
        if (m_throws)
            throw KRException(QStringLiteral("no"), __FILE__, "Probe", "handleData", __LINE__);
    }
    void handleAdapterReady() override
    {
        ++m_ready;
        if (m_throws)
            throw std::runtime_error("no");
    }
};

/// A server whose one kind is "Curve", with the bytes that the test gives it.
class CurveAdapters final : public sbs::IAdapterFactory {
public:
    std::shared_ptr<sbs::Adapter> create(const QByteArray &name,
                                         const QByteArray &identity) const override
    {
        return name == "Curve" ? std::make_shared<EchoAdapter>(identity) : nullptr;
    }
};

const QByteArray kIdMessage("\x0e\0\0\0;", 5); // type 14 without a payload

TEST(DataConsumer, HandsOnWhatParsesAndDropsTheRest)
{
    Windows windows;
    const sbs::Server server(std::make_unique<CurveAdapters>(),
                             std::make_unique<Controllers>(windows), fastOptions());
    sbs::ConsumerGroup group(server.getEndpoint(), QStringLiteral("w"));
    Probe probe(AdapterType_Curve);
    probe.sendCommandOverConnector("dropped: no group yet");
    probe.m_throws = true;
    probe.registerAtGroup(group);
    ASSERT_TRUE(waitFor([&] { return probe.m_ready == 1; }));
    probe.sendCommandOverConnector(kIdMessage); // comes back as state
    ASSERT_TRUE(waitFor([&] { return probe.m_types.size() == 1; }));
    windows.createOrGet(QStringLiteral("w"))->withAdapters([](sbs::Adapter &adapter) {
        adapter.sendMassdata("no message");
        adapter.sendMassdata(QByteArray("\x7f\0\0\0;", 5)); // a type beyond the last: throws
        adapter.sendMassdata(QByteArray());
        adapter.sendMassdata(kIdMessage);
    });
    ASSERT_TRUE(waitFor([&] { return probe.m_types.size() == 2; }));
    EXPECT_EQ(probe.m_types, (QList<int>{14, 14}));

    probe.registerAtGroup(group); // anew: the old connector goes
    EXPECT_TRUE(waitFor([&] { return probe.m_ready == 2; }));
    EXPECT_TRUE(waitFor([&] { return server.statistics().consumers == 1; }));
}

TEST(DataConsumer, AKindWithoutANameThrowsAndKeepsTheConnector)
{
    sbs::ConsumerGroup group("tcp://127.0.0.1:1", QStringLiteral("w"));
    Probe probe(Adapter_Type(10));
    EXPECT_THROW(probe.registerAtGroup(group), KRException);
    EXPECT_EQ(probe.connector(), nullptr);
}

TEST(DataConsumer, SharesOneContextWhileItIsUsed)
{
    const auto context = DataConsumer::getContext();
    EXPECT_EQ(DataConsumer::getContext(), context);
    EXPECT_EQ(sbs::ConsumerGroup("tcp://127.0.0.1:1", QStringLiteral("w")).getContext(), context);
}

} // namespace
