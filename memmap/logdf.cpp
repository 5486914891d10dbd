#include "memmap/logdf.h"

#include "memmap/valueptr.h"
#include "valuetree/tree.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace values {

LogDF::LogDF() { SetLogger(QStringLiteral("DF"), QStringLiteral("%0@%1@%2@%3@%4@%5@%6@%7@%8")); }

LogDF::~LogDF() { releaseBearing(); }

bool LogDF::SetLongitude_ValuePath(const QString &path)
{
    return SetArgument<ValuePtr_ValueNumericFloat>(0, path);
}

bool LogDF::SetLatitude_ValuePath(const QString &path)
{
    return SetArgument<ValuePtr_ValueNumericFloat>(1, path);
}

bool LogDF::SetDemodulation_ValuePath(const QString &path)
{
    return SetArgument<ValuePtr_ValueSelection>(2, path);
}

bool LogDF::SetBandwidth_ValuePath(const QString &path)
{
    return SetArgument<ValuePtr_ValueNumericFloat>(3, path);
}

bool LogDF::SetOffset_ValuePath(const QString &path)
{
    return SetArgument<ValuePtr_ValueNumericFloat>(4, path);
}

bool LogDF::SetBearingResult_ValuePath(const QString &path)
{
    auto *const found = dynamic_cast<Value<BearingResult> *>(Tree::Instance().GetValue(path));
    if (found == nullptr || found->GetState() == VS_DELETED)
        return false;
    Watch(found);
    releaseBearing();
    m_bearing = found;
    m_bearingPath = path;
    return true;
}

void LogDF::releaseBearing()
{
    if (auto *const bearing = std::exchange(m_bearing, nullptr))
        Unwatch(bearing);
}

bool LogDF::connect()
{
    const bool whole = LogVTData::connect();
    if (m_bearing != nullptr)
        return whole;
    const QString path = m_bearingPath;
    return (path.isEmpty() || SetBearingResult_ValuePath(path)) && whole;
}

void LogDF::disconnect()
{
    LogVTData::disconnect();
    releaseBearing();
}

void LogDF::toLogger()
{
    // While it dies, nothing but its base may be asked.
    if (GetLoggerSend().isEmpty() || GetLoggerType().isEmpty() || m_bearing == nullptr ||
        m_bearing->ValueBase::GetState() == VS_DELETED)
        return;
    const BearingResult bearing = m_bearing->GetValue();
    const QString count = QString::number(bearing.count);
    const QString texts[] = {GetObjectText(0),
                             GetObjectText(1),
                             QStringLiteral("%1").arg(bearing.frequency, 0, 'g'),
                             QStringLiteral("%1").arg(bearing.azimuth * 0.01, 0, 'g'),
                             GetObjectText(3),
                             GetObjectText(4),
                             GetObjectText(2),
                             bearing.count > 0 ? count : QString(),
                             count};
    const auto longest =
        std::max_element(std::begin(texts), std::end(texts),
                         [](const QString &a, const QString &b) { return a.size() < b.size(); });
    if (qint64(GetLoggerSend().count(QLatin1Char('%'))) * longest->size() > kMaximumLine)
        return TraceTooLong();
    // All at once: a "%1" within a text stays as it is.
    SendData(GetLoggerSend().arg(texts[0], texts[1], texts[2], texts[3], texts[4], texts[5],
                                 texts[6], texts[7], texts[8]));
}

void LogDF::Update(Observable *subject, TChangeCode code)
{
    // Behind the base's turn the subject may be destroyed.
    const ValueBase *const gone = GoneValue(subject, code);
    LogVTData::Update(subject, code);
    if (gone == nullptr || gone != m_bearing)
        return;
    releaseBearing();
    m_bearingPath.clear();
}

} // namespace values
