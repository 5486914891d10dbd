#pragma once

#include "platform/base/export.h"

#include <vector>

/// One stretch of an axis with the pixels that it takes.
class SPECTREE_EXPORT pixSection {
public:
    /// \a scale is the width of the stretch against the rest of the axis: above 1 zoomed, below 1
    /// suppressed.
    pixSection(double from, double to, double scale, bool suppressed)
        : m_from(from), m_to(to), m_scale(scale), m_suppressed(suppressed)
    {
    }

    double GetFrom() const { return m_from; }
    double GetTo() const { return m_to; }
    double GetScale() const { return m_scale; }
    bool IsSuppressed() const { return m_suppressed; }
    /// The first and the last pixel.
    int GetStartPix() const { return m_startPix; }
    int GetStopPix() const { return m_stopPix; }
    void SetPixels(int start, int stop)
    {
        m_startPix = start;
        m_stopPix = stop;
    }

    bool operator==(const pixSection &) const = default;

private:
    double m_from, m_to, m_scale;
    bool m_suppressed;
    int m_startPix = 0, m_stopPix = -1;
};

/// A set of zoomed or suppressed stretches, in the order in which they were added.
class SPECTREE_EXPORT section {
public:
    struct Stretch {
        double from, to, scale;
        bool operator==(const Stretch &) const = default;
    };

    void Add(double from, double to, double scale) { m_stretches.push_back({from, to, scale}); }
    bool empty() const { return m_stretches.empty(); }
    const std::vector<Stretch> &GetStretches() const { return m_stretches; }
    /// Identifies the set: equal sets have equal hashes; a whole number, 0.0 for the empty set.
    double hash() const;

    bool operator==(const section &) const = default;

private:
    std::vector<Stretch> m_stretches;
};
