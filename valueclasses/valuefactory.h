#pragma once

#include "valueclasses/valuebase.h"

#include <map>
#include <typeindex>
#include <unordered_map>

namespace values {

/// Makes and copies the values of one class.
class SPECTREE_EXPORT ValueCreator {
public:
    virtual ~ValueCreator() = default;
    /// Both give a value that the caller owns.
    virtual ValueBase *Create() const = 0;
    /// A copy of \a value, which is of this creator's class and of none derived from it.
    virtual ValueBase *Clone(const ValueBase &value) const = 0;
    ValueType GetType() const { return m_type; }
    const QString &GetTypeName() const { return m_typeName; }
    std::type_index GetClass() const { return m_class; }

protected:
    explicit ValueCreator(const ValueBase &prototype);

private:
    ValueType m_type;
    QString m_typeName;
    std::type_index m_class;
};

template <typename T>
class DefaultValueCreator final : public ValueCreator {
public:
    DefaultValueCreator() : ValueCreator(T()) {}
    ValueBase *Create() const override { return new T; }
    ValueBase *Clone(const ValueBase &value) const override
    {
        if constexpr (std::is_copy_constructible_v<T>) {
            return new T(static_cast<const T &>(value));
        } else {
            auto copy = std::make_unique<T>();
            copy->Assign(value);
            return copy.release();
        }
    }
};

/// Makes a value from its type number or type name, and copies values.
///
/// Where kinds share a number, creation by number gives the one that was registered first, creation
/// by name the named one. What isn't registered gives null and is reported.
/// Ownership: the caller owns what it gets. Threads: the application thread.
class SPECTREE_EXPORT ValueFactory {
public:
    /// Registers all kinds when first asked.
    static ValueFactory &Instance();
    ValueBase *CreateValue(ValueType type) const;
    ValueBase *CreateValue(const QString &typeName) const;
    /// A copy of the same class, never of a base of it.
    ValueBase *CloneValue(const ValueBase &value) const;
    bool IsRegistered(ValueType type) const { return m_byType.contains(type); }
    /// Whether a value of its name can be made.
    bool IsRegistered(const ValueBase &value) const;
    /// VTYPE_Unknown for a name that isn't registered.
    ValueType TypeForTypeName(const QString &name) const;
    /// Empty for a type that isn't registered.
    QString TypeNameForType(ValueType type) const;

private:
    friend class ValueKinds;
    ValueFactory();
    void RegisterType(std::unique_ptr<ValueCreator> creator);
    void UnregisterType(ValueType type);

    std::map<QString, std::unique_ptr<ValueCreator>> m_byName;
    std::unordered_map<int, const ValueCreator *> m_byType;
    std::unordered_map<std::type_index, const ValueCreator *> m_byClass;
};

} // namespace values
