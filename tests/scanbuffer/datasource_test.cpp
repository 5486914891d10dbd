#include "platform/startup/cfgcenter.h"
#include "scanbuffer/scanbufferdatasource.h"
#include "scanbuffer/scanbufferrepository.h"
#include "scanbuffer/window/windowfactories.h"
#include "scanbuffer/window/windowinbox.h"
#include "waitfor.h"
#include "windowrig.h"

#include <QCoreApplication>
#include <QThread>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

using values::levelHandler;
using Buffer = sbs::ScanBuffer<short, levelHandler>;
using Source = sbs::ScanBufferDataSource<short, levelHandler>;
using Window = sbs::WindowRelated<short, levelHandler>;

namespace {

class DataSource : public testing::Test {
protected:
    void SetUp() override
    {
        CfgCenter::GetAppCfg().Set(QStringLiteral("ScanBufferServerEndpoint"),
                                   QStringLiteral("tcp://127.0.0.1:*"));
    }
};

/// Runs work on a window's thread and waits for it.
template <typename Work>
void onThreadOf(QObject &window, Work work)
{
    std::promise<void> done;
    Kelm::post(&window, [&] {
        work();
        Kelm::syncRelease(&done);
        done.set_value();
    });
    done.get_future().wait();
    Kelm::syncAcquire(&done);
}

TEST_F(DataSource, IsMadeByTypeId)
{
    const int known[] = {100, 101, 102, 103, 104, 105, 106, 107, 108, 110, 111, 112};
    for (const int id : known) {
        const auto source = sbs::IDataSource::Create(id);
        ASSERT_NE(source, nullptr) << id;
        EXPECT_EQ(sbs::ScanBufferRepository::instance().getSource(source->GetGUID()),
                  dynamic_cast<sbs::DataSourceQObject *>(source.get()));
    }
    for (const int id : {-1, 0, 99, 109, 113})
        EXPECT_EQ(sbs::IDataSource::Create(id), nullptr) << id;
    // The handlers' own ids are the other way round.
    const auto spectrum = sbs::IDataSource::Create(111);
    EXPECT_NE(
        (dynamic_cast<
            sbs::ScanBufferDataSource<values::DFSpectrumSample, values::DFSpectrumSampleHandler> *>(
            spectrum.get())),
        nullptr);
}

TEST_F(DataSource, EntersAndLeavesTheRepository)
{
    QString guid;
    auto &repository = sbs::ScanBufferRepository::instance();
    {
        Source source;
        guid = source.GetGUID();
        EXPECT_EQ(repository.getSource(guid), &source);
        source.SetGUID(QStringLiteral("another"));
        EXPECT_EQ(repository.getSource(guid), nullptr);
        EXPECT_EQ(repository.getSource(QStringLiteral("another")), &source);
        EXPECT_TRUE(source.getServerEndpoint().startsWith("tcp://127.0.0.1:"));
    }
    EXPECT_EQ(repository.getSource(QStringLiteral("another")), nullptr);
}

TEST_F(DataSource, MakesOneWindowAndThreadForAGuid)
{
    Source source;
    auto *const window = source.CreateOrGetWindowRelated(QStringLiteral("a"));
    EXPECT_EQ(source.CreateOrGetWindowRelated(QStringLiteral("a")), window);
    auto *const other = source.CreateOrGetWindowRelated(QStringLiteral("b"));
    EXPECT_NE(other, window);
    EXPECT_NE(window->thread(), QThread::currentThread());
    EXPECT_NE(window->thread(), other->thread());
    EXPECT_EQ(window->WinGUID(), QStringLiteral("a"));
}

TEST_F(DataSource, ARemovedWindowEndsOnItsThreadAndIsMadeAnew)
{
    Source source;
    auto *const window = source.CreateOrGetWindowRelated(QStringLiteral("a"));
    QThread *const thread = window->thread();
    std::promise<QThread *> endedOn;
    onThreadOf(*window, [&] {
        QObject::connect(window, &QObject::destroyed,
                         [&] { endedOn.set_value(QThread::currentThread()); });
    });
    source.RemoveWindowRelated(QStringLiteral("a"));
    EXPECT_EQ(endedOn.get_future().get(), thread);
    source.RemoveWindowRelated(QStringLiteral("a"));
    source.RemoveWindowRelated(QStringLiteral("unknown"));
    auto *const again = source.CreateOrGetWindowRelated(QStringLiteral("a"));
    ASSERT_NE(again, nullptr);
    onThreadOf(*again, [&] { EXPECT_TRUE(again->GetWindowVisible()); });
}

TEST_F(DataSource, AWindowThatAsksToGoIsRemoved)
{
    Source source;
    auto *const window = source.CreateOrGetWindowRelated(QStringLiteral("a"));
    std::atomic<bool> gone{false};
    onThreadOf(*window, [&] {
        QObject::connect(window, &QObject::destroyed, [&] { gone = true; });
        Q_EMIT window->signalRemoveWindowData(QStringLiteral("a"));
    });
    EXPECT_TRUE(waitFor([&] { return gone.load(); }));
}

TEST(AdapterFactoryTest, GivesTheTypeOfTheNameThatWasAskedFor)
{
    const sbs::AdapterFactory<short, levelHandler> factory;
    const std::pair<const char *, int> known[] = {
        {"Statistics", 1}, {"Curve", 2},    {"XAxis", 3},    {"Waterfall", 4},
        {"YRange", 18},    {"YRange2", 19}, {"YRangeA", 20}, {"YRangeE", 21}};
    for (const auto &[name, type] : known) {
        const auto adapter = factory.create(name, "identity");
        ASSERT_NE(adapter, nullptr) << name;
        EXPECT_EQ(std::dynamic_pointer_cast<DataSourceAdapter>(adapter)->GetType(), type) << name;
        EXPECT_EQ(adapter->identity(), "identity");
    }
    for (const char *name : {"KFactor", "Azimuth", "curve", ""})
        EXPECT_EQ(factory.create(name, "identity"), nullptr) << name;
}

/// Counts the passes that notes and timers run.
class CountingWindow : public Window {
public:
    using Window::Window;
    void NewData() override
    {
        notes.fetch_add(1);
        Window::NewData();
    }
    std::atomic<int> notes{0};
};

/// Counts its ticks.
class Ticking : public sbs::Adapter, public sbs::IDataSourceAdapter {
public:
    Ticking() : sbs::Adapter("ticking") {}
    Adapter_Type GetType() const override { return AdapterType_Compression; }
    void SetType(Adapter_Type) override {}
    void process() override { ticks.fetch_add(1); }
    std::atomic<int> ticks{0};
};

/// A window on a thread of its own, as its data source makes it.
class RunningWindow {
public:
    RunningWindow()
    {
        buffer->setChannelRangeDefinition(WindowRig<short, levelHandler>::definitionOf(100));
        window = new CountingWindow(buffer, QStringLiteral("w"), buffer->getSizeManager());
        window->listenTo(buffer.get());
        window->moveToThread(&thread);
        QObject::connect(&thread, &QThread::started, window,
                         &sbs::WindowRelatedQObject::slotWorkerThreadStarted);
        QObject::connect(&thread, &QThread::finished, window, &QObject::deleteLater);
        Kelm::syncRelease(static_cast<sbs::WindowRelatedQObject *>(window));
        thread.start();
    }
    ~RunningWindow()
    {
        thread.quit();
        thread.wait();
    }
    void feed(int scans)
    {
        const std::vector<short> samples(100, 5);
        for (int scan = 0; scan < scans; ++scan) {
            buffer->addTimeStamp(++time);
            buffer->addSpectralData({0, 100, samples.data()});
            buffer->endOfScan();
        }
    }

