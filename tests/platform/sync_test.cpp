#include "platform/base/instancecounter.h"
#include "platform/base/kelmos.h"
#include "platform/base/sync.h"
#include "platform/startup/cfgcenter.h"

#include <QCoreApplication>
#include <QThread>
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>
#include <vector>

namespace {

TEST(Post, RunsInOrderOnTheReceiversThread)
{
    QObject receiver;
    std::vector<int> seen; // written by the posted work, on this thread
    bool onAppThread = true;
    std::thread poster([&] {
        for (int i = 0; i < 100; ++i)
            Kelm::post(&receiver, [&, i] {
                seen.push_back(i);
                onAppThread = onAppThread && KelmOS::Get().IsAppThread();
            });
    });
    poster.join();
    EXPECT_TRUE(seen.empty());
    QCoreApplication::processEvents();
    ASSERT_EQ(seen.size(), 100u);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_TRUE(onAppThread);
}

TEST(Post, WorkForADestroyedReceiverIsDropped)
{
    bool ran = false;
    {
        QObject receiver;
        Kelm::post(&receiver, [&] { ran = true; });
    }
    QCoreApplication::processEvents();
    EXPECT_FALSE(ran);
}

TEST(KelmOS, KnowsTheApplicationThread)
{
    EXPECT_TRUE(KelmOS::Get().IsAppThreadKnown());
    EXPECT_TRUE(KelmOS::Get().IsAcceptableThread());
    std::thread([] {
        EXPECT_FALSE(KelmOS::Get().IsAppThread());
        EXPECT_FALSE(KelmOS::Get().IsAcceptableThread());
    }).join();
}

TEST(CfgCenter, TheProgramGoesBeforeTheDefaultAndCanBeTakenBack)
{
    ICfg &cfg = CfgCenter::GetAppCfg();
    const QString key = QStringLiteral("SyncTestKey");
    EXPECT_TRUE(cfg.GetBool(key, true));
    cfg.Set(key, false);
    EXPECT_FALSE(cfg.GetBool(key, true));
    cfg.Set(key, QVariant());
    EXPECT_TRUE(cfg.GetBool(key, true));
}

#if !defined(NDEBUG)
struct Probe : Kelm::Counted<Probe> {
    static constexpr const char *kInstanceName = "Probe";
};

TEST(InstanceCounter, NamesWhatIsAlive)
{
    {
        const Probe probe;
        const Probe copy(probe);
        EXPECT_EQ(Kelm::InstanceCounter::alive().at("Probe"), 2);
    }
    EXPECT_EQ(Kelm::InstanceCounter::alive().count("Probe"), 0u);
}
#endif

} // namespace
