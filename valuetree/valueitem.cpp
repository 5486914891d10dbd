#include "valuetree/valueitem.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/valuebase.h"

#include <utility>

namespace values {

ValueItem::ValueItem(ValueBase *value) : TreeItem(Kind::ValueItem, QString())
{
    if (value == nullptr)
        return;
    if (value->GetDeleteObserver() != nullptr)
        throw KRException(QStringLiteral("The value \"%1\" is held already.").arg(value->GetName()),
                          __FILE__, "ValueItem", "ValueItem", __LINE__);
    adopt(value);
}

ValueItem::~ValueItem()
{
    requireThread("VTTHREADING: Destructing value item from non-main thread ");
    m_ending = true;
    setLastDeleted();
    tellOfEnd(nullptr);
    releaseValue();
    leaveParent();
}

void ValueItem::adopt(ValueBase *value)
{
    m_value = value;
    m_valueEnding = false;
    value->SetDeleteObserver(this);
    storeName(value->GetName());
    SetLastCompletePathName(false);
    listen();
}

void ValueItem::listen()
{
    if (m_listening || m_value == nullptr || !HasObservers())
        return;
    m_listening = true;
    m_value->AddObserver(this);
}

void ValueItem::stopListening()
{
    if (!m_listening || HasObservers() || m_value == nullptr)
        return;
    m_listening = false;
    m_value->DeleteObserver(this); // an auto-delete value may go with it
}

/// Leaves the value, and destroys it unless it is being destroyed or auto-delete.
void ValueItem::releaseValue()
{
    if (m_value == nullptr)
        return;
    rememberPath();
    ValueBase *const value = std::exchange(m_value, nullptr);
    const bool owned = !m_valueEnding;
    m_listening = false;
    storeName(QString());
    value->SetDeleteObserver(nullptr);
    if (owned)
        value->SetLastCompletePathName(m_lastPath);
    // Only its own observers see the value's end; an auto-delete one without any ends here.
    const bool autoDelete = value->IsAutoDelete();
    value->DeleteObserver(this);
    if (owned && !autoDelete)
        delete value;
}

void ValueItem::AddObserver(IObserver *observer)
{
    TreeItem::AddObserver(observer);
    listen();
}

void ValueItem::DeleteObserver(IObserver *observer)
{
    TreeItem::DeleteObserver(observer);
    stopListening();
}

void ValueItem::DeleteObservers()
{
    TreeItem::DeleteObservers();
    stopListening();
}

void ValueItem::Update(Observable *subject, TChangeCode code)
{
    Observable::NotifyObservers(code, subject->GetNotificationSource());
}

void ValueItem::SubjectRenamed(IDeleteSubject * /*subject*/)
{
    if (m_value != nullptr)
        storeName(m_value->GetName());
}

void ValueItem::SubjectEnding(IDeleteSubject * /*subject*/) { m_valueEnding = true; }

void ValueItem::NotifyDelete(IDeleteSubject * /*subject*/)
{
    rememberPath();
    m_value = nullptr;
    m_listening = m_valueEnding = false;
    storeName(QString());
}

void ValueItem::SetName(const QString &name, IObserver *source, bool /*skipPathUpdate*/)
{
    if (m_value != nullptr)
        m_value->SetName(name, source);
}

void ValueItem::SetLastCompletePathName(bool recurse)
{
    TreeItem::SetLastCompletePathName(recurse);
    if (m_value != nullptr)
        m_value->SetLastCompletePathName();
}

const ValueDescriptor *ValueItem::GetValueDescriptor() const
{
    return m_value != nullptr ? m_value->GetValueDescriptor() : nullptr;
}

void ValueItem::SetStringValue(QString text, IObserver *source)
{
    if (m_value != nullptr)
        m_value->SetStringValue(std::move(text), source);
}

QString ValueItem::GetStringValue() const
{
    return m_value != nullptr ? m_value->GetStringValue() : QString();
}

TValueState ValueItem::GetState() const
{
    return m_value != nullptr ? m_value->GetState() : VS_NORMAL;
}

void ValueItem::SetState(TValueState state, IObserver *source)
{
    if (m_value != nullptr)
        m_value->SetState(state, source);
}

void ValueItem::HasChanged(TChangeCode code, IObserver *source)
{
    if (m_value != nullptr)
        m_value->HasChanged(code, source);
}

std::string ValueItem::GetCommandStringForTransmission(unsigned int mode)
{
    return m_value != nullptr ? m_value->GetCommandStringForTransmission(mode) : std::string();
}

void ValueItem::SetCommandString(const std::string &commands, IObserver *source, int mode)
{
    if (m_value != nullptr)
        m_value->SetCommandString(commands, source, mode);
}

std::string ValueItem::GetObjectStateStringForTransmission(unsigned int mode) const
{
    return m_value != nullptr ? m_value->GetObjectStateStringForTransmission(mode) : std::string();
}

ValueBase *ValueItem::GetValue(QString path) const { return path.isEmpty() ? m_value : nullptr; }

Node *ValueItem::GetNode(QString /*path*/) const { return nullptr; }

ValueBase *ValueItem::CreateValue(QString /*path*/, const ValueBase & /*prototype*/)
{
    _Q_assert(false, "!\"Illegal call of ValueItem::CreateValue().\"", __FILE__, __LINE__);
    return nullptr;
}

bool ValueItem::AddNode(const QString & /*path*/, Node * /*node*/) { return false; }
bool ValueItem::AddNode(const QString & /*path*/) { return false; }

bool ValueItem::AddValue(QString path, ValueBase *value)
{
    _Q_assert(path.isEmpty(), "sPath == \"\"", __FILE__, __LINE__);
    if (!path.isEmpty() || value == nullptr || m_value != nullptr || m_ending ||
        value->GetDeleteObserver() != nullptr)
        return false;
    adopt(value);
    return true;
}

bool ValueItem::DeleteValue(QString path)
{
    if (!path.isEmpty() || m_value == nullptr)
        return false;
    releaseValue();
    return true;
}

void ValueItem::SetAllValuesAutoDelete(bool on)
{
    if (m_value != nullptr)
        m_value->SetAutoDelete(on);
}

} // namespace values