    std::shared_ptr<Buffer> buffer = Buffer::create();
    CountingWindow *window = nullptr;
    QThread thread;
    KRTimeStamp time = 0;
};

TEST(WindowThread, ABusyWindowGetsOneNoteHoweverManyScansCome)
{
    RunningWindow running;
    std::promise<void> busy, goOn;
    std::future<void> release = goOn.get_future();
    Kelm::post(running.window, [&] {
        busy.set_value();
        release.wait();
    });
    busy.get_future().wait();
    running.feed(1000);
    goOn.set_value();
    std::uint64_t shown = 0;
    EXPECT_TRUE(waitFor([&] {
        onThreadOf(*running.window, [&] {
            if (running.window->AnyValidLine())
                shown = running.window->WaterfallChannelLineID(running.window->GetCurrentLine());
        });
        return shown == 1000;
    }));
    EXPECT_LE(running.window->notes.load(), 2) << "one for all of the scans";
}

TEST(WindowThread, AFeederAtFullSpeedLeavesTheTimersTheirTurn)
{
    RunningWindow running;
    const auto ticking = std::make_shared<Ticking>();
    onThreadOf(*running.window, [&] { running.window->registerAdapter(ticking); });
    for (QDeadlineTimer limit(60000); ticking->ticks < 3 && !limit.hasExpired();)
        running.feed(10);
    EXPECT_GE(ticking->ticks, 3);
    EXPECT_TRUE(waitFor([&] { return running.window->notes >= 1; }));
}

TEST(WindowThread, MayGoWhileTheFeederIsAtWork)
{
    const std::shared_ptr<Buffer> buffer = Buffer::create();
    buffer->setChannelRangeDefinition(WindowRig<short, levelHandler>::definitionOf(10));
    std::atomic<bool> stop{false};
    std::thread feeder([&] {
        const std::vector<short> samples(10, 5);
        for (KRTimeStamp time = 1; !stop; ++time) {
            buffer->addTimeStamp(time);
            buffer->addSpectralData({0, 10, samples.data()});
            buffer->endOfScan();
        }
    });
    for (int round = 0; round < 20; ++round) {
        sbs::WindowKeeper keeper([&](const QString &guid) {
            auto window = std::make_unique<Window>(buffer, guid, buffer->getSizeManager());
            window->listenTo(buffer.get());
            return window;
        });
        keeper.createOrGet(QStringLiteral("a"));
        keeper.createOrGet(QStringLiteral("b"));
        keeper.remove(QStringLiteral("a"));
    }
    stop = true;
    feeder.join();
}

} // namespace
