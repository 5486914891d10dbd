// How a curve is drawn, and its reduced points, by which it is edited.
#include "platform/axis/axisdefinition.h"
#include "platform/base/spline.h"
#include "valueclasses/kfactor.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace values {

struct KFactor::PixelLine {
    axisDefinition axis;
    std::vector<double> values;
};

namespace {

/// Of each frame of neighbours the highest point, with the lowest minimum; both ends as they are.
std::vector<KF> thin(const std::vector<KF> &points, std::size_t frame)
{
    std::vector<KF> thinned;
    if (points.size() < 3)
        return points;
    thinned.push_back(points.front());
    for (std::size_t from = 1; from + 1 < points.size(); from += frame) {
        const auto begin = points.begin() + std::ptrdiff_t(from);
        const auto end = begin + std::ptrdiff_t(std::min(frame, points.size() - 1 - from));
        const auto byValue = [](const KF &a, const KF &b) { return a.value < b.value; };
        const auto byMinimum = [](const KF &a, const KF &b) { return a.minimum < b.minimum; };
        thinned.push_back(*std::max_element(begin, end, byValue));
        thinned.back().minimum = std::min_element(begin, end, byMinimum)->minimum;
    }
    thinned.push_back(points.back());
    return thinned;
}

std::vector<double> smooth(const std::vector<KF> &points, const axisDefinition &axis)
{
    std::vector<double> frequencies, values, line(std::size_t(axis.GetPixelCnt()));
    for (const KF &point : points) {
        frequencies.push_back(point.frequency);
        values.push_back(point.value);
    }
    for (std::size_t pixel = 0; pixel < line.size(); ++pixel)
        line[pixel] = spline_b_val(int(points.size()), frequencies.data(), values.data(),
                                   axis.GetPixelCenter(int(pixel)));
    return line;
}

} // namespace

void KFactor::resetCalculatedCurves()
{
    m_maxLine.reset();
    m_minLine.reset();
}

std::vector<KF> KFactor::drawnPoints(bool useMax) const
{
    std::vector<KF> points = Reduced();
    for (KF &point : points)
        point.value = useMax ? point.value + m_maxOffset : point.minimum + m_minOffset;
    return points;
}

std::vector<double> KFactor::GetCalculatedLineFor(const axisDefinition &axis, bool useMax) const
{
    if (!axis.valid())
        return {};
    std::vector<KF> points = drawnPoints(useMax);
    if (m_useSmooth) {
        const auto isWithout = [](const KF &point) { return point.minimum == KF::kNoMinimum; };
        if (!useMax) // the lowest double would make the spline overflow
            points.erase(std::remove_if(points.begin(), points.end(), isWithout), points.end());
        return smooth(points, axis);
    }
    constexpr double kHighest = std::numeric_limits<double>::max();
    const double none = useMax ? -kHighest : kHighest;
    std::vector<double> line(std::size_t(axis.GetPixelCnt()), none);
    for (const KF &point : points) {
        bool inside = false;
        const int pixel = axis.ToPixel(point.frequency, inside);
        if (!inside)
            continue;
        double &value = line[std::size_t(pixel)];
        value = useMax ? std::max(value, point.value) : std::min(value, point.value);
    }
    for (std::size_t pixel = 0; pixel < line.size(); ++pixel)
        if (line[pixel] == none)
            line[pixel] = GetKFactor4Frequency(axis.GetPixelCenter(int(pixel)), &points);
    return line;
}

std::vector<double> KFactor::GetCalculatedLineFor(int fromKHz, int toKHz, int pixelCount,
                                                  bool useMax) const
{
    constexpr double kHzPerKHz = 1000.0;
    axisDefinition axis;
    if (pixelCount < 1 || pixelCount > std::numeric_limits<short>::max() ||
        axis.init(fromKHz * kHzPerKHz, toKHz * kHzPerKHz, short(pixelCount)) != 0)
        return {};
    return GetCalculatedLineFor(axis, useMax);
}

