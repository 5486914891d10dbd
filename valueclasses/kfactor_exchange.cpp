// The forms of a curve: file, vector, stream.
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "platform/base/regularfile.h"
#include "valueclasses/kfactor.h"
#include "valueclasses/records/recordforms_p.h"

#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <cmath>

SPECTREE_DEFINE_RECORD_IMAGE(values::KF)

namespace values {

namespace {

constexpr double kHzPerMHz = 1000000.0;
constexpr qint64 kLargestFile = qint64(1) << 26; // bytes, some two million points
constexpr qint64 kLongestLine = 65536; // bytes; a file without line feeds isn't taken whole

int fail(const char *reason)
{
    if (ErrorHandler::Instance().IsTraced(TraceWarnings))
        _Q_Trace(QString::fromLatin1(reason), "valueclasses/kfactor", __LINE__);
    return -1;
}

QString withoutLineEnd(QString line)
{
    while (line.endsWith(QLatin1Char('\n')) || line.endsWith(QLatin1Char('\r')))
        line.chop(1);
    return line;
}

} // namespace

/// False for a line that tells neither a name nor a point.
bool KFactor::readLine(const QString &line, std::vector<KF> &points)
{
    const QStringList fields = line.split(QLatin1Char(';'));
    if (fields.size() == 2) {
        const QString field = fields[0].trimmed();
        const bool isName = field == QLatin1String("Transducer Name");
        if (!isName && field != QLatin1String("Description"))
            return false;
        (isName ? m_transducerName : m_description) = fields[1];
        return true;
    }
    if (fields.size() != 3)
        return false;
    bool hasFrequency = false, hasValue = false;
    const double frequency = fields[1].toDouble(&hasFrequency) * kHzPerMHz;
    const double value = fields[2].toDouble(&hasValue);
    if (!hasFrequency || !hasValue || !std::isfinite(frequency) || !std::isfinite(value))
        return false;
    points.push_back({frequency, value, KF::kNoMinimum});
    return true;
}

int KFactor::LoadFromFile(const QString &fileName)
{
    QFile file(fileName);
    QString error;
    if (!Kelm::openRegularFile(file, error))
        return fail("File open failed!");
    if (file.size() > kLargestFile)
        return fail("File read failed!");
    KFactor read = *this;
    std::vector<KF> points;
    for (;;) {
        const QByteArray bytes = file.readLine(kLongestLine);
        if (!bytes.isEmpty() && !bytes.endsWith('\n') && !file.atEnd())
            return fail("File read failed!"); // the rest of a line is none
        const QString line = withoutLineEnd(QString::fromUtf8(bytes));
        if (line.isEmpty())
            break;
        read.readLine(line, points);
    }
    if (file.error() != QFileDevice::NoError)
        return fail("File read failed!");
    read.Set(points);
    *this = std::move(read);
    return 0;
}

/// False when nothing in the text could be read.
bool KFactor::readText(const QString &text)
{
    std::vector<KF> points;
    bool isRead = false;
    for (const QString &each : text.split(QLatin1Char('\n'))) {
        const QString line = withoutLineEnd(each);
        if (line.isEmpty())
            break;
        isRead = readLine(line, points) || isRead;
    }
    Set(points);
    return isRead;
}

bool KFactor::LoadFromCSVString(const QString &text)
{
    readText(text);
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
    KFactor saved = *this;
    if (!m_reducedIsCurrent)
        saved.m_points = m_reduced;
    for (const KF &point : saved.m_points)
        if (!std::isfinite(point.value + m_maxOffset) ||
            (point.minimum != KF::kNoMinimum && !std::isfinite(point.minimum + m_minOffset)))
            return fail("A number of a curve is not finite");
    const QByteArray text = saved.ToCSVString().toUtf8();
    if (text.size() > kLargestFile)
        return fail("The curve is too long for a file");
    const QFileInfo there(fileName);
    QSaveFile file(fileName);
    const bool isOpen = (!there.exists() || there.isFile()) && file.open(QIODevice::WriteOnly);
    if (!isOpen || file.write(text) != text.size() || !file.commit())
        return fail("File open failed!");
    for (KF &point : saved.m_points) {
        point.value += m_maxOffset;
        if (point.minimum != KF::kNoMinimum)
            point.minimum += m_minOffset;
    }
    saved.m_maxOffset = saved.m_minOffset = 0.0;
    saved.Reduce(m_reducedIsCurrent ? m_reducedFrame : 1);
    saved.m_fileName = fileName;
    *this = saved;
    return 0;
}

std::vector<double> KFactor::toVector(bool withMin, bool withOffsets) const
{
    const double maxOffset = withOffsets ? m_maxOffset : 0.0;
    const double minOffset = withOffsets ? m_minOffset : 0.0;
    std::vector<double> data;
    data.reserve(m_points.size() * (withMin ? 3 : 2));
    for (const KF &point : m_points)
        data.push_back(point.frequency);
    for (const KF &point : m_points)
        data.push_back(point.value + maxOffset);
    for (std::size_t i = 0; withMin && i < m_points.size(); ++i)
        data.push_back(m_points[i].minimum == KF::kNoMinimum ? KF::kNoMinimum
                                                             : m_points[i].minimum + minOffset);
    return data;
}

void KFactor::fromVector(const std::vector<double> &data, bool withMin)
{
    const std::size_t columns = withMin ? 3 : 2, count = data.size() / columns;
    if (data.size() != count * columns)
        throw KRException(QStringLiteral("A curve of %1 numbers is not whole").arg(data.size()),
                          __FILE__, "KFactor", "fromVector", __LINE__);
    std::vector<KF> points(count);
    for (std::size_t i = 0; i < count; ++i)
        points[i] = {data[i], data[count + i], withMin ? data[2 * count + i] : KF::kNoMinimum};
    Set(points);
}

std::string KFactor::GetEditsImage() const
{
    std::string image;
    if (m_reducedIsCurrent)
        return image;
    Record::appendField(image, m_reducedChangeIndex);
    Record::appendField(image, m_reduced);
    return image;
}

void KFactor::RestoreEdits(const std::string &image)
{
    const char *cursor = image.data();
    const Kelm::ReadScope scope(cursor, image.size());
    int changed = 0;
    std::vector<KF> points;
    Record::readField(&cursor, changed);
    Record::readField(&cursor, points);
    const auto isMisplaced = [](const KF &left, const KF &right) {
        return !(left.frequency < right.frequency);
    };
    if (Kelm::bytesLeft(cursor) != 0 || changed < -1 || changed > int(points.size()) ||
        std::adjacent_find(points.begin(), points.end(), isMisplaced) != points.end())
        throw KRException(QStringLiteral("The reduced points of a curve are not whole"), __FILE__,
                          "KFactor", "RestoreEdits", __LINE__);
    KFactor().Set(points); // throws for a number that isn't finite
    editReduced(changed) = std::move(points);
}

QString FormatKFactor::GetString(const KFactor &curve) { return curve.ToCSVString(); }

KFactor FormatKFactor::GetValue(const QString &text)
{
    KFactor curve;
    if (!curve.readText(text) && !text.isEmpty())
        throw KRException(QStringLiteral("A text with neither a name nor a point is no curve"),
                          __FILE__, "FormatKFactor", "GetValue", __LINE__);
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
    appendField(image, curve.toVector(true, false));
    return image + ';';
}

template <>
values::KFactor Kelm::fromCharStream<values::KFactor>(const char **cursor)
{
    using values::Record::readField;
    values::KFactor curve;
    double maxOffset = 0.0, minOffset = 0.0;
    int frame = 1;
    std::vector<double> points;
    readField(cursor, curve.m_description);
    readField(cursor, maxOffset);
    readField(cursor, minOffset);
    readField(cursor, frame);
    readField(cursor, curve.m_useMin);
    readField(cursor, curve.m_useSmooth);
    readField(cursor, points);
    if (bytesLeft(*cursor) == 0 || **cursor != ';')
        throw KRException("Command string is not terminated with ';'", "valueclasses/kfactorvalue",
                          "Kelm", "fromCharStream<FKactor>", __LINE__);
    ++*cursor;
    curve.fromVector(points, true);
    curve.SetMaxOffset(maxOffset); // behind the points, which put them back
    curve.SetMinOffset(minOffset);
    curve.Reduce(frame);
    return curve;
}
