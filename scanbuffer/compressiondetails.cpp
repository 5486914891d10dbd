#include "scanbuffer/compressiondetails.h"

#include "helpers/enumrangecheck.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace sbs {
namespace {

constexpr double kRowsShown = 500.0;

struct DataRow {
    short frequencyResolution, colorSteps, dataResolution;
};
constexpr std::array<DataRow, 3> kDataRows{{{4000, 255, 1}, {1000, 126, 3}, {500, 64, 5}}};

struct SpeedRow {
    short process, t200, t1000, azimuthEvery;
};
constexpr std::array<SpeedRow, 3> kSpeedRows{
    {{20, 200, 1000, 1}, {100, 400, 1000, 2}, {500, 1000, 2000, 4}}};

short toShort(double value)
{
    // Written so that NaN ends at the lower limit.
    const double limited =
        value > 0 ? std::min(value, double(std::numeric_limits<short>::max())) : 0;
    return short(std::lround(limited));
}

/// Scans a row that give a rate or a span of time; 0 for the fixed numbers.
double wantedScansPerLine(Resolution_Waterfall resolution, double scansPerSecond)
{
    switch (resolution) {
    case Resolution_Waterfall::tenRowsPerSecond:
        return scansPerSecond / 10;
    case Resolution_Waterfall::twentyRowsPerSecond:
        return scansPerSecond / 20;
    case Resolution_Waterfall::oneHour:
        return scansPerSecond * 3600 / kRowsShown;
    case Resolution_Waterfall::sixHours:
        return scansPerSecond * 3600 * 6 / kRowsShown;
    case Resolution_Waterfall::twelveHours:
        return scansPerSecond * 3600 * 12 / kRowsShown;
    case Resolution_Waterfall::oneDay:
        return scansPerSecond * 3600 * 24 / kRowsShown;
    default:
        return 0;
    }
}

short scansPerLineFor(Resolution_Waterfall resolution, double scansPerSecond, short old)
{
    switch (resolution) {
    case Resolution_Waterfall::everyScan:
        return 1;
    case Resolution_Waterfall::twoScans:
        return 2;
    case Resolution_Waterfall::fourScans:
        return 4;
    default: {
        const short wanted = toShort(wantedScansPerLine(resolution, scansPerSecond));
        // A rate that wavers between two numbers must not make the display flicker.
        return std::max<short>(std::abs(wanted - old) <= 1 ? old : wanted, 1);
    }
    }
}

int raisedData(int step) { return std::min(step + 1, 2); }

int raisedSpeed(int step)
{
    return step == int(Resolution_Data_Auto::automatic) ? 1 : std::min(step + 1, 2);
}

int raisedWaterfall(int step, short scansPerLine)
{
    if (step == int(Resolution_Waterfall::everyScan))
        return int(Resolution_Waterfall::twoScans);
    const bool raise = step == int(Resolution_Waterfall::twoScans) || scansPerLine < 4;
    return raise ? int(Resolution_Waterfall::fourScans) : step;
}

} // namespace

CompressionDetails::CompressionDetails() { apply(m.defaults); }

CompressionDetails::CompressionDetails(const CompressionDetails &other) : QObject(), m(other.m) {}

CompressionDetails &CompressionDetails::operator=(const CompressionDetails &other)
{
    m = other.m;
    return *this;
}

void CompressionDetails::Set(const std::vector<int> &steps, bool remember)
{
    apply(steps);
    if (remember) {
        m.history.clear();
        m.defaults = steps;
    }
}

void CompressionDetails::apply(const std::vector<int> &steps)
{
    values::EnumRangeCheck<int>(steps.size() == 4 ? 0 : 1, 1);
    const auto frequency = values::EnumRangeCheck<Resolution_Data>(steps[0], 3);
    const auto data = values::EnumRangeCheck<Resolution_Data>(steps[1], 3);
    const auto waterfall = values::EnumRangeCheck<Resolution_Waterfall>(steps[2], 9);
    const auto speed = values::EnumRangeCheck<Resolution_Data_Auto>(steps[3], 4);
    m.frequency = frequency;
    m.data = data;
    m.waterfall = waterfall;
    m.speed = speed;
    m.frequencyResolution = kDataRows[std::size_t(frequency)].frequencyResolution;
    m.colorSteps = kDataRows[std::size_t(data)].colorSteps;
    m.dataResolution = kDataRows[std::size_t(data)].dataResolution;
    recalcWFResolution();
}

bool CompressionDetails::increaseCompression()
{
    const std::vector<int> old = GetSettings();
    const std::vector<int> raised{raisedData(old[0]), raisedData(old[1]),
                                  raisedWaterfall(old[2], m.scansPerLine), raisedSpeed(old[3])};
    if (raised == old && m.scansPerLine >= 4)
        return false;
    m.history.push_back(old);
    apply(raised);
    return true;
}

bool CompressionDetails::decreaseCompression()
{
    if (m.history.empty())
        return false;
    const std::vector<int> steps = m.history.back();
    m.history.pop_back();
    apply(steps);
    return true;
}

void CompressionDetails::reset()
{
    m.history.clear();
    apply(m.defaults);
}

std::vector<int> CompressionDetails::GetSettings() const
{
    return {int(m.frequency), int(m.data), int(m.waterfall), int(m.speed)};
}

void CompressionDetails::recalcWFResolution()
{
    m.scansPerLine = scansPerLineFor(m.waterfall, m.scansPerSecond, m.scansPerLine);
    recalcTimers();
}

void CompressionDetails::recalcTimers()
{
    const short oldSpeed = m.processSpeed;
    setTimers(m.speed);
    if (m.processSpeed != oldSpeed)
        Q_EMIT signalTimeSlotsChanged();
}

void CompressionDetails::setTimers(Resolution_Data_Auto step)
{
    if (step == Resolution_Data_Auto::automatic) {
        const double rowTime = m.scansPerSecond > 0
                                   ? std::round(1000.0 / m.scansPerSecond * m.scansPerLine)
                                   : std::numeric_limits<double>::infinity();
        if (rowTime >= 20 && rowTime <= 500) {
            m.processSpeed = short(rowTime);
            m.t200Speed = short(10 * m.processSpeed);
            m.t1000Speed = short(50 * m.processSpeed);
            m.sendAzimuthPackageEvery = 1;
            return;
        }
        step = rowTime < 20 ? Resolution_Data_Auto::fast : Resolution_Data_Auto::slow;
    }
    const SpeedRow &row = kSpeedRows[std::size_t(step)];
    m.processSpeed = row.process;
    m.t200Speed = row.t200;
    m.t1000Speed = row.t1000;
    m.sendAzimuthPackageEvery = row.azimuthEvery;
}

void CompressionDetails::slotCurrentScanPerSecond(double scansPerSecond)
{
    ++m.sampleCount;
    m.sampleSum += scansPerSecond;
    if (m.sampleCount <= 100)
        return;
    m.scansPerSecond = m.sampleSum / m.sampleCount;
    m.sampleCount = 0;
    m.sampleSum = 0;
    recalcWFResolution();
}

} // namespace sbs
