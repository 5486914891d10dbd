// The string forms of tree items. The first byte chooses the item: a node, a value item without a
// value, or one whose value has the type number that the byte says; the rest is the text. A refused
// text makes no value, changes none and renames no node, and what was taken is read again from its
// own form.
#include "fuzz/fuzztools.h"
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/valuedescriptor.h"
#include "valueclasses/valuefactory.h"
#include "valuetree/node.h"
#include "valuetree/valueitem.h"

#include <QCoreApplication>

namespace {

using namespace values;

bool take(TreeItem &item, std::string_view text)
{
    try {
        item.SetAsStdString(text, nullptr);
        return true;
    } catch (const std::exception &) {
        return false;
    }
}

std::string stateOf(ValueBase *value)
{
    return value == nullptr
               ? std::string()
               : value->GetObjectStateStringForTransmission(unsigned(ModeBinaryTagged));
}

void readNode(std::string_view text)
{
    static const ValueDescriptor descriptor("key", "");
    Node node("before"), again;
    if (!take(node, text)) {
        require(node.GetAsStdString() == "before;;");
        return;
    }
    require(take(again, node.GetAsStdString()));
    require(again.GetValueDescriptor() == node.GetValueDescriptor());
    node.GetValueAsStdString();
}

void readValue(std::string_view text, int type)
{
    ValueItem item;
    if (type != 0 && ValueFactory::Instance().IsRegistered(ValueType(type)))
        item.AddValue(QString(), ValueFactory::Instance().CreateValue(ValueType(type)));
    ValueBase *const before = item.GetValue();
    const std::string state = stateOf(before);
    if (!take(item, text)) {
        require(item.GetValue() == before && stateOf(before) == state);
        return;
    }
    require(item.GetValue() != nullptr && (before == nullptr || item.GetValue() == before));
    ValueItem again;
    take(again, item.GetAsStdString()); // texts lose what they lose; it may be refused
    std::string printed;
    item.AddTreeString(printed, 0, 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    static int count = 1;
    static char name[] = "fuzz";
    static char *arguments[] = {name, nullptr};
    static const QCoreApplication application(count, arguments);
    ErrorHandler::Instance().SetTraceMask(0);
    if (size == 0)
        return 0;
    const std::string_view text(reinterpret_cast<const char *>(bytes) + 1, size - 1);
    if (bytes[0] == 255)
        readNode(text);
    else
        readValue(text, bytes[0]);
    return 0;
}
