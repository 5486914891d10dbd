// The points of a curve, and what is computed of them.
#include "valueclasses/kfactor.h"

#include "platform/base/krexception.h"
#include "valueclasses/value_impl.h"

#include <algorithm>
#include <cmath>

namespace values {

namespace {

bool isBelow(const KF &left, const KF &right) { return left.frequency < right.frequency; }

bool isFinite(const KF &point)
{
    return std::isfinite(point.frequency) && std::isfinite(point.value) &&
           std::isfinite(point.minimum);
}

void requireNumbers(const std::vector<KF> &points, const char *functionName)
{
    if (!std::all_of(points.begin(), points.end(), isFinite))
        throw KRException(QStringLiteral("A number of a curve is not finite"), __FILE__, "KFactor",
                          functionName, __LINE__);
}

bool hasMinimum(const KF &point) { return point.minimum != KF::kNoMinimum; }

bool isZero(const KF &point)
{
    return point.value == 0.0 && (point.minimum == 0.0 || !hasMinimum(point));
}

} // namespace

bool KFactor::operator==(const KFactor &other) const
{
    const auto held = [](const KFactor &curve) {
        return std::tie(curve.m_description, curve.m_maxOffset, curve.m_minOffset,
                        curve.m_reducedFrame, curve.m_useMin, curve.m_useSmooth, curve.m_points);
    };
    return held(*this) == held(other);
}

bool KFactor::IsSame(const KFactor &other) const
{
    return *this == other && m_transducerName == other.m_transducerName &&
           m_fileName == other.m_fileName && m_reducedIsCurrent == other.m_reducedIsCurrent &&
           m_reduced == other.m_reduced && m_reducedChangeIndex == other.m_reducedChangeIndex;
}

void KFactor::resetState()
{
    m_maxOffset = m_minOffset = 0.0;
    Reduce(1);
}

void KFactor::SetMaxOffset(double offset)
{
    requireNumbers({KF{0.0, offset}}, "SetMaxOffset");
    setDrawn(m_maxOffset, offset);
}

void KFactor::SetMinOffset(double offset)
{
    requireNumbers({KF{0.0, offset}}, "SetMinOffset");
    setDrawn(m_minOffset, offset);
}

void KFactor::Add(double frequency, double value, double minimum)
{
    Add(KF{frequency, value, minimum});
}

void KFactor::Add(const std::vector<KF> &points)
{
    requireNumbers(points, "Add");
    AddInternal(points);
}

void KFactor::AddInternal(const std::vector<KF> &points)
{
    const std::vector<KF> before = m_points;
    const std::vector<KF> &added = &points == &m_points ? before : points;
    m_points.insert(m_points.end(), added.begin(), added.end());
    Unique();
    if (m_points == before)
        return;
    m_fileName.clear();
    if (m_points.size() != before.size())
        resetState();
    else if (m_reducedIsCurrent)
        Reduce(m_reducedFrame);
}

void KFactor::Unique()
{
    std::stable_sort(m_points.begin(), m_points.end(), isBelow);
    std::size_t kept = 0;
    for (std::size_t i = 1; i < m_points.size(); ++i) {
        KF &last = m_points[kept];
        if (last.frequency != m_points[i].frequency) {
            m_points[++kept] = m_points[i];
            continue;
        }
        last.value = std::max(last.value, m_points[i].value);
        last.minimum = std::min(last.minimum, m_points[i].minimum);
    }
    m_points.resize(std::min(m_points.size(), kept + 1));
    resetCalculatedCurves();
}

void KFactor::Set(const std::vector<KF> &points)
{
    requireNumbers(points, "Set");
    const std::vector<KF> copy = points; // perhaps the own ones
    m_points.clear();
    m_fileName.clear();
    resetState();
    AddInternal(copy);
}

bool KFactor::InsertAt(double frequency)
{
    const KF inserted{frequency, GetKFactor4Frequency(frequency), 0.0};
    requireNumbers({inserted}, "InsertAt");
    const auto above = std::lower_bound(m_points.begin(), m_points.end(), inserted, isBelow);
    if (above != m_points.end() && above->frequency == frequency)
        return false;
    const bool isBetween = above != m_points.begin() && above != m_points.end();
    const bool hasBoth = isBetween && hasMinimum(*above) && hasMinimum(*(above - 1));
    Add(frequency, inserted.value,
        hasBoth ? GetKFactor4Frequency(frequency, nullptr, false) : KF::kNoMinimum);
    return true;
}

void KFactor::Trim()
{
    auto begin = m_points.begin(), end = m_points.end();
    while (end - begin > 1 && isZero(begin[0]) && isZero(begin[1]))
        ++begin;
    while (end - begin > 1 && isZero(end[-1]) && isZero(end[-2]))
        --end;
    if (std::size_t(end - begin) == m_points.size())
        return;
    m_points = std::vector<KF>(begin, end);
    m_fileName.clear();
    resetState();
}

double KFactor::NextFrequency(double frequency) const
{
    const auto next =
        std::upper_bound(m_points.begin(), m_points.end(), KF{frequency, 0.0, 0.0}, isBelow);
    return next != m_points.end() ? next->frequency : 0.0;
}

KFactor::Range KFactor::GetYRange() const
{
    if (m_points.empty())
        return {0.0, 0.0};
    Range range{m_points.front().value + m_maxOffset, m_points.front().value + m_maxOffset};
    const auto widen = [&range](double value) {
        range = {std::min(range.first, value), std::max(range.second, value)};
    };
    for (const KF &point : m_points) {
        widen(point.value + m_maxOffset);
        if (m_useMin && hasMinimum(point))
            widen(point.minimum + m_minOffset);
    }
    return range;
}

std::set<double> KFactor::GetBasePoints(double from, double to) const
{
    std::set<double> frequencies;
    for (const KF &point : m_points)
        if (point.frequency > from && point.frequency < to)
            frequencies.insert(point.frequency);
    return frequencies;
}

double KFactor::GetKFactor4Frequency(double frequency, const std::vector<KF> *points,
                                     bool useMax) const
{
    const std::vector<KF> &curve = points != nullptr ? *points : m_points;
    const auto above =
        std::lower_bound(curve.begin(), curve.end(), KF{frequency, 0.0, 0.0}, isBelow);
    if (above == curve.end())
        return 0.0;
    if (above->frequency == frequency)
        return above->value;
    if (above == curve.begin())
        return 0.0;
    const KF &left = *(above - 1);
    const double leftValue = useMax ? left.value : left.minimum;
    const double rightValue = useMax ? above->value : above->minimum;
    const double part = (frequency - left.frequency) / (above->frequency - left.frequency);
    return leftValue + part * (rightValue - leftValue);
}

double KFactor::GetMidValue() const
{
    if (m_points.size() < 2)
        return m_points.empty() ? 0.0 : m_points.front().value;
    double sum = 0.0;
    for (std::size_t i = 1; i < m_points.size(); ++i)
        sum += (m_points[i].value + m_points[i - 1].value) *
               (m_points[i].frequency - m_points[i - 1].frequency);
    return sum / (MaxFrequency() - MinFrequency()) * 0.5;
}

void KFactor::combine(const KFactor &other, double sign, const char *joint)
{
    if (!valid()) {
        if (other.valid())
            *this = other;
        return;
    }
    if (!other.valid())
        return;
    std::vector<KF> combined = m_points;
    for (KF &point : combined)
        point.value += sign * other.GetKFactor4Frequency(point.frequency);
    for (const KF &point : other.m_points)
        if (!std::binary_search(m_points.begin(), m_points.end(), point, isBelow))
            combined.push_back(
                {point.frequency, GetKFactor4Frequency(point.frequency) + sign * point.value});
    requireNumbers(combined, "combine");
    m_transducerName += QLatin1String(joint) + other.m_transducerName;
    m_description += QLatin1String(joint) + other.m_description;
    m_fileName.clear();
    m_points = std::move(combined);
    Unique();
    resetState();
}

KFactor &KFactor::operator+=(const KFactor &other)
{
    combine(other, 1.0, " + ");
    return *this;
}

KFactor &KFactor::operator-=(const KFactor &other)
{
    combine(other, -1.0, " - ");
    return *this;
}

template class CommandSetValue<KFactor>;
template class Value<KFactor>;

} // namespace values
