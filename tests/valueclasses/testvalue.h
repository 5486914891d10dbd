#pragma once

#include "valueclasses/valuebase.h"
#include "valueclasses/valuedescriptor.h"

#include <string>
#include <utility>
#include <vector>

namespace values {

/// The smallest value: it holds a number, and its setter goes the road of every setter as far as
/// the base carries it.
class TestValue : public ValueBase {
public:
    using ValueBase::EndTrImpl;
    using ValueBase::IsChangeForeign;
    using ValueBase::PostChange;
    using ValueBase::StartTrImpl;
    using ValueBase::ValueBase;

    ValueType GetType() const override { return VTYPE_None; }
    QString GetTypeName() const override { return QStringLiteral("TestValue"); }
    void Assign(const ValueBase &other) override { ValueBase::operator=(other); }
};

/// A published descriptor.
class TestDescriptors {
public:
    explicit TestDescriptors(const QString &key) : m_descriptor(key, QString()) {}
    const ValueDescriptor *Get() const { return &m_descriptor; }

private:
    ValueDescriptor m_descriptor;
};

/// Remembers the codes that it was told, and may do something each time.
class CodeLog : public IObserver {
public:
    void Update(Observable *subject, TChangeCode code) override
    {
        codes.push_back(code);
        if (then)
            then(subject, code);
    }
    std::vector<int> take() { return std::exchange(codes, {}); }

    std::vector<int> codes;
    std::function<void(Observable *, TChangeCode)> then;
};

} // namespace values
