#pragma once

#include "valueclasses/xml/xmlvaluebase.h"

#include <array>
#include <memory>

namespace values {

/// Finds the handler that converts a value to XML and back. Application thread.
class SPECTREE_EXPORT XmlValueFactory {
public:
    static constexpr int kSlots = 135;

    static XmlValueFactory &Instance();
    /// The handler of a type number; it is made on first use. \throws KRException outside of the
    /// table.
    const std::shared_ptr<XmlValueBase> &operator[](ValueType type);
    /// The handler of a value; kinds without one of their own have the lossless one.
    const XmlValueBase &HandlerFor(const ValueBase &value);

private:
    XmlValueFactory() = default;
    std::array<std::shared_ptr<XmlValueBase>, kSlots> m_slots;
};

} // namespace values
