#pragma once

#include "valueclasses/valuefactory.h"

namespace values {

/// What a family of kinds registers itself with.
class ValueKinds {
public:
    explicit ValueKinds(ValueFactory &factory) : m_factory(factory) {}
    template <typename T>
    void Add()
    {
        m_factory.RegisterType(std::make_unique<DefaultValueCreator<T>>());
    }

private:
    ValueFactory &m_factory;
};

/// Registers every kind of the library: a line a kind, in a function a family. Where kinds share a
/// number, the first one is what creation by number gives.
void registerKinds(ValueKinds &kinds);

} // namespace values
