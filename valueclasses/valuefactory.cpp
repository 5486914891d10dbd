#include "valueclasses/valuefactory.h"

#include "platform/base/errorhandler.h"
#include "valueclasses/itreeitem.h"
#include "valueclasses/valuekinds_p.h"

#include <typeinfo>

namespace values {

ValueCreator::ValueCreator(const ValueBase &prototype)
    : m_type(prototype.GetType()), m_typeName(prototype.GetTypeName()), m_class(typeid(prototype))
{
}

ValueFactory &ValueFactory::Instance()
{
    static ValueFactory factory;
    return factory;
}

ValueFactory::ValueFactory()
{
    const KeepLastDeletedObject keep; // the prototypes come and go
    ValueKinds kinds(*this);
    registerKinds(kinds);
}

void ValueFactory::RegisterType(std::unique_ptr<ValueCreator> creator)
{
    const ValueCreator *const kind = creator.get();
    if (!m_byName.try_emplace(kind->GetTypeName(), std::move(creator)).second) {
        _Q_Trace(QStringLiteral("Two kinds of values are named \"%1\".").arg(kind->GetTypeName()),
                 __FILE__, __LINE__);
        return;
    }
    m_byType.try_emplace(kind->GetType(), kind);
    m_byClass.try_emplace(kind->GetClass(), kind);
}

void ValueFactory::UnregisterType(ValueType type)
{
    const auto found = m_byType.find(type);
    if (found == m_byType.end())
        return;
    const ValueCreator *const kind = found->second;
    m_byType.erase(found);
    m_byClass.erase(kind->GetClass());
    m_byName.erase(kind->GetTypeName());
    for (const auto &[name, other] : m_byName) // another kind may share the number
        if (other->GetType() == type)
            m_byType.try_emplace(type, other.get());
}

ValueBase *ValueFactory::CreateValue(ValueType type) const
{
    const auto found = m_byType.find(type);
    if (found != m_byType.end())
        return found->second->Create();
    SPECTREE_TRACE(TraceWarnings,
                   QStringLiteral("No kind of value has the type number %1.").arg(type));
    return nullptr;
}

ValueBase *ValueFactory::CreateValue(const QString &typeName) const
{
    const auto found = m_byName.find(typeName);
    if (found != m_byName.end())
        return found->second->Create();
    SPECTREE_TRACE(TraceWarnings,
                   QStringLiteral("No kind of value is named \"%1\".").arg(typeName));
    return nullptr;
}

ValueBase *ValueFactory::CloneValue(const ValueBase &value) const
{
    const auto found = m_byClass.find(typeid(value));
    if (found != m_byClass.end())
        return found->second->Clone(value);
    SPECTREE_TRACE(TraceWarnings,
                   QStringLiteral("The value \"%1\" is of no kind that can be copied: %2.")
                       .arg(value.GetName(), value.GetTypeName()));
    return nullptr;
}

bool ValueFactory::IsRegistered(const ValueBase &value) const
{
    const QString name = value.GetTypeName();
    const auto found = m_byType.find(value.GetType());
    return (found != m_byType.end() && found->second->GetTypeName() == name) ||
           m_byName.find(name) != m_byName.end();
}

ValueType ValueFactory::TypeForTypeName(const QString &name) const
{
    const auto found = m_byName.find(name);
    return found != m_byName.end() ? found->second->GetType() : VTYPE_Unknown;
}

QString ValueFactory::TypeNameForType(ValueType type) const
{
    const auto found = m_byType.find(type);
    return found != m_byType.end() ? found->second->GetTypeName() : QString();
}

} // namespace values
