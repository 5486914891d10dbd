#include "road.h"

#include <algorithm>
#include <chrono>
#include <random>

namespace road {

std::vector<std::vector<short>> makeScans(int channels)
{
    std::mt19937 random(1);
    std::normal_distribution<float> noise(100.0f, 30.0f);
    std::vector<std::vector<short>> scans(8, std::vector<short>(std::size_t(channels)));
    for (auto &scan : scans) {
        for (short &sample : scan)
            sample = short(noise(random));
        for (int carrier = 0; carrier < 50; ++carrier)
            scan[std::size_t(carrier) * scan.size() / 50 + scan.size() / 100] =
                short(600 + carrier);
    }
    return scans;
}

void foldPlain(const short *samples, int channels, unsigned char *pixels)
{
    for (int pixel = 0; pixel < kPixels; ++pixel) {
        const auto from = std::int64_t(channels) * pixel / kPixels;
        const auto to = std::int64_t(channels) * (pixel + 1) / kPixels;
        short peak = -9999;
        for (auto i = from; i < to; ++i)
            if (samples[i] > peak)
                peak = samples[i];
        pixels[pixel] = static_cast<unsigned char>(std::clamp(int(peak), 0, 1200) * 255 / 1200);
    }
}

Road::Road(int windows)
{
    for (int i = 0; i < windows; ++i)
        m_room.push_back(std::make_unique<Room>(kScansUnderWay));
}

void Road::arrived(int window, int rows) { m_room[std::size_t(window)]->release(rows); }

bool Road::acquire(Room &room) { return room.try_acquire_for(std::chrono::seconds(5)); }

bool Road::waitForRoom()
{
    return std::all_of(m_room.begin(), m_room.end(), [this](auto &room) { return acquire(*room); });
}

bool Road::waitForAll()
{
    for (auto &room : m_room) {
        for (int i = 0; i < kScansUnderWay; ++i)
            if (!acquire(*room))
                return false;
        room->release(kScansUnderWay);
    }
    return true;
}

} // namespace road
