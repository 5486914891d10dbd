#include "valueclasses/kfactor.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/records/recordforms_p.h"
#include "valueclasses/value_impl.h"

#include <QFile>
#include <QSaveFile>

#include <algorithm>
#include <cmath>

SPECTREE_DEFINE_RECORD_IMAGE(values::KF)

namespace values {

namespace {

constexpr double kHzPerMHz = 1000000.0;
constexpr qint64 kLongestLine = 65536; // bytes; a file without line feeds isn't taken whole

bool isBelow(const KF &left, const KF &right) { return left.frequency < right.frequency; }

void requireNumbers(const std::vector<KF> &points, const char *functionName)
{
    const auto isNan = [](const KF &point) { return std::isnan(point.frequency); };
    if (std::any_of(points.begin(), points.end(), isNan))
        throw KRException(QStringLiteral("The frequency of a point is not a number"), __FILE__,
                          "KFactor", functionName, __LINE__);
}

/// Sorts, and leaves one point a frequency.
void mergePoints(std::vector<KF> &points)
{
    std::stable_sort(points.begin(), points.end(), isBelow);
    std::size_t kept = 0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        KF &last = points[kept];
        if (last.frequency != points[i].frequency) {
            points[++kept] = points[i];
            continue;
        }
        last.value = std::max(last.value, points[i].value);
        last.minimum = std::min(last.minimum, points[i].minimum);
    }
    points.resize(std::min(points.size(), kept + 1));
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

void KFactor::Add(double frequency, double value, double minimum)
{
    Add(KF{frequency, value, minimum});
}

void KFactor::Add(const std::vector<KF> &points)
{
    requireNumbers(points, "Add");
    std::vector<KF> merged = m_points;
    merged.insert(merged.end(), points.begin(), points.end());
    mergePoints(merged);
    if (merged == m_points)
        return;
    m_fileName.clear();
    if (merged.size() != m_points.size()) {
        m_maxOffset = m_minOffset = 0.0;
        m_reducedFrame = 1;
    }
    m_points = std::move(merged);
}

void KFactor::Set(const std::vector<KF> &points)
{
    requireNumbers(points, "Set");
    m_points.clear();
    m_fileName.clear();
    Add(points);
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

void KFactor::readLine(const QString &line, std::vector<KF> &points)
{
    const QStringList fields = line.split(QLatin1Char(';'));
    if (fields.size() == 2) {
        if (fields[0] == QLatin1String("Transducer Name"))
            m_transducerName = fields[1];
        else if (fields[0] == QLatin1String("Description"))
            m_description = fields[1];
        return;
    }
    if (fields.size() != 3)
        return;
    bool hasFrequency = false, hasValue = false;
    const double frequency = fields[1].toDouble(&hasFrequency) * kHzPerMHz;
    const double value = fields[2].toDouble(&hasValue);
    if (hasFrequency && hasValue && !std::isnan(frequency))
        points.push_back({frequency, value, KF::kNoMinimum});
}

int KFactor::LoadFromFile(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        SPECTREE_TRACE(TraceWarnings, QStringLiteral("File open failed!"));
        return -1;
    }
    std::vector<KF> points;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine(kLongestLine)).trimmed();
        if (line.isEmpty())
            break;
        readLine(line, points);
    }
    Set(points);
    return 0;
}

bool KFactor::LoadFromCSVString(const QString &text)
{
    std::vector<KF> points;
    for (int begin = 0; begin < text.size();) {
        const int end = text.indexOf(QLatin1Char('\n'), begin);
        const QString line = text.mid(begin, end < 0 ? -1 : end - begin).trimmed();
        if (line.isEmpty() || end < 0)
            begin = text.size();
        else
            begin = end + 1;
        readLine(line, points);
    }
    Set(points);
    return true;
}

