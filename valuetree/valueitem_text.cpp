// The text forms of value items.
#include "platform/base/krexception.h"
#include "valueclasses/mapping/mappingbase.h"
#include "valueclasses/scalars/ivaluenumeric.h"
#include "valueclasses/valuedescriptor.h"
#include "valueclasses/valuefactory.h"
#include "valueclasses/valuenumericwithoffset.h"
#include "valueclasses/valueselection.h"
#include "valuetree/itemtext_p.h"
#include "valuetree/treewatch_p.h"
#include "valuetree/valueitem.h"

#include <QLocale>

namespace values {

namespace {

enum class Amount { Full, Short };

QString print(double number)
{
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

/// Limits, step, unit and basis, as they stand behind "Min=".
QString limitsText(const IValueNumeric &number, const ValueDescriptor *descriptor)
{
    return QStringLiteral("Min=%1, Max=%2, Step=%3, Unit=%4, Basis=%5")
        .arg(print(number.doubleGetMin()), print(number.doubleGetMax()),
             print(number.doubleGetStep()), descriptor != nullptr ? descriptor->Unit() : QString(),
             QString::number(descriptor != nullptr ? descriptor->Basis() : 0));
}

QString numericText(const char *kind, ValueBase &value, Amount detail)
{
    const auto *const number = dynamic_cast<const IValueNumeric *>(&value);
    if (detail == Amount::Short || number == nullptr)
        return QStringLiteral("(%1)").arg(kind);
    const auto *const shifted = dynamic_cast<const ValueNumericWithOffset<double> *>(&value);
    const QString offset = shifted != nullptr
                               ? QStringLiteral("Offset=%1 ").arg(print(shifted->GetOffset()))
                               : QString();
    return QStringLiteral("(%1: %2%3)")
        .arg(kind, offset, limitsText(*number, value.GetValueDescriptor()));
}

QString selectionText(const ValueBase &value, Amount amount)
{
    const auto *const selection = dynamic_cast<const ValueSelection *>(&value);
    if (amount == Amount::Short || selection == nullptr)
        return QStringLiteral("(Selection)");
    QStringList items;
    for (int i = 0; i < selection->GetItemCount(); ++i) {
        const SelectionItem &item = *selection->GetItemAt(i);
        items << QStringLiteral("%1/%2/%3")
                     .arg(item.GetName(), print(item.GetValue()), QString::number(item.GetKey()));
    }
    return QStringLiteral("(Selection: [ %1 ] )").arg(items.join(' '));
}

QString kindText(ValueBase &value, Amount detail)
{
    switch (value.GetType()) {
    case VTYPE_ValueBoolean:
        return QStringLiteral("(ValueBoolean)");
    case VTYPE_ValueChar:
        return QStringLiteral("(ValueChar)");
    case VTYPE_ValueString:
        return QStringLiteral("(String)");
    case VTYPE_ValueNumericInt:
        return numericText("NumericInt", value, detail);
    case VTYPE_ValueNumericFloat:
        return numericText("NumericFloat", value, detail);
    case VTYPE_ValueNumericFloatWithOffset:
        return numericText("NumericFloatWithOffset", value, detail);
    case VTYPE_ValueSelection:
        return selectionText(value, detail);
    default:
        return dynamic_cast<const MappingBase *>(&value) != nullptr
                   ? QStringLiteral("(Mapping)")
                   : QStringLiteral("( *** unknown type *** )");
    }
}

[[noreturn]] void fail(const QString &reason, int line)
{
    throw KRException(reason, __FILE__, "ValueItem", "SetValue", line);
}

/// The number in "6,".
ValueType takeType(std::string_view &text)
{
    const auto token = takeToken(text);
    bool isNumber = false;
    const int number = token && token->endsWith(',') ? token->chopped(1).toInt(&isNumber) : 0;
    if (!isNumber)
        fail(QStringLiteral("The value items type is no number followed by ',;'"), __LINE__);
    return ValueType(number);
}

} // namespace

void ValueItem::AddTreeString(std::string &out, int depth, int detail) const
{
    TreeItem::AddTreeString(out, depth, detail);
    if (detail == 2 || m_value == nullptr)
        return;
    if (detail == 0)
        out += " = " + m_value->GetStringValue().toStdString() + ' ';
    out += kindText(*m_value, detail == 0 ? Amount::Full : Amount::Short).toStdString();
}

std::string ValueItem::GetValueAsStdString() const
{
    if (m_value == nullptr)
        return {};
    return GetName().toStdString() + ';' + std::to_string(m_value->GetType()) + ",;" +
           m_value->GetObjectStateStringForTransmission(unsigned(-1)) + ';';
}

void ValueItem::SetAsStdString(std::string_view text, IObserver *source)
{
    SetValueAsStdString(text, source);
}

void ValueItem::SetValueAsStdString(std::string_view text, IObserver *source)
{
    const auto name = takeToken(text);
    if (!name)
        fail(QStringLiteral("The value items name is not followed by ';'"), __LINE__);
    if (name->isEmpty())
        fail(QStringLiteral("The value items name is empty"), __LINE__);
    const ValueType type = takeType(text);
    if (m_value != nullptr) {
        if (m_value->GetType() != type)
            fail(QStringLiteral("Tried to change exsisting values objects type."), __LINE__);
        m_value->SetCommandString(std::string(text), source, -1);
        return;
    }
    std::unique_ptr<ValueBase> value(ValueFactory::Instance().CreateValue(type));
    if (value == nullptr)
        fail(QStringLiteral("There is no kind of value with the type number %1.").arg(type),
             __LINE__);
    value->SetName(*name, nullptr);
    value->SetState(VS_DISABLED, nullptr);
    // The whole text is read before the item gets a value, and carried out with the item watching.
    std::vector<std::unique_ptr<KELM::ICommand>> commands;
    value->SetCommandString(std::string(text), commands, source, -1);
    adopt(value.release());
    const ItemWatch watch(this);
    const LifeWatch adopted(m_value); // another one may have its address later
    try {
        for (auto command = commands.begin(); command != commands.end() && !adopted.IsGone();
             ++command)
            (*command)->Execute();
    } catch (...) {
        if (!watch.isGone() && !adopted.IsGone() && m_value == adopted.Subject())
            releaseValue();
        throw;
    }
}

} // namespace values
