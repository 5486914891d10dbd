#include "memmap/valueptr.h"

#include "platform/base/errorhandler.h"
#include "valuetree/tree.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace values {

namespace {

int indexOf(const QString &token)
{
    bool isNumber = false;
    const int index = token.size() < 2 ? -1 : token.mid(1).toInt(&isNumber);
    return isNumber ? std::max(index, -1) : -1;
}

QString fixedText(double number) { return QStringLiteral("%1").arg(number, 0, 'f'); }

} // namespace

LogVTData::ValuePtr::ValuePtr(LogVTData &log, const QString &path, const QString &token)
    : m_log(log), m_path(path), m_token(token), m_index(indexOf(token))
{
}

LogVTData::ValuePtr::~ValuePtr() { Disconnect(); }

bool LogVTData::ValuePtr::Connect()
{
    if (m_value != nullptr)
        return true;
    ValueBase *const found = Tree::Instance().GetValue(m_path);
    if (found == nullptr || found->GetState() == VS_DELETED || !Fits(*found)) {
        SPECTREE_TRACE(TraceWarnings,
                       QStringLiteral("Couldn't create a %1 Object out of %2: Value not found or "
                                      "Value doesn't fit ValueType")
                           .arg(QLatin1String(GetKind()), m_path));
        return false;
    }
    m_value = found;
    m_log.Watch(found);
    return true;
}

void LogVTData::ValuePtr::Disconnect()
{
    if (ValueBase *const value = std::exchange(m_value, nullptr))
        m_log.Unwatch(value);
}

QString ValuePtr_ValueNumericInt::GetText() const
{
    if (Get() == nullptr)
        return {};
    // Adding 0 makes -0 a 0. The product may be more than any integer type holds.
    const double number = std::round(Get()->GetValue() * GetFactor()) + 0.0;
    return QStringLiteral("%1").arg(number, 0, 'f', 0);
}

QString ValuePtr_ValueNumericFloat::GetText() const
{
    return Get() != nullptr ? fixedText(Get()->GetValue() * GetFactor()) : QString();
}

QString ValuePtr_ValueNumericSelection::GetText() const
{
    if (Get() == nullptr || Get()->GetCurrentItem() == nullptr)
        return {};
    return fixedText(Get()->GetCurrentValue() * GetFactor());
}

QString ValuePtr_ValueSelection::GetText() const
{
    return Get() != nullptr ? Get()->GetStringValue() : QString();
}

QString ValuePtr_ValueString::GetText() const
{
    return Get() != nullptr ? Get()->GetValue() : QString();
}

} // namespace values
