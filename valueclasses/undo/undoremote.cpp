#include "valueclasses/undo/undoremote.h"

#include "platform/base/errorhandler.h"
#include "valueclasses/undo/undomanager.h"

#include <QStringList>
#include <QUrl>

namespace values {

UndoRemoteValue::UndoRemoteValue(Value<QString> *value) : m_value(value), m_subject(value)
{
    m_value->SetUndoManager(nullptr);
    m_value->AddObserver(this);
}

UndoRemoteValue::~UndoRemoteValue()
{
    if (m_value != nullptr)
        m_value->DeleteObserver(this);
}

void UndoRemoteValue::Update(Observable *subject, TChangeCode code)
{
    if (subject != m_subject || m_value == nullptr)
        return;
    if (code == CC_STATE && m_value->ValueBase::GetState() == VS_DELETED) {
        m_value = nullptr;
        m_subject->DeleteObserver(this); // it may be marked only, and live on
    } else if (code == CC_VALUE) {
        TextChanged(GetText());
    }
}

QString UndoRemoteValue::GetText() const
{
    return m_value != nullptr ? m_value->GetValue() : QString();
}

void UndoRemoteValue::SetText(const QString &text)
{
    if (m_value == nullptr)
        return;
    m_value->SetUndoManager(nullptr); // else telling of a history would change it
    if (m_value != nullptr)           // who was told of that may have ended it
        m_value->SetValue(text, this);
}

void UndoRemoteValue::Send(const QString &payload)
{
    const qulonglong last = GetText().section(QLatin1Char(' '), 0, 0).toULongLong();
    SetText(QStringLiteral("%1 ").arg(last + 1) + payload);
}

QString UndoRemoteValue::PayloadOf(const QString &text)
{
    return text.section(QLatin1Char(' '), 1);
}

namespace {

// Without blanks, ";" and anything that isn't ASCII, so that every mode of a command string
// carries it.
QString encoded(const QString &description)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(description));
}

QString decoded(const QString &text) { return QUrl::fromPercentEncoding(text.toLatin1()); }

} // namespace

UndoRecordingTriggerByValueServer::UndoRecordingTriggerByValueServer(UndoManager *manager,
                                                                     Value<QString> *trigger)
    : UndoRemoteValue(trigger), m_manager(manager)
{
    m_manager->AddRecordingsListener(this);
}

UndoRecordingTriggerByValueServer::~UndoRecordingTriggerByValueServer()
{
    if (IUndoManager::IsAlive(m_manager))
        m_manager->DeleteRecordingsListener(this);
}

void UndoRecordingTriggerByValueServer::TextChanged(const QString &text)
{
    if (!IUndoManager::IsAlive(m_manager))
        return;
    m_wanted.reset(); // the newest wish counts
    m_manager->FinishCurrentUndoStack();
    const QString payload = PayloadOf(text);
    if (!payload.startsWith(QLatin1Char('+')))
        return;
    const QString description = decoded(payload.mid(1));
    if (!m_manager->OpenNewUndoStack(description))
        m_wanted = description;
}

void UndoRecordingTriggerByValueServer::OnUndoRecordingsChanged()
{
    // Without a stack the next change would empty the history.
    if (m_wanted && m_manager->OpenNewUndoStack(*m_wanted))
        m_wanted.reset();
}

UndoRecordingTriggerByValueClient::UndoRecordingTriggerByValueClient(Value<QString> *trigger)
    : UndoRemoteValue(trigger)
{
}

void UndoRecordingTriggerByValueClient::OpenNewUndoStack(const QString &description)
{
    Send(QLatin1Char('+') + encoded(description));
}

void UndoRecordingTriggerByValueClient::FinishCurrentUndoStack() { Send(QString()); }

UndoRecordingsToValueServer::UndoRecordingsToValueServer(UndoManager *manager,
                                                         Value<QString> *recordings,
                                                         Value<QString> *request)
    : UndoRemoteValue(request), m_manager(manager), m_recordings(recordings)
{
    m_manager->AddRecordingsListener(this);
    OnUndoRecordingsChanged();
}

UndoRecordingsToValueServer::~UndoRecordingsToValueServer()
{
    if (IUndoManager::IsAlive(m_manager))
        m_manager->DeleteRecordingsListener(this);
}

void UndoRecordingsToValueServer::OnUndoRecordingsChanged()
{
    const std::vector<QString> descriptions = m_manager->GetUndoStackDescriptions();
    QString text = QString::number(descriptions.size());
    for (const QString &description : descriptions)
        text += QLatin1Char(' ') + encoded(description);
    m_recordings.SetText(text);
}

void UndoRecordingsToValueServer::TextChanged(const QString &text)
{
    bool isNumber = false, done = false;
    const unsigned int count = PayloadOf(text).toUInt(&isNumber);
    // The connection that brought the request has nobody to catch what a command throws.
    try {
        done = isNumber && IUndoManager::IsAlive(m_manager) && m_manager->ExecuteUndoStacks(count);
    } catch (const std::exception &error) {
        SPECTREE_TRACE(
            TraceWarnings,
            QStringLiteral("A client's undo broke off: %1").arg(QString::fromUtf8(error.what())));
    }
    if (!done)
        SPECTREE_TRACE(TraceLifecycle,
                       QStringLiteral("A client's undo can't be done now: %1").arg(text));
}

UndoRecordingsToValueClient::UndoRecordingsToValueClient(Value<QString> *recordings,
                                                         Value<QString> *request)
    : UndoRemoteValue(recordings), m_request(request)
{
}

std::vector<QString> UndoRecordingsToValueClient::GetUndoStackDescriptions() const
{
    const QStringList parts = GetText().split(QLatin1Char(' '));
    std::vector<QString> descriptions;
    if (parts.front().toInt() != parts.size() - 1)
        return descriptions;
    for (int i = 1; i < parts.size(); ++i)
        descriptions.push_back(decoded(parts[i]));
    return descriptions;
}

void UndoRecordingsToValueClient::ExecuteUndo(unsigned int count)
{
    m_request.Send(QString::number(count));
}

void UndoRecordingsToValueClient::TextChanged(const QString & /*text*/)
{
    m_listeners.Notify(&IUndoRecordingsListener::OnUndoRecordingsChanged);
}

} // namespace values
