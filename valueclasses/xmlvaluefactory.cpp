#include "valueclasses/xmlvaluefactory.h"

#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/xml/xmlvalue.h"
#include "valueclasses/xml/xmlvalueselection.h"
#include "valueclasses/xml/xmlvaluestate.h"

namespace values {

namespace {

std::shared_ptr<XmlValueBase> makeHandler(ValueType type)
{
    switch (int(type)) {
#define SPECTREE_CASE(T)                                                                           \
    case ScalarKind<T>::kType:                                                                     \
        return std::make_shared<XmlValue<T>>();
        SPECTREE_FOR_EACH_XML_SCALAR(SPECTREE_CASE)
#undef SPECTREE_CASE
#define SPECTREE_CASE(T)                                                                           \
    case NumericKind<T>::kType:                                                                    \
        return std::make_shared<XmlValueNumeric<T>>();
        SPECTREE_FOR_EACH_XML_NUMERIC(SPECTREE_CASE)
#undef SPECTREE_CASE
    case VTYPE_ValueSelection:
        return std::make_shared<XmlValueSelection>();
    default:
        return std::make_shared<XmlValueState>();
    }
}

} // namespace

XmlValueFactory &XmlValueFactory::Instance()
{
    static XmlValueFactory factory;
    return factory;
}

const std::shared_ptr<XmlValueBase> &XmlValueFactory::operator[](ValueType type)
{
    _Q_assert(type < VTYPE_Unknown, "type < VTYPE_Unknown", __FILE__, __LINE__);
    if (type < 0 || type >= kSlots)
        throw KRException(QStringLiteral("There is no type number %1.").arg(type), __FILE__,
                          "XmlValueFactory", "operator[]", __LINE__);
    std::shared_ptr<XmlValueBase> &slot = m_slots[std::size_t(type)];
    if (slot == nullptr)
        slot = makeHandler(type);
    return slot;
}

const XmlValueBase &XmlValueFactory::HandlerFor(const ValueBase &value)
{
    static const XmlValueState lossless;
    const ValueType type = value.GetType();
    if (type < 0 || type >= VTYPE_Unknown)
        return lossless;
    return *(*this)[type];
}

} // namespace values
