#include "road.h"

#include <QReadWriteLock>
#include <zmq.hpp>
#include <zstd.h>

#include <array>
#include <cstring>
#include <string>
#include <thread>

namespace road {
namespace {

constexpr int kRingLines = 64;

/// One window: a socket of its own, and the thread that reads its far end.
struct Window {
    zmq::socket_t sender, receiver;
    std::thread reader;
    std::array<unsigned char, kPixels> pixels{};

    explicit Window(zmq::context_t &context)
        : sender(context, zmq::socket_type::push), receiver(context, zmq::socket_type::pull)
    {
        sender.set(zmq::sockopt::linger, 0);
        sender.bind("tcp://127.0.0.1:*");
        receiver.connect(sender.get(zmq::sockopt::last_endpoint));
    }
};

class BareRoad final : public Road {
public:
    explicit BareRoad(const Load &load)
        : Road(load.windows), m_channels(load.channels),
          m_ring(kRingLines, std::vector<short>(std::size_t(load.channels))),
          m_packer(ZSTD_createCCtx())
    {
        for (int i = 0; i < load.windows; ++i) {
            m_windows.push_back(std::make_unique<Window>(m_context));
        }
        for (int i = 0; i < load.windows; ++i) {
            m_windows[std::size_t(i)]->reader = std::thread([this, i] { read(i); });
        }
    }

    ~BareRoad() override
    {
        for (auto &window : m_windows) {
            window->sender.send(zmq::message_t(), zmq::send_flags::none); // an empty one ends it
            window->reader.join();
        }
        ZSTD_freeCCtx(m_packer);
    }

    void feed(const std::vector<short> &scan, std::uint64_t number) override
    {
        std::vector<short> &line = m_ring[number % kRingLines];
        m_lock.lockForWrite();
        std::memcpy(line.data(), scan.data(), scan.size() * sizeof(short));
        m_lock.unlock();
        for (auto &window : m_windows)
            send(*window, line);
    }

private:
    void send(Window &window, const std::vector<short> &line)
    {
        m_lock.lockForRead();
        foldPlain(line.data(), m_channels, window.pixels.data());
        m_lock.unlock();
        m_packed.resize(ZSTD_compressBound(kPixels));
        const std::size_t size = ZSTD_compressCCtx(m_packer, m_packed.data(), m_packed.size(),
                                                   window.pixels.data(), kPixels, 1);
        window.sender.send(zmq::buffer(m_packed.data(), size), zmq::send_flags::none);
    }

    void read(int index)
    {
        zmq::message_t message;
        std::array<unsigned char, kPixels> row;
        while (m_windows[std::size_t(index)]->receiver.recv(message) && message.size() != 0)
            if (ZSTD_decompress(row.data(), row.size(), message.data(), message.size()) == kPixels)
                arrived(index, 1);
    }

    int m_channels;
    zmq::context_t m_context;
    QReadWriteLock m_lock;
    std::vector<std::vector<short>> m_ring;
    ZSTD_CCtx *m_packer;
    std::string m_packed;
    std::vector<std::unique_ptr<Window>> m_windows;
};

} // namespace

std::unique_ptr<Road> makeBareRoad(const Load &load) { return std::make_unique<BareRoad>(load); }

} // namespace road
