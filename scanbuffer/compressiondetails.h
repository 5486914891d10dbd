#pragma once

#include "platform/base/export.h"

#include <QMetaType>
#include <QObject>

#include <deque>
#include <vector>

namespace sbs {

/// How finely frequency or level is resolved.
enum class Resolution_Data { full = 0, reduced = 1, coarse = 2 };
/// How often data are sent.
enum class Resolution_Data_Auto { fast = 0, reduced = 1, slow = 2, automatic = 3 };
/// How many scans share a row of the waterfall: a number, or what gives a rate or a span of time
/// (a waterfall shows 500 rows).
enum class Resolution_Waterfall {
    everyScan = 0,
    tenRowsPerSecond = 1,
    twentyRowsPerSecond = 2,
    twoScans = 3,
    fourScans = 4,
    oneHour = 5,
    sixHours = 6,
    twelveHours = 7,
    oneDay = 8,
};

/// How strongly the data of one window are thinned, and the timing that follows from it.
///
/// Four steps (frequency, level, waterfall, speed; higher is thinner) make the settings; they rise
/// together when data are lost, and fall one rise at a time. A copy keeps settings, defaults and
/// history, not the connections. Lives on the thread of its window.
class SPECTREE_EXPORT CompressionDetails : public QObject {
    Q_OBJECT

public:
    /// Full resolution, every scan, automatic speed: the steps 0, 0, 0, 3 are the defaults.
    CompressionDetails();
    CompressionDetails(const CompressionDetails &other);
    /// Takes over settings, defaults and history; signalTimeSlotsChanged stays silent.
    CompressionDetails &operator=(const CompressionDetails &other);

    /// Applies four steps; \a remember makes them the defaults and forgets the history.
    /// \throws KRException "RangeCheck failed for Enum" for a step out of range, and for another
    /// number of steps; nothing is changed then.
    void Set(const std::vector<int> &steps, bool remember);
    /// One step up for each. False when nothing is left to give.
    bool increaseCompression();
    /// Back to the settings before the last increase. False when there is none.
    bool decreaseCompression();
    /// Back to the defaults, without history.
    void reset();

    /// The four steps: frequency, level, waterfall, speed.
    std::vector<int> GetSettings() const;
    int GetCompression() const { return 1; } ///< the zstd level

    double GetScansPerSecond() const { return m.scansPerSecond; }
    short GetFrequencyResolution() const { return m.frequencyResolution; } ///< pixels at most
    short GetWaterfallColorResolutionSteps() const { return m.colorSteps; }
    short GetWaterfallScansPerLine() const { return m.scansPerLine; } ///< at least 1
    short GetDataResolution() const { return m.dataResolution; }
    short GetSendAzimuthPackageEvery() const { return m.sendAzimuthPackageEvery; }
    /// Milliseconds between two passes for data, markers and statistics.
    short GetProcessSpeed() const { return m.processSpeed; }
    short GetT200Speed() const { return m.t200Speed; }
    short GetT1000Speed() const { return m.t1000Speed; }

    /// Works the scans a row out from the scan rate anew, and the timing with it.
    void recalcWFResolution();

public Q_SLOTS:
    /// One sample of the scan rate; the mean of 101 is what counts.
    void slotCurrentScanPerSecond(double scansPerSecond);

Q_SIGNALS:
    /// The process speed changed; all speeds are up to date when it fires.
    void signalTimeSlotsChanged();

private:
    struct State {
        Resolution_Data frequency = Resolution_Data::full;
        Resolution_Data data = Resolution_Data::full;
        Resolution_Waterfall waterfall = Resolution_Waterfall::everyScan;
        Resolution_Data_Auto speed = Resolution_Data_Auto::automatic;
        double scansPerSecond = 100.0;
        short frequencyResolution = 0, colorSteps = 0, scansPerLine = 1, dataResolution = 0;
        short sendAzimuthPackageEvery = 1;
        short processSpeed = 0, t200Speed = 0, t1000Speed = 0;
        std::vector<int> defaults{0, 0, 0, 3};
        std::deque<std::vector<int>> history; // earlier settings, the newest at the back
        int sampleCount = 0;                  // of the scan rate, since the last mean
        double sampleSum = 0;
    };

    void apply(const std::vector<int> &steps);
    void recalcTimers();
    void setTimers(Resolution_Data_Auto step);

    State m;
};

} // namespace sbs

Q_DECLARE_METATYPE(sbs::CompressionDetails)
