// Every test program runs inside an application object, as values and windows do in a suite, and
// ends by asking whether a long-lived object was left behind.
#include "platform/base/instancecounter.h"

#if defined(SPECTREE_TEST_GUI)
#include <QGuiApplication>
using TestApplication = QGuiApplication;
#else
#include <QCoreApplication>
using TestApplication = QCoreApplication;
#endif
#include <gtest/gtest.h>

#include <iostream>

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    TestApplication app(argc, argv);
    const int result = RUN_ALL_TESTS();
    const auto left = Kelm::InstanceCounter::alive();
    for (const auto &[name, count] : left)
        std::cerr << "left behind: " << count << " x " << name << '\n';
    return result != 0 ? result : left.empty() ? 0 : 1;
}
