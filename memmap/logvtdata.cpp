#include "memmap/logvtdata.h"

#include "memmap/valueptr.h"
#include "platform/base/errorhandler.h"
#include "valuetree/tree.h"

#include <QScopedValueRollback>

#include <algorithm>
#include <utility>

namespace values {

namespace {

bool isDigit(QChar c) { return c >= u'0' && c <= u'9'; }

} // namespace

LogVTData::LogVTData() = default;

LogVTData::~LogVTData() { LogVTData::disconnect(); }

bool LogVTData::AddTrigger_ValuePath(const QString &path)
{
    ValueBase *const value = Tree::Instance().GetValue(path);
    if (value == nullptr || value->GetState() == VS_DELETED)
        return false;
    m_triggers.push_back({path, value});
    Watch(value);
    return true;
}

bool LogVTData::isTriggerAvailable() const
{
    return std::any_of(m_triggers.begin(), m_triggers.end(),
                       [](const Trigger &trigger) { return trigger.value != nullptr; });
}

bool LogVTData::connect()
{
    m_connected = true;
    bool whole = true;
    for (Trigger &trigger : m_triggers) {
        if (trigger.value != nullptr || trigger.path.isEmpty())
            continue;
        ValueBase *const value = Tree::Instance().GetValue(trigger.path);
        if (value != nullptr && value->GetState() != VS_DELETED)
            Watch(trigger.value = value);
        else
            whole = false;
    }
    for (const auto &[index, object] : m_objects)
        whole = tstConnect(object.get()) && whole;
    return whole;
}

void LogVTData::disconnect()
{
    m_connected = false;
    for (Trigger &trigger : m_triggers)
        if (ValueBase *const value = std::exchange(trigger.value, nullptr))
            Unwatch(value);
    for (const auto &[index, object] : m_objects)
        object->Disconnect();
}

void LogVTData::DeleteObservables()
{
    LogVTData::disconnect();
    m_triggers.clear();
    m_objects.clear();
}

bool LogVTData::tstConnect(ValuePtr *object) { return object != nullptr && object->Connect(); }

void LogVTData::StoreObject(std::unique_ptr<ValuePtr> object)
{
    const int index = object->GetIndex();
    if (index >= 0)
        m_objects[index] = std::move(object);
    else
        SPECTREE_TRACE(
            TraceWarnings,
            QStringLiteral("Object %1 has no index, no object created").arg(object->GetPath()));
}

bool LogVTData::SetObject(std::unique_ptr<ValuePtr> object)
{
    ValuePtr *const stored = object.get();
    StoreObject(std::move(object));
    return tstConnect(stored);
}

QString LogVTData::GetObjectText(int index) const
{
    const auto found = m_objects.find(index);
    return found != m_objects.end() ? found->second->GetText() : QString();
}

void LogVTData::SetLogger(const QString &type, const QString &messageTemplate)
{
    m_loggerType = type;
    m_loggerSend = messageTemplate;
}

void LogVTData::SendData(const QString &text)
{
    if (text.size() > kMaximumLine)
        return TraceTooLong();
    Send(QStringLiteral("Data\t") + m_loggerType + QLatin1Char('\t') + text + QLatin1Char('\t'));
}

void LogVTData::TraceTooLong() const
{
    SPECTREE_TRACE(
        TraceWarnings,
        QStringLiteral("A log line of type %1 is too long to be sent").arg(m_loggerType));
}

void LogVTData::toLogger()
{
    if (m_loggerSend.isEmpty() || m_loggerType.isEmpty())
        return;
    // One pass: a text that happens to hold "#0" stays as it is.
    QString text;
    int from = 0;
    for (int mark; (mark = m_loggerSend.indexOf(QLatin1Char('#'), from)) >= 0;) {
        int length = 0;
        const auto object = objectAt(m_loggerSend.constData() + mark + 1, &length);
        text += m_loggerSend.midRef(from, mark - from);
        if (object != m_objects.end())
            text += object->second->GetText();
        else
            text += QLatin1Char('#');
        from = mark + 1 + length;
        if (text.size() > kMaximumLine)
            break;
    }
    text += m_loggerSend.midRef(from);
    SendData(text);
}

/// The object with the highest index that the digits begin with: "#10" is 10 before it is 1.
std::map<int, std::unique_ptr<LogVTData::ValuePtr>>::const_iterator
LogVTData::objectAt(const QChar *digits, int *length) const
{
    int count = 0;
    while (count < 10 && isDigit(digits[count])) // the text ends with a zero
        ++count;
    if (count > 1 && digits[0] == u'0')
        count = 1;
    for (; count > 0; --count) {
        bool isNumber = false;
        const int index = QString(digits, count).toInt(&isNumber);
        const auto found = isNumber ? m_objects.find(index) : m_objects.end();
        if (found != m_objects.end()) {
            *length = count;
            return found;
        }
    }
    return m_objects.end();
}

void LogVTData::Watch(ValueBase *value)
{
    if (++m_watched[value] == 1)
        value->AddObserver(this);
}

void LogVTData::Unwatch(ValueBase *value)
{
    const auto found = m_watched.find(value);
    if (found == m_watched.end() || --found->second > 0)
        return;
    m_watched.erase(found);
    value->DeleteObserver(this); // an auto-delete value may go with it
}

ValueBase *LogVTData::GoneValue(Observable *subject, TChangeCode code)
{
    auto *const value = code == CC_STATE ? dynamic_cast<ValueBase *>(subject) : nullptr;
    return value != nullptr && value->GetState() == VS_DELETED ? value : nullptr;
}

void LogVTData::forgetValue(ValueBase *value)
{
    if (m_watched.count(value) == 0)
        return;
    for (Trigger &trigger : m_triggers)
        if (trigger.value == value) {
            trigger = {};
            Unwatch(value);
        }
    for (auto object = m_objects.begin(); object != m_objects.end();)
        object = object->second->GetValue() == value ? m_objects.erase(object) : std::next(object);
}

void LogVTData::Update(Observable *subject, TChangeCode code)
{
    if (ValueBase *const gone = GoneValue(subject, code))
        forgetValue(gone);
    if (code != CC_VALUE || !m_connected || !m_triggerEnabled || m_sending)
        return;
    const bool triggers =
        std::any_of(m_triggers.begin(), m_triggers.end(),
                    [subject](const Trigger &trigger) { return trigger.value == subject; });
    if (!triggers)
        return;
    // Whoever reads the lines may change a trigger.
    const QScopedValueRollback<bool> sending(m_sending, true);
    toLogger();
}

} // namespace values
