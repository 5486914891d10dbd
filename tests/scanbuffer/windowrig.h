#pragma once

#include "platform/transmission/adapter.h"
#include "scanbuffer/messages/mdatawaterfall.h"
#include "scanbuffer/scanbuffer_connector_scanline.h"
#include "scanbuffer/scanbuffer_connector_statistics.h"
#include "scanbuffer/scanbuffer_connector_waterfall.h"
#include "scanbuffer/windowrelated.h"

#include <memory>
#include <vector>

/// Keeps what an adapter sends, parsed.
class RecordingLink : public sbs::AdapterLink {
public:
    struct Message {
        sbs::SendMode mode;
        std::unique_ptr<MData> data;
    };
    void send(sbs::SendMode mode, const QByteArray &message) override
    {
        messages.push_back({mode, MData::FromBinary(message.constData(), message.size())});
    }
    std::vector<Message> messages;
};

/// A scan buffer of one range of channels at 0.5, 1.5, 2.5 ... and a window on this thread with a
/// pixel a channel, as long as a test doesn't ask for another axis.
template <typename Y, typename Handler>
class WindowRig {
public:
    using Window = sbs::WindowRelated<Y, Handler>;

    explicit WindowRig(unsigned int channels, unsigned int lines = 100)
    {
        buffer->setSizeManagerActive(false);
        buffer->setChannelRangeDefinition(definitionOf(channels));
        buffer->setNumberOfLines(lines);
        window.slotWorkerThreadStarted();
        window.SetXRange({0.0, double(channels), short(channels), 0, 0.0});
    }

    static values::ChannelRangeDefinition
    definitionOf(unsigned int channels, unsigned int firstId = 100, double firstFrequency = 0.5)
    {
        values::ChannelRangeDefinition definition;
        definition.AddRangeDefinition(firstId, channels, firstFrequency, 1.0, {});
        return definition;
    }

    /// One more scan, a second after the one before.
    void begin() { buffer->addTimeStamp(time += 1'000'000); }
    void write(std::uint32_t first, const std::vector<Y> &samples)
    {
        buffer->addSpectralData({first, std::uint32_t(samples.size()), samples.data()});
    }
    void scan(const std::vector<Y> &samples)
    {
        begin();
        write(0, samples);
        buffer->endOfScan();
    }
    /// A pass of the window; returns its newest line.
    const std::vector<Y> &read()
    {
        window.readNewData();
        return window.WaterfallYLine(window.GetCurrentLine());
    }
    const std::vector<Y> &show(const std::vector<Y> &samples)
    {
        scan(samples);
        return read();
    }
    std::uint64_t newestId() const
    {
        return window.WaterfallChannelLineID(window.GetCurrentLine());
    }

    template <typename Adapter>
    std::shared_ptr<Adapter> add()
    {
        auto adapter = std::make_shared<Adapter>(nullptr, "test");
        link = std::make_shared<RecordingLink>();
        adapter->attach(link);
        window.registerAdapter(adapter);
        return adapter;
    }

    std::shared_ptr<sbs::ScanBuffer<Y, Handler>> buffer = sbs::ScanBuffer<Y, Handler>::create();
    Window window{buffer, QStringLiteral("window"), nullptr};
    std::shared_ptr<RecordingLink> link; // of the adapter that was added last
    KRTimeStamp time = 0;
};