QString KFactor::ToCSVString() const
{
    QString text = QStringLiteral("Transducer Name;LimitLine\nDescription;LimitTine");
    text += m_useMin ? QStringLiteral(" MinMax\n") : QStringLiteral("\n");
    text += QStringLiteral("Unit;dBuV\n");
    int number = 0;
    for (const KF &point : m_points) {
        text += QStringLiteral("%1;%2;%3")
                    .arg(++number)
                    .arg(point.frequency / kHzPerMHz, 0, 'f', 6)
                    .arg(point.value + m_maxOffset, 0, 'f', 2);
        if (m_useMin)
            text += QStringLiteral(";%1").arg(point.minimum + m_minOffset, 0, 'f', 2);
        text += QLatin1Char('\n');
    }
    return text;
}

int KFactor::SaveToFile(const QString &fileName)
{
    QSaveFile file(fileName);
    const bool isOpen = file.open(QIODevice::WriteOnly);
    const QByteArray text = ToCSVString().toUtf8();
    if (!isOpen || file.write(text) != text.size() || !file.commit()) {
        SPECTREE_TRACE(TraceWarnings, QStringLiteral("File open failed!"));
        return -1;
    }
    for (KF &point : m_points) {
        point.value += m_maxOffset;
        if (point.minimum != KF::kNoMinimum)
            point.minimum += m_minOffset;
    }
    m_maxOffset = m_minOffset = 0.0;
    m_fileName = fileName;
    return 0;
}

std::vector<double> KFactor::toVector(bool withMin) const
{
    std::vector<double> data;
    data.reserve(m_points.size() * (withMin ? 3 : 2));
    for (const KF &point : m_points)
        data.push_back(point.frequency);
    for (const KF &point : m_points)
        data.push_back(point.value);
    for (std::size_t i = 0; withMin && i < m_points.size(); ++i)
        data.push_back(m_points[i].minimum);
    return data;
}

void KFactor::fromVector(const std::vector<double> &data, bool withMin)
{
    const std::size_t parts = withMin ? 3 : 2, count = data.size() / parts;
    if (data.size() != count * parts)
        throw KRException(QStringLiteral("A curve of %1 numbers is not whole").arg(data.size()),
                          __FILE__, "KFactor", "fromVector", __LINE__);
    std::vector<KF> points(count);
    for (std::size_t i = 0; i < count; ++i)
        points[i] = {data[i], data[count + i], withMin ? data[2 * count + i] : KF::kNoMinimum};
    Set(points);
}

QString FormatKFactor::GetString(const KFactor &curve) { return curve.ToCSVString(); }

KFactor FormatKFactor::GetValue(const QString &text)
{
    KFactor curve;
    curve.LoadFromCSVString(text);
    return curve;
}

} // namespace values

template <>
std::string Kelm::toStandardString<values::KFactor>(const values::KFactor &curve)
{
    using values::Record::appendField;
    std::string image;
    appendField(image, curve.m_description);
    appendField(image, curve.m_maxOffset);
    appendField(image, curve.m_minOffset);
    appendField(image, curve.m_reducedFrame);
    appendField(image, curve.m_useMin);
    appendField(image, curve.m_useSmooth);
    appendField(image, curve.toVector(true));
    return image + ';';
}

template <>
values::KFactor Kelm::fromCharStream<values::KFactor>(const char **cursor)
{
    using values::Record::readField;
    values::KFactor curve, read;
    std::vector<double> points;
    readField(cursor, read.m_description);
    readField(cursor, read.m_maxOffset);
    readField(cursor, read.m_minOffset);
    readField(cursor, read.m_reducedFrame);
    readField(cursor, read.m_useMin);
    readField(cursor, read.m_useSmooth);
    readField(cursor, points);
    if (bytesLeft(*cursor) == 0 || **cursor != ';')
        throw KRException("Command string is not terminated with ';'", "valueclasses/kfactorvalue",
                          "Kelm", "fromCharStream<FKactor>", __LINE__);
    ++*cursor;
    curve.fromVector(points, true);
    read.m_points = curve.m_points;
    return read;
}

namespace values {

template class CommandSetValue<KFactor>;
template class Value<KFactor>;

} // namespace values
