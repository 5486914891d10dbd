// Not linked to the library: it is loaded here as a program loads it with a plug-in.
#include <QCoreApplication>
#include <QLibrary>
#include <gtest/gtest.h>

#include <thread>

namespace {

template <typename Function>
auto onWorker(Function function)
{
    decltype(function()) result{};
    std::thread([&] { result = function(); }).join();
    return result;
}

TEST(LateLoad, OnAWorkerLeavesTheApplicationThreadWhatItIs)
{
    int count = 0;
    QCoreApplication app(count, nullptr);
    QLibrary library(QStringLiteral(SPECTREE_LIBRARY));
    ASSERT_TRUE(onWorker([&] { return library.load(); })) << library.errorString().toStdString();
    const auto isAcceptableThread =
        reinterpret_cast<bool (*)()>(library.resolve("_ZN4Kelm18isAcceptableThreadEv"));
    ASSERT_NE(isAcceptableThread, nullptr);

    // Till the application thread has said so, none is known.
    EXPECT_TRUE(isAcceptableThread());
    EXPECT_TRUE(onWorker(isAcceptableThread));
    QCoreApplication::processEvents();
    EXPECT_TRUE(isAcceptableThread());
    EXPECT_FALSE(onWorker(isAcceptableThread));
}

} // namespace
