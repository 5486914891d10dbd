#include "valueclasses/valuebase.h"

#include "platform/base/errorhandler.h"
#include "platform/base/kelmos.h"
#include "platform/base/krexception.h"
#include "platform/base/text.h"
#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/itreeitem.h"
#include "valueclasses/iundomanager.h"
#include "valueclasses/ivaluedescriptormap.h"
#include "valueclasses/notifydistinction.h"
#include "valueclasses/valuebase_p.h"

#include <QCoreApplication>
#include <QPointer>

#include <algorithm>
#include <climits>
#include <utility>

namespace values {

namespace {

/// Never destroyed: a value may still be asked while the process exits.
const std::string &defaultNamespace()
{
    static const auto *const name = new std::string("VdStr");
    return *name;
}

bool checkValueName(const QString &name)
{
    const auto isAllowed = [](QChar c) {
        return c.isLetterOrNumber() || QStringLiteral("_.- :").contains(c);
    };
    return !name.isEmpty() && Kelm::isAsciiString(name) &&
           std::all_of(name.begin(), name.end(), isAllowed);
}

QString checkedName(QString &&name)
{
    if (!checkValueName(name))
        throw KRException("Argument Exception: invalid value object name", __FILE__, "ValueBase",
                          "Constructor", __LINE__);
    return std::move(name);
}

} // namespace

unsigned char ValueBase::initialFlags()
{
    return NotifyEnabled | (NotifyDistinction::CanCreateInstance() ? HandsOver : 0);
}

ValueBase::ValueBase() : m_flags(initialFlags()) {}

// The name is checked before there is a value, whose end a destructor would tell.
ValueBase::ValueBase(QString name, TValueState state)
    : m_name(checkedName(std::move(name))), m_state(state), m_flags(initialFlags())
{
}

ValueBase::ValueBase(const ValueBase &other)
    : Observable(other), ISupportTransaction(other), IValue(other),
      IDeleteSubject(other), Kelm::IHasTimerCallback(other),
      IOptimizeTrigger(other), Kelm::Counted<ValueBase>(other), m_flags(initialFlags())
{
    ValueBase::operator=(other);
}

ValueBase &ValueBase::operator=(const ValueBase &other)
{
    if (this == &other)
        return *this;
    m_type = other.m_type;
    m_state = other.m_state;
    m_properties = other.m_properties;
    setFlag(AutoDelete, other.IsAutoDelete());
    m_descriptor = other.m_descriptor;
    if (isForeignThread()) {
        takePlaceElsewhere(other);
    } else {
        storeName(other.m_name);
        startTimer(other.GetUpdateTimerTime());
        SetUndoManager(other.GetUndoManager()); // may tell somebody who deletes this value
    }
    return *this;
}

/// The tree's index, timers and undo belong to the application thread.
void ValueBase::takePlaceElsewhere(const ValueBase &other)
{
    // Asked first, so that the blocks that posted changes have made are seen.
    const bool sourceWaits = other.changesWait();
    const bool waits = changesWait() || sourceWaits;
    const unsigned period = other.GetUpdateTimerTime();
    IUndoManager *const manager = other.GetUndoManager();
    const bool isInTree = m_deleteObserver != nullptr;
    const bool rename = isInTree && (waits || m_name != other.m_name);
    if (!isInTree)
        m_name = other.m_name;
    if (!waits && !rename && period == GetUpdateTimerTime() && manager == GetUndoManager())
        return;
    if (waits || rename || m_rare != nullptr || hasFlag(HasUndo) || period != 0)
        PostChange([this, rename, name = other.m_name, period, manager] {
            if (rename)
                storeName(name);
            startTimer(period);
            SetUndoManager(IUndoManager::IsAlive(manager) ? manager : nullptr);
        });
    else
        m_undoManager.store(manager);
}

namespace {
// Never destroyed: managers and values of static storage come and go until the very end.
std::vector<IUndoManager *> &livingManagers()
{
    static auto *const living = new std::vector<IUndoManager *>;
    return *living;
}
} // namespace

IUndoManager::IUndoManager() { livingManagers().push_back(this); }

IUndoManager::~IUndoManager()
{
    auto &living = livingManagers();
    living.erase(std::remove(living.begin(), living.end(), this), living.end());
}

bool IUndoManager::IsAlive(const IUndoManager *manager)
{
    const auto &living = livingManagers();
    return std::find(living.begin(), living.end(), manager) != living.end();
}

void ValueBase::SetUndoManager(IUndoManager *manager)
{
    IUndoManager *const before = m_undoManager.exchange(manager);
    const bool hadUndo = hasFlag(HasUndo);
    if (before == manager || (m_rare == nullptr && !hadUndo))
        return;
    auto &former = rare().formerUndoManagers;
    if (hadUndo)
        former.push_back(before);
    setFlag(HasUndo, std::erase(former, manager) > 0);
    // Their ends will be told to the new manager; the old one would wait for them for ever.
    for (const Rare::OpenBracket &open : std::exchange(rare().openBrackets, {})) {
        FindCommandEndTransactionPredicate isOurs(open.bracket);
        if (IUndoManager::IsAlive(before))
            before->RemoveUndoCommand_If(&isOurs);
    }
}

/// This value goes: managers that were given commands of it can restore nothing any more.
void ValueBase::forgetUndo()
{
    std::vector<IUndoManager *> managers;
    if (m_rare != nullptr)
        managers.swap(m_rare->formerUndoManagers);
    if (hasFlag(HasUndo))
        managers.push_back(GetUndoManager());
    for (IUndoManager *manager : managers)
        if (IUndoManager::IsAlive(manager)) // a listener of an earlier one may end it
            manager->ForgetValue(this);
}

ValueBase::~ValueBase()
{
    if (!Kelm::isUnloading() && !Kelm::isAcceptableThread()) {
        SPECTREE_TRACE(TraceWarnings,
                       QStringLiteral("VTTHREADING: Destructing value from non-main thread. "
                                      "ValueName: %1, %2")
                           .arg(m_name, GetPathName()));
        Kelm::terminate();
    }
    if (m_deleteObserver != nullptr)
        m_deleteObserver->SubjectEnding(this);
    const QString path = m_deleteObserver != nullptr ? m_deleteObserver->GetLastCompletePathName()
                         : m_rare != nullptr         ? m_rare->lastCompletePathName
                                                     : QString();
    LastDeletedObject::Instance() = {path.isEmpty() ? m_name : path,
                                     LastDeletedObject::ValueObjectType};
    if (m_rare != nullptr)
        m_rare->timer.reset();
    setFlag(AutoDelete, false);
    m_state = VS_DELETED;
    // An observer may run the event loop, or undo: neither may reach what is half destroyed.
    if (auto *const handOver = m_handOver.exchange(nullptr, std::memory_order_acquire)) {
        const KeepLastDeletedObject keep; // a posted assignment may hold a copy
        delete handOver;
    }
    setFlag(HandsOver, false);
    forgetUndo();
    m_undoManager.store(nullptr);
    // An observer that wasn't told, for a transaction is open, would keep a dangling pointer.
    setFlag(NotifyEnabled, true);
    ValueBase::NotifyObservers(CC_STATE, nullptr);
    if (m_rare != nullptr && m_rare->notifyDeleteFn)
        std::exchange(m_rare->notifyDeleteFn, nullptr)(this);
    if (m_deleteObserver != nullptr)
        m_deleteObserver->NotifyDelete(this);
}

ValueBase::Rare &ValueBase::rare()
{
    if (m_rare == nullptr)
        m_rare = std::make_unique<Rare>();
    return *m_rare;
}

void ValueBase::setFlag(Flag flag, bool on)
{
    if (on)
        m_flags.fetch_or(flag, std::memory_order_relaxed);
    else
        m_flags.fetch_and(static_cast<unsigned char>(~flag), std::memory_order_release);
}

bool ValueBase::postBehind(std::function<void()> repeat)
{
    if (!changesWait() || !isForeignThread())
        return false;
    PostChange(std::move(repeat));
    return true;
}

void ValueBase::SetAutoDelete(bool on)
{
    if (!postBehind([=, this] { SetAutoDelete(on); }))
        setFlag(AutoDelete, on);
}

void ValueBase::SetValueDescriptor(const ValueDescriptor *descriptor)
{
    if (!postBehind([=, this] { SetValueDescriptor(descriptor); }))
        m_descriptor = descriptor;
}

void ValueBase::setProperty(Property property, bool on)
{
    if (postBehind([=, this] { setProperty(property, on); }))
        return;
    m_properties = on ? m_properties | property : m_properties & ~unsigned(property);
}

void ValueBase::SetName(const QString &name, IObserver *source)
{
    if (name.isEmpty())
        throw KRException("Empty names are not allowed!", __FILE__, "ValueBase", "SetName",
                          __LINE__);
    // The tree's index belongs to the application thread, and so does what posted changes use.
    if ((m_deleteObserver != nullptr || changesWait()) && isForeignThread())
        return PostChange([this, name, source] { SetName(name, source); });
    storeName(name);
    NotifyObservers(CC_NAME, source);
}

void ValueBase::storeName(const QString &name)
{
    if (m_name == name)
        return;
    m_name = name;
    if (m_deleteObserver != nullptr)
        m_deleteObserver->SubjectRenamed(this);
}

QString ValueBase::GetPathName() const
{
    return GetValueItem() != nullptr ? m_deleteObserver->GetPathName() : QString();
}

ValueItem *ValueBase::GetValueItem() const
{
    return m_deleteObserver != nullptr ? m_deleteObserver->AsValueItem() : nullptr;
}

void ValueBase::SetLastCompletePathName() { m_type = GetType(); }

void ValueBase::SetLastCompletePathName(const QString &path) { rare().lastCompletePathName = path; }

const std::string &ValueBase::GetTranslationNamespace() const
{
    return m_rare != nullptr ? m_rare->translationNamespace : defaultNamespace();
}

void ValueBase::SetTranslationNamespace(const char *name, IObserver *source)
{
    storeTranslationNamespace(name != nullptr ? name : "", source);
}

void ValueBase::storeTranslationNamespace(const std::string &name, IObserver *source)
{
    if (PostIfForeign([=, this] { storeTranslationNamespace(name, source); }) ||
        GetTranslationNamespace() == name)
        return;
    rare().translationNamespace = name;
    if (Record())
        RecordCommand(new CommandSetTranslationNamespace(this, name, nullptr));
    NotifyObservers(CC_TRANSLATION_NAMESPACE, source);
}

void ValueBase::SetStringValue(QString /*text*/, IObserver * /*source*/) {}
QString ValueBase::GetStringValue() const { return {}; }

void ValueBase::SetState(TValueState state, IObserver *source)
{
    if (PostIfForeign([=, this] { ValueBase::SetState(state, source); }) || state == m_state)
        return;
    if (IUndoManager *undo = GetUndoManager()) {
        const LifeWatch watch(this);
        if (state == VS_DELETED)
            undo->ResetUndoStacks(); // a deleted value can't be restored
        else
            static_cast<void>(AddUndo(new CommandSetState(this, m_state, nullptr)));
        if (watch.IsGone())
            return;
    }
    m_state = state;
    if (Record())
        RecordCommand(new CommandSetState(this, state, source));
    NotifyObservers(CC_STATE, source);
}

bool ValueBase::Compare(const ValueBase *other) const
{
    return other != nullptr && m_type == other->m_type && m_name == other->m_name &&
           m_state == other->m_state && m_properties == other->m_properties &&
           IsAutoDelete() == other->IsAutoDelete() && m_descriptor == other->m_descriptor &&
           GetUpdateTimerTime() == other->GetUpdateTimerTime();
}

bool ValueBase::PostAssignByReference(const ValueBase &other)
{
    if (!IsChangeForeign() && !other.IsChangeForeign())
        return false;
    postAssign(const_cast<ValueBase &>(other));
    return true;
}

void ValueBase::postAssign(ValueBase &other)
{
    // It ends with its hand-over object, and what changes there from now on waits behind.
    const QPointer<NotifyDistinction> alive(&other.handOver());
    auto hold = std::make_shared<NotifyDistinction::Hold>(other.handOver());
    PostChange([this, &other, alive, hold = std::move(hold)]() mutable {
        const auto own = std::move(hold); // the poster may be the last to drop the change
        if (!alive.isNull())
            Assign(other);
    });
}

void ValueBase::failAssign(const ValueBase &other)
{
    throw KRException(QStringLiteral("A value of another kind cannot take over the %1 \"%2\".")
                          .arg(other.GetTypeName(), other.GetName()),
                      __FILE__, "ValueBase", "Assign", __LINE__);
}

void ValueBase::BindNotifyDeleteFn(std::function<void(ValueBase *)> function)
{
    rare().notifyDeleteFn = std::move(function);
}

unsigned int ValueBase::GetUpdateTimerTime() const
{
    return m_rare != nullptr ? m_rare->updateTimerTime : 0;
}

int ValueBase::SetUpdateTimerTime(unsigned int milliseconds)
{
    // A timer runs on the thread that starts it.
    if (isForeignThread()) {
        PostChange([this, milliseconds] { ValueBase::SetUpdateTimerTime(milliseconds); });
        return 0;
    }
    if (GetUndoManager() != nullptr &&
        !AddUndo(new CommandUpdateTimerTime(this, GetUpdateTimerTime(), nullptr)))
        return 0;
    const int id = startTimer(milliseconds);
    if (Record())
        RecordCommand(new CommandUpdateTimerTime(this, milliseconds, nullptr));
    return id;
}

int ValueBase::startTimer(unsigned int milliseconds)
{
    if (milliseconds == 0) {
        if (m_rare != nullptr) {
            m_rare->updateTimerTime = 0;
            m_rare->timer.reset();
        }
        return 0;
    }
    Rare &own = rare();
    own.updateTimerTime = milliseconds;
    if (own.timer == nullptr)
        own.timer = Kelm::ObjectTimer::create(this);
    own.timer->KillTimers();
    // The timer counts in an int; a longer period is never again.
    return own.timer->StartTimer(int(std::min<unsigned int>(milliseconds, INT_MAX)));
}

void ValueBase::OnTimer(int /*id*/)
{
    throw KRException("Function OnTimer(int id) not implemented for this class!", __FILE__,
                      "ValueBase", "OnTimer", __LINE__);
}

void ValueBase::OverrideTimer(unsigned int /*milliseconds*/)
{
    throw KRException("Function OverrideTimer(unsigned int ms) not implemented for this class!",
                      __FILE__, "ValueBase", "OverrideTimer", __LINE__);
}

void ValueBase::KillOverrideTimer(int /*id*/)
{
    throw KRException("Function KillOverrideTimer(int id) not implemented for this class!",
                      __FILE__, "ValueBase", "KillOverrideTimer", __LINE__);
}

bool ValueBase::AddUndo(Command *command)
{
    if (isForeignThread()) { // undo came to be wanted while the change was on its way
        delete command;
        return true;
    }
    const LifeWatch watch(this);
    setFlag(HasUndo, true);
    GetUndoManager()->AddUndoCommand(command);
    return !watch.IsGone();
}

LastDeletedObject &LastDeletedObject::Instance()
{
    // Never destroyed: values of static storage write here at the very end.
    static auto *const last = new LastDeletedObject;
    return *last;
}

namespace {
IValueDescriptorMap *descriptorMap = nullptr;
}

IValueDescriptorMap *IValueDescriptorMap::Instance() { return descriptorMap; }
void IValueDescriptorMap::SetInstance(IValueDescriptorMap *map) { descriptorMap = map; }

} // namespace values
