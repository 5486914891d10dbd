#pragma once

#include "platform/base/types.h"

#include <map>
#include <utility>
#include <vector>

/// A window as far as the rows of a waterfall look into it, with every answer in the test's hand.
template <typename Y>
struct FakeWindow {
    int scansPerLine = 1;
    int colorSteps = 255;
    std::map<short, std::pair<double, double>> yRanges{{0, {0.0, 100.0}}};
    bool thresholdActive = false;
    double threshold = 0; // beyond the line
    std::vector<double> thresholdLine, refLine;
    std::vector<std::vector<Y>> lines;
    std::vector<std::uint64_t> ids;

    int GetWaterfallScansPerLine() const { return scansPerLine; }
    int GetWaterfallColorResolutionSteps() const { return colorSteps; }
    std::pair<double, double> GetYRange(short dimension) const { return yRanges.at(dimension); }
    bool GetThresholdActive() const { return thresholdActive; }
    const std::vector<double> &GetThresholdLine() const { return thresholdLine; }
    double GetThreshold(int pixel) const
    {
        return std::size_t(pixel) < thresholdLine.size() ? thresholdLine[std::size_t(pixel)]
                                                         : threshold;
    }
    double GetRefLine(int pixel) const
    {
        return std::size_t(pixel) < refLine.size() ? refLine[std::size_t(pixel)] : 0.0;
    }
    const std::vector<Y> &WaterfallYLine(int index) const { return lines[std::size_t(index)]; }
    std::uint64_t WaterfallChannelLineID(int index) const { return ids[std::size_t(index)]; }
};
