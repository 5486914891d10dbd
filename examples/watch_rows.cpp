// A display client in its smallest form: it asks a server for the waterfall of a window of its own
// and tells the colours and the time of each row.
//
//   spectree-receiver --input sim: &           (its first line tells the endpoint)
//   watch_rows tcp://127.0.0.1:PORT
#include "platform/transmission/consumergroup.h"
#include "scanbuffer/dataconsumer.h"
#include "scanbuffer/mdatatypes.h"

#include <QCoreApplication>
#include <QUuid>

#include <algorithm>
#include <cstdio>

namespace {

/// Shows the whole band: a window looks at 10 to 11 MHz until it is told otherwise.
class WholeBand final : public DataConsumer {
public:
    WholeBand() : DataConsumer(AdapterType_XAxis) {}

private:
    void handleData(const MData &message) override
    {
        if (const auto *channels = dynamic_cast<const MDataChannelRangeDefinition *>(&message))
            show(channels->asChannelRangeDefinition());
        // The full state of a window comes as one container of its parts.
        if (const auto *state = dynamic_cast<const MDataContainer *>(&message))
            for (short i = 0; i < state->GetAdditional(); ++i)
                if (const auto part = state->getMData(i))
                    handleData(*part);
    }

    void show(const values::ChannelRangeDefinition &channels)
    {
        if (channels.empty())
            return;
        const AxisData axis{channels.GetMinCenterFrequency(), channels.GetMaxCenterFrequency(),
                            800};
        const std::string image = MYData<AxisData>(axis, MDT_XAxis).GetBinary();
        sendCommandOverConnector(QByteArray(image.data(), int(image.size())));
    }
};

class RowWatcher final : public DataConsumer {
public:
    RowWatcher() : DataConsumer(AdapterType_Waterfall) {}

private:
    void handleAdapterReady() override { std::puts("the window is there"); }

    void handleData(const MData &message) override
    {
        // Whatever is no row of pixels is state of the window: its axis and its level range.
        const auto *block = dynamic_cast<const MDataWaterfall *>(&message);
        if (block == nullptr || block->GetString().empty())
            return;
        const auto *const first =
            reinterpret_cast<const unsigned char *>(block->GetString().data());
        const auto [low, high] = std::minmax_element(first, first + block->size().width());
        std::printf("%d row(s) of %d pixels, newest at %llu us, colours %d to %d\n",
                    block->size().height(), block->size().width(),
                    static_cast<unsigned long long>(block->GetYoungest()), int(*low), int(*high));
    }
};

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fputs("usage: watch_rows tcp://ADDRESS:PORT\n", stderr);
        return 2;
    }
    try {
        sbs::ConsumerGroup group(argv[1], QUuid::createUuid().toString());
        WholeBand band;
        RowWatcher watcher;
        band.registerAtGroup(group);
        watcher.registerAtGroup(group);
        return app.exec();
    } catch (const std::exception &error) {
        std::fprintf(stderr, "watch_rows: %s\n", error.what());
        return 1;
    }
}