const std::vector<double> &KFactor::keptLine(KeptLine &kept, const axisDefinition &axis,
                                             bool useMax) const
{
    if (kept == nullptr || !(kept->axis == axis))
        kept = std::make_shared<PixelLine>(PixelLine{axis, GetCalculatedLineFor(axis, useMax)});
    return kept->values;
}

const std::vector<double> &KFactor::GetMaxPixelLineFor(const axisDefinition &axis)
{
    return keptLine(m_maxLine, axis, true);
}

const std::vector<double> &KFactor::GetMinPixelLineFor(const axisDefinition &axis)
{
    return keptLine(m_minLine, axis, false);
}

QVector<QPointF> KFactor::GetPolygonVector(bool useMax) const
{
    QVector<QPointF> polygon;
    for (const KF &point : drawnPoints(useMax))
        polygon.append({point.frequency, point.value});
    return polygon;
}

std::vector<int> KFactor::GetPixOffsetVector(const axisDefinition &axis) const
{
    std::vector<int> pixels;
    for (const KF &point : Reduced()) {
        bool inside = false;
        const int pixel = axis.valid() ? axis.ToPixel(point.frequency, inside) : -1;
        pixels.push_back(inside ? pixel : -1);
    }
    return pixels;
}

void KFactor::Reduce(int frame)
{
    m_reducedFrame = std::max(frame, 1);
    m_reduced =
        m_reducedFrame > 1 ? thin(m_points, std::size_t(m_reducedFrame)) : std::vector<KF>();
    m_reducedIsCurrent = true;
    m_reducedChangeIndex = -1;
    resetCalculatedCurves();
}

const std::vector<KF> &KFactor::Reduced() const
{
    return m_reducedIsCurrent && m_reducedFrame == 1 ? m_points : m_reduced;
}

std::vector<KF> &KFactor::editReduced(int changed)
{
    m_reduced = std::vector<KF>(Reduced());
    m_reducedIsCurrent = false;
    m_reducedChangeIndex = changed;
    resetCalculatedCurves();
    return m_reduced;
}

bool KFactor::insertReduced(int index)
{
    if (index < 0 || index + 1 >= int(Reduced().size()))
        return false;
    const KF left = Reduced()[std::size_t(index)], right = Reduced()[std::size_t(index) + 1];
    KF middle{std::midpoint(left.frequency, right.frequency),
              std::midpoint(left.value, right.value)};
    if (!(left.frequency < middle.frequency && middle.frequency < right.frequency))
        return false; // no double lies between them
    if (left.minimum != KF::kNoMinimum && right.minimum != KF::kNoMinimum)
        middle.minimum = std::midpoint(left.minimum, right.minimum);
    std::vector<KF> &points = editReduced(index + 1);
    points.insert(points.begin() + index + 1, middle);
    return true;
}

bool KFactor::removeReduced(int index)
{
    if (index < 0 || index >= int(Reduced().size()))
        return false;
    std::vector<KF> &points = editReduced(index);
    points.erase(points.begin() + index);
    return true;
}

bool KFactor::setReduced(int index, int field, double value)
{
    const std::vector<KF> &present = Reduced();
    if (index < 0 || index >= int(present.size()) || field < ReducedFrequency ||
        field > ReducedMinimum || !std::isfinite(value))
        return false;
    const auto at = std::size_t(index);
    const bool isBetween = (at == 0 || present[at - 1].frequency < value) &&
                           (at + 1 == present.size() || value < present[at + 1].frequency);
    if (field == ReducedFrequency && !isBetween)
        return false;
    KF &point = editReduced(index)[at];
    (field == ReducedFrequency ? point.frequency
     : field == ReducedValue   ? point.value
                               : point.minimum) = value;
    return true;
}

int KFactor::GetReducedIndex(double frequency) const
{
    const std::vector<KF> &points = Reduced();
    const auto nearest =
        std::min_element(points.begin(), points.end(), [frequency](const KF &a, const KF &b) {
            return std::abs(a.frequency - frequency) < std::abs(b.frequency - frequency);
        });
    return nearest != points.end() ? int(nearest - points.begin()) : -1;
}

} // namespace values
