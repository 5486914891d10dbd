#pragma once

#include "scanbuffer/waterfall/waterfallpainter.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace sbs {

template <typename Y, typename YHandler>
template <typename Reference>
void WaterfallPainter<Y, YHandler>::setRules(const Rules &rules, int pixels, const Line &thresholds,
                                             const Reference &referenceOf)
{
    m_rules = rules;
    if (rules.thresholdActive && takeThresholds(pixels, thresholds)) {
        if constexpr (kHasTable)
            buildLimits();
    }
    if (rules.relative) {
        m_references.resize(std::size_t(pixels));
        for (int pixel = 0; pixel < pixels; ++pixel)
            m_references[std::size_t(pixel)] = referenceOf(pixel);
    }
    if constexpr (kHasTable)
        if (usesTable() && (m_table.empty() || m_tableColors != rules.colors))
            buildTable();
}

/// False when they are the ones of the call before.
template <typename Y, typename YHandler>
bool WaterfallPainter<Y, YHandler>::takeThresholds(int pixels, const Line &thresholds)
{
    const std::size_t count = std::size_t(pixels);
    const std::size_t given = std::min(count, thresholds.values->size());
    const auto isBeyond = [&](double value) { return value == thresholds.beyond; };
    if (m_thresholds.size() == count &&
        std::memcmp(m_thresholds.data(), thresholds.values->data(), given * sizeof(double)) == 0 &&
        std::all_of(m_thresholds.begin() + std::ptrdiff_t(given), m_thresholds.end(), isBeyond))
        return false;
    m_thresholds.assign(thresholds.values->begin(),
                        thresholds.values->begin() + std::ptrdiff_t(given));
    m_thresholds.resize(count, thresholds.beyond);
    return true;
}

template <typename Y, typename YHandler>
void WaterfallPainter<Y, YHandler>::buildTable()
{
    m_tableColors = m_rules.colors;
    m_table.resize(std::size_t(1) << (8 * sizeof(Y)));
    for (int value = std::numeric_limits<Y>::min(); value <= std::numeric_limits<Y>::max(); ++value)
        m_table[slot(Y(value))] =
            char(m_rules.colors.ValueToChar(YHandler::GetDimension(0, Y(value))));
}

template <typename Y, typename YHandler>
void WaterfallPainter<Y, YHandler>::buildLimits()
{
    m_limits.resize(m_thresholds.size());
    for (std::size_t pixel = 0; pixel < m_thresholds.size(); ++pixel)
        m_limits[pixel] = pixel != 0 && m_thresholds[pixel] == m_thresholds[pixel - 1]
                              ? m_limits[pixel - 1]
                              : limitFor(m_thresholds[pixel]);
}

/// Found by asking the rule itself, so that no rounding lets the table path differ from it.
template <typename Y, typename YHandler>
int WaterfallPainter<Y, YHandler>::limitFor(double threshold)
{
    int hidden = std::numeric_limits<Y>::min() - 1, shown = std::numeric_limits<Y>::max() + 1;
    while (shown - hidden > 1) {
        const int middle = hidden + (shown - hidden) / 2;
        (threshold < YHandler::GetDimension(0, Y(middle)) ? shown : hidden) = middle;
    }
    return hidden;
}

template <typename Y, typename YHandler>
void WaterfallPainter<Y, YHandler>::paint(const Y *samples, int pixels, char *row) const
{
    if constexpr (kHasTable)
        if (usesTable())
            return paintByTable(samples, pixels, row);
    if (m_rules.relative)
        for (int pixel = 0; pixel < pixels; ++pixel)
            paintRelative(samples[pixel], pixel, row[pixel]);
    else
        for (int pixel = 0; pixel < pixels; ++pixel)
            paintAbsolute(samples[pixel], pixel, row[pixel]);
}

template <typename Y, typename YHandler>
void WaterfallPainter<Y, YHandler>::paintByTable(const Y *samples, int pixels, char *row) const
{
    const char *const table = m_table.data();
    if (!m_rules.thresholdActive) {
        for (int pixel = 0; pixel < pixels; ++pixel)
            row[pixel] = table[slot(samples[pixel])];
        return;
    }
    const int *const limits = m_limits.data();
    for (int pixel = 0; pixel < pixels; ++pixel)
        row[pixel] = samples[pixel] > limits[pixel] ? table[slot(samples[pixel])] : char(0);
}

template <typename Y, typename YHandler>
void WaterfallPainter<Y, YHandler>::paintAbsolute(const Y &sample, int pixel, char &byte) const
{
    const double level = YHandler::GetDimension(0, sample);
    if (m_rules.thresholdActive && !(m_thresholds[std::size_t(pixel)] < level))
        byte = 0;
    else
        paintShown(sample, level, byte);
}

template <typename Y, typename YHandler>
void WaterfallPainter<Y, YHandler>::paintRelative(const Y &sample, int pixel, char &byte) const
{
    const double level = YHandler::GetDimension(0, sample) - m_references[std::size_t(pixel)];
    if (!m_rules.thresholdActive)
        byte = char(m_rules.colors.ValueToChar(level));
    else if (m_thresholds[std::size_t(pixel)] < std::abs(level))
        paintShown(sample, level, byte);
    else if (m_rules.dimension == 0)
        byte = char(m_rules.colors.ValueToChar(0));
}

template <typename Y, typename YHandler>
void WaterfallPainter<Y, YHandler>::paintShown(const Y &sample, double level, char &byte) const
{
    const double value =
        m_rules.dimension == 0 ? level : YHandler::GetDimension(m_rules.dimension, sample);
    if (!(m_rules.skipNegative && value < 0))
        byte = char(m_rules.colors.ValueToChar(value));
}

} // namespace sbs
