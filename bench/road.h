#pragma once

#include <cstdint>
#include <memory>
#include <semaphore>
#include <vector>

/// The whole road of a scan in one process: samples go in on the benchmark's thread, and a scan has
/// arrived when its own row of pixels has reached the reader of each window over a TCP loopback.
namespace road {

inline constexpr int kPixels = 1000;
/// Scans that may be under way at once; the reader holds the feeder back at this number.
inline constexpr int kScansUnderWay = 16;

struct Load {
    int channels;
    int windows;
};

/// A few different scans of noise with carriers, in tenths of a dBuV, to be fed in turn.
std::vector<std::vector<short>> makeScans(int channels);

/// One implementation of the road, with its readers running.
class Road {
public:
    virtual ~Road() = default;
    /// Hands in scan \a number (from 1, rising by 1). The samples may be reused after the call.
    virtual void feed(const std::vector<short> &scan, std::uint64_t number) = 0;

    /// Waits until each window has room for one more scan under way. False when rows stay away.
    bool waitForRoom();
    /// Waits until every scan that was fed has arrived everywhere.
    bool waitForAll();

protected:
    explicit Road(int windows);
    /// A reader tells that \a rows further scans have arrived at \a window. Any thread.
    void arrived(int window, int rows);

private:
    using Room = std::counting_semaphore<kScansUnderWay>;
    bool acquire(Room &room);
    std::vector<std::unique_ptr<Room>> m_room; // one a window
};

/// memcpy into a ring, a loop that takes the maximum, zstd level 1, ZeroMQ: what any road must do.
std::unique_ptr<Road> makeBareRoad(const Load &load);
/// The usual Qt way: a queued signal with a QVector, qCompress, QDataStream over a QTcpSocket; the
/// far end folds the scan to what it shows.
std::unique_ptr<Road> makeQtRoad(const Load &load);
/// The same with the plain fold before the socket, as one who has measured would write it.
std::unique_ptr<Road> makeFoldedQtRoad(const Load &load);
/// This library.
std::unique_ptr<Road> makeSpectreeRoad(const Load &load);

/// The plain fold that the two rivals share: the maximum of the channels of each pixel, as a byte
/// on a scale from 0 to 1200.
void foldPlain(const short *samples, int channels, unsigned char *pixels);

} // namespace road
