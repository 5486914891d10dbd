#include "apps/common/terminationsignals.h"

#include <QSignalSpy>
#include <gtest/gtest.h>

#include <csignal>

namespace {

using apps::TerminationSignals;

constexpr std::chrono::hours kAnyTime(1000);

TEST(TerminationSignals, BecomeOneQtSignal)
{
    for (const int number : {SIGTERM, SIGINT}) {
        TerminationSignals signals(kAnyTime);
        QSignalSpy caught(&signals, &TerminationSignals::caught);
        std::raise(number);
        std::raise(SIGTERM); // its twin
        EXPECT_EQ(caught.count(), 0) << "not inside the handler";
        EXPECT_TRUE(caught.wait(10000));
        QCoreApplication::processEvents();
        EXPECT_EQ(caught.count(), 1);
    }
}

TEST(TerminationSignals, EndTheProcessTheSecondTime)
{
    for (const int second : {SIGTERM, SIGINT}) {
        const auto raiseTwice = [second] {
            const TerminationSignals signals(std::chrono::nanoseconds(0));
            std::raise(SIGTERM);
            std::raise(second);
            std::_Exit(0);
        };
        EXPECT_EXIT(raiseTwice(), ::testing::KilledBySignal(second), "");
    }
}

} // namespace
