#pragma once

#include "platform/axis/axisdata.h"
#include "platform/axis/section.h"

#include <set>
#include <vector>

/// What maps values to pixels.
class SPECTREE_EXPORT IHMap {
public:
    virtual ~IHMap() = default;
    virtual int GetPixelCount() const = 0;
    /// The pixel that holds \a value. Outside the axis \a inside becomes false and the result is
    /// the nearest end's pixel; with a \a section, its limits count instead of the whole axis'.
    virtual int ToPixel(double value, bool &inside, int section = -1) const = 0;
    /// The pixels of two values, clipped to the axis. False, with the pixels untouched, when the
    /// stretch between them has no point on the axis.
    virtual bool ToPixels(double from, double to, int &fromPixel, int &toPixel) const = 0;
};

/// An axis: which pixel shows which value.
///
/// Of n pixels over [min, max], pixel k covers min + k w up to, not including, min + (k + 1) w,
/// with w = (max - min) / n; the maximum belongs to the last pixel. Positions are compared in units
/// of pixels, (value - min) n / (max - min), so that a value on a pixel's limit is not shifted by
/// the rounding of w. The axis is linear: it is one section, and it refuses zoomed and suppressed
/// stretches. A plain value without locks.
class SPECTREE_EXPORT axisDefinition : public IHMap {
public:
    /// An invalid axis.
    explicit axisDefinition(bool skipSuppressRanges = false);

    /// 0, or -1 with the axis untouched for what makes no axis: limits that are not finite and
    /// rising, or no pixel.
    int init(double min, double max, short pixelCount);
    /// True when values can be mapped. An axis that is not valid holds no value.
    bool valid() const { return m_valid; }
    /// Limits of a section, -1 for the whole axis. NaN for a section that doesn't exist.
    double GetMin(int section = -1) const;
    double GetMax(int section = -1) const;
    /// Set one limit; the axis is invalid while the two make none.
    void SetMin(double min);
    void SetMax(double max);
    int GetPixelCnt() const { return m_pixelCount; }
    /// Counts outside 0 to 32767 are cut to it; 0 makes the axis invalid.
    void SetPixelCnt(int count);
    /// The section that holds \a value, negative if none does.
    int InRange(double value) const;
    /// First and last pixel of a section, -1 for the whole axis; -1 when there is none.
    int GetStartPix(int section) const;
    int GetStopPix(int section) const;
    const std::vector<pixSection> &GetPixSections() const { return m_sections; }
    /// The limits of all sections.
    std::set<double> GetBasePoints() const;

    /// Where a value stands in units of pixels: 0.0 at the minimum, the pixel count at the maximum.
    /// \pre valid()
    double GetPosition(double value) const
    {
        return (value - m_min) * m_pixelCount / (m_max - m_min);
    }
    /// Where a pixel begins; ToPixel gives \a pixel again unless pixels are narrower than doubles
    /// resolve. The pixel count gives the maximum. \pre valid() and 0 <= pixel <= GetPixelCnt()
    double GetPixelStart(int pixel) const;
    /// \pre as GetPixelStart, and pixel < GetPixelCnt()
    double GetPixelCenter(int pixel) const;

    int GetPixelCount() const override { return m_pixelCount; }
    int ToPixel(double value, bool &inside, int section = -1) const override;
    bool ToPixels(double from, double to, int &fromPixel, int &toPixel) const override;

    /// A stretch that is drawn narrower (suppressed) or wider (zoomed). False and unchanged: this
    /// axis is linear. An empty set is taken.
    bool AddSuppress(double from, double to, double scale, bool relative);
    bool SetSuppressSection(const section &stretches);
    const section &GetSuppressSection() const { return m_suppress; }
    bool SetZoomSection(const section &stretches);
    const section &GetZoomSection() const { return m_zoom; }
    /// Whether suppressed stretches take no pixel at all.
    void SetSkipSuppressRanges(bool skip);

    /// The parameters to send; \a withSections leaves out the hash of the stretches when false.
    AxisData GetAxisDefinitionSet(bool withSections) const;
    /// Takes parameters over. False, with the axis untouched, when they make no axis or name
    /// stretches that this axis doesn't have.
    bool ApplyAxisDefinitionSet(const AxisData &data);

    /// Drops the sections: the axis maps nothing until recalc() or the next change.
    void invalidate();
    /// Builds the sections from the parameters; returns valid().
    bool recalc();

    /// Limits, pixel count, flags and sections.
    bool operator==(const axisDefinition &other) const;

private:
    double m_min = 0.0, m_max = 0.0;
    int m_pixelCount = 0;
    bool m_skipSuppressed;
    bool m_valid = false;
    section m_suppress, m_zoom;
    std::vector<pixSection> m_sections; // built by recalc()
};
