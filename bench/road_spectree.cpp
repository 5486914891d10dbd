#include "platform/startup/cfgcenter.h"
#include "platform/transmission/consumergroup.h"
#include "road.h"
#include "scanbuffer/dataconsumer.h"
#include "scanbuffer/mdatatypes.h"
#include "scanbuffer/scanbuffer.h"
#include "valueclasses/fastvaluemap.h"

#include <QThread>

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>
#include <stdexcept>

namespace road {
namespace {

using Map = values::FastValueMap<short, values::levelHandler>;

constexpr int kRingLines = 4 * kScansUnderWay;

/// Asks for the pixels of the window.
class AxisConsumer final : public DataConsumer {
public:
    AxisConsumer(int channels) : DataConsumer(AdapterType_XAxis), m_channels(channels) {}

private:
    void handleData(const MData &) override {}
    void handleAdapterReady() override
    {
        const AxisData axis{-0.5, m_channels - 0.5, short(kPixels)};
        const std::string image = MYData<AxisData>(axis, MDT_XAxis).GetBinary();
        sendCommandOverConnector(QByteArray(image.data(), int(image.size())));
    }

    int m_channels;
};

/// Counts the rows that have not been seen before, by their times.
class RowConsumer final : public DataConsumer {
public:
    explicit RowConsumer(std::function<void(int)> arrived)
        : DataConsumer(AdapterType_Waterfall), m_arrived(std::move(arrived))
    {
    }

private:
    void handleData(const MData &message) override
    {
        const auto *rows = dynamic_cast<const MDataWaterfall *>(&message);
        if (rows == nullptr || rows->size().width() != kPixels)
            return;
        const auto isNew = [this](KRTimeStamp time) { return time > m_newest; };
        const auto count = std::count_if(rows->GetTime().begin(), rows->GetTime().end(), isNew);
        if (count == 0 || rows->GetString().empty())
            return;
        m_newest = rows->GetYoungest();
        m_arrived(int(count));
    }

    std::function<void(int)> m_arrived;
    KRTimeStamp m_newest = 0;
};

class SpectreeRoad final : public Road {
public:
    explicit SpectreeRoad(const Load &load) : Road(load.windows)
    {
        CfgCenter::GetAppCfg().Set(QStringLiteral("UseScanBufferServer"), true);
        CfgCenter::GetAppCfg().Set(QStringLiteral("ScanBufferServerEndpoint"),
                                   QStringLiteral("tcp://127.0.0.1:*"));
        const auto buffer = m_map.CreateRealTimeBuffer();
        values::ChannelRangeDefinition grid;
        grid.AddRangeDefinition(0, unsigned(load.channels), 0.0, 1.0, QString());
        m_map.SetChannelRangeDefinition(grid, 0);
        buffer->setSizeManagerActive(false);
        buffer->setNumberOfLines(kRingLines);

        m_reading.start();
        m_onReader.moveToThread(&m_reading);
        onReader([this, load] { connectWindows(load); });
        warmUp(load);
    }

    ~SpectreeRoad() override
    {
        onReader([this] { m_consumers.clear(); });
        onReader([this] { m_onReader.moveToThread(nullptr); });
        m_reading.quit();
        m_reading.wait();
    }

    void feed(const std::vector<short> &scan, std::uint64_t) override
    {
        m_map.SetTimeStamp(++m_time);
        m_map.SetChannelValues(0, unsigned(scan.size()), const_cast<short *>(scan.data()));
        m_map.EndOfScan(m_time);
    }

private:
    template <typename Work>
    void onReader(Work work)
    {
        QMetaObject::invokeMethod(&m_onReader, work, Qt::BlockingQueuedConnection);
    }

    void connectWindows(const Load &load)
    {
        const QByteArray endpoint = QByteArray::fromStdString(m_map.GetRealTimeBufferName());
        for (int i = 0; i < load.windows; ++i) {
            sbs::ConsumerGroup group(endpoint, QStringLiteral("{window %1}").arg(i));
            m_consumers.push_back(std::make_unique<AxisConsumer>(load.channels));
            m_consumers.back()->registerAtGroup(group);
            m_consumers.push_back(
                std::make_unique<RowConsumer>([this, i](int rows) { rowsArrived(i, rows); }));
            m_consumers.back()->registerAtGroup(group);
        }
    }

    void rowsArrived(int window, int rows)
    {
        if (m_warm.load(std::memory_order_acquire))
            arrived(window, rows);
        else
            m_seen[std::size_t(window)].store(true, std::memory_order_release);
    }

    /// Feeds slowly until each window has shown a row of the right width.
    void warmUp(const Load &load)
    {
        const std::vector<short> scan(std::size_t(load.channels), short(0));
        for (int attempt = 0; attempt < 200; ++attempt) {
            feed(scan, 0);
            QThread::msleep(25);
            int ready = 0;
            for (int i = 0; i < load.windows; ++i)
                ready += m_seen[std::size_t(i)].load(std::memory_order_acquire) ? 1 : 0;
            if (ready == load.windows) {
                QThread::msleep(200);
                m_warm.store(true, std::memory_order_release);
                return;
            }
        }
        throw std::runtime_error("no row has reached the windows");
    }

    Map m_map;
    KRTimeStamp m_time = 1000000;
    std::array<std::atomic<bool>, 16> m_seen{};
    std::atomic<bool> m_warm{false};
    QThread m_reading;
    QObject m_onReader; // lives on m_reading, as the consumers do
    std::vector<std::unique_ptr<DataConsumer>> m_consumers;
};

} // namespace

std::unique_ptr<Road> makeSpectreeRoad(const Load &load)
{
    return std::make_unique<SpectreeRoad>(load);
}

} // namespace road
