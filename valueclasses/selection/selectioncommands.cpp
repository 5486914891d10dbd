#include "valueclasses/selection/selectioncommands.h"

#include "platform/base/bytes.h"
#include "valueclasses/commands/streamformat.h"

namespace values {

namespace {

ValueSelection &selectionOf(ValueBase *value) { return *static_cast<ValueSelection *>(value); }

} // namespace

ValueSelection::CommandSelect::CommandSelect(ValueSelection *selection, Choice choice,
                                             IObserver *source)
    : CommandOnValue(choice.kind, selection, source), m_choice(std::move(choice))
{
}

ValueSelection::CommandSelect::CommandSelect(ValueSelection *selection, Choice choice, int index)
    : CommandOnValue(choice.kind, selection, nullptr), m_choice(std::move(choice)), m_index(index)
{
}

ValueSelection::CommandSelect::CommandSelect(ChoiceKind kind, ValueSelection *selection,
                                             const char **pos, IObserver *source, int mode)
    : CommandOnValue(kind, selection, pos, source), m_choice{kind, QString(), 0.0, Kelm::Long()}
{
    if (kind == ByName)
        m_choice.name = StreamFormat<QString>::FromStream(pos, mode);
    else if (kind == ByValue)
        m_choice.value = StreamFormat<double>::FromStream(pos, mode);
    else
        m_choice.number = StreamFormat<Kelm::Long>::FromStream(pos, mode);
    Kelm::readTerminator(pos, "ValueSelection::CommandSelect", "CommandSelect");
}

bool ValueSelection::CommandSelect::IsId(int id)
{
    return id == ByName || id == ByValue || id == ByKey || id == ByIndex;
}

void ValueSelection::CommandSelect::Execute()
{
    ValueSelection &selection = selectionOf(GetValue());
    if (m_index && selection.restoreChoice(m_choice, *m_index))
        return;
    switch (m_choice.kind) {
    case ByName:
        selection.Select(m_choice.name, GetSource());
        break;
    case ByValue:
        // Six decimals of a text form may miss the item that is meant.
        selection.Select(m_choice.value, GetSource(), true);
        break;
    case ByKey:
        selection.Select(m_choice.number, GetSource());
        break;
    case ByIndex:
        if (m_choice.number == -1)
            selection.chooseNone(GetSource());
        else
            selection.SelectIndex(m_choice.number, GetSource());
        break;
    }
}

void ValueSelection::CommandSelect::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    if (m_choice.kind == ByName)
        StreamFormat<QString>::Append(out, m_choice.name, mode);
    else if (m_choice.kind == ByValue)
        StreamFormat<double>::Append(out, m_choice.value, mode);
    else
        StreamFormat<Kelm::Long>::Append(out, m_choice.number, mode);
    out += ';';
}

Command *ValueSelection::CommandSelect::Clone() const { return new CommandSelect(*this); }

ValueSelection::CommandAddOrDeleteItem::CommandAddOrDeleteItem(Kind kind, ValueSelection *selection,
                                                               SelectionItem item,
                                                               IObserver *source)
    : CommandOnValue(kind, selection, source), m_item(std::move(item))
{
}

ValueSelection::CommandAddOrDeleteItem::CommandAddOrDeleteItem(Kind kind, ValueSelection *selection,
                                                               SelectionItem item, int position)
    : CommandOnValue(kind, selection, nullptr), m_item(std::move(item)), m_position(position)
{
}

ValueSelection::CommandAddOrDeleteItem::CommandAddOrDeleteItem(Kind kind, ValueSelection *selection,
                                                               const char **pos, IObserver *source,
                                                               int mode)
    : CommandOnValue(kind, selection, pos, source)
{
    const QString name = StreamFormat<QString>::FromStream(pos, mode);
    EatSemicolon(pos, mode);
    const double value = StreamFormat<double>::FromStream(pos, mode);
    EatSemicolon(pos, mode);
    const auto key = StreamFormat<Kelm::Long>::FromStream(pos, mode);
    Kelm::readTerminator(pos, "ValueSelection::CommandAddOrDeleteItem", "CommandAddOrDeleteItem");
    m_item = SelectionItem(name, value, key);
}

void ValueSelection::CommandAddOrDeleteItem::Execute()
{
    ValueSelection &selection = selectionOf(GetValue());
    if (GetCommandId() == Delete) {
        if (!m_position || !selection.removeItemAt(*m_position, m_item, GetSource()))
            selection.DeleteItem(m_item.GetName(), m_item.GetValue(), m_item.GetKey(), GetSource());
    } else if (m_position) {
        selection.insertItem(*m_position, std::make_unique<SelectionItem>(m_item), GetSource());
    } else {
        selection.AddItem(m_item.GetName(), m_item.GetValue(), m_item.GetKey(), GetSource());
    }
}

void ValueSelection::CommandAddOrDeleteItem::AddCommandString(std::string &out, int mode) const
{
    CommandOnValue::AddCommandString(out, mode);
    StreamFormat<QString>::Append(out, m_item.GetName(), mode);
    AddSemicolon(out, mode);
    StreamFormat<double>::Append(out, m_item.GetValue(), mode);
    AddSemicolon(out, mode);
    StreamFormat<Kelm::Long>::Append(out, m_item.GetKey(), mode);
    out += ';';
}

Command *ValueSelection::CommandAddOrDeleteItem::Clone() const
{
    return new CommandAddOrDeleteItem(*this);
}

ValueSelection::CommandDeleteItems::CommandDeleteItems(ValueSelection *selection, IObserver *source)
    : CommandOnValue(kId, selection, source)
{
}

ValueSelection::CommandDeleteItems::CommandDeleteItems(ValueSelection *selection, const char **pos,
                                                       IObserver *source)
    : CommandOnValue(kId, selection, pos, source)
{
}

void ValueSelection::CommandDeleteItems::Execute()
{
    selectionOf(GetValue()).DeleteItems(GetSource());
}

Command *ValueSelection::CommandDeleteItems::Clone() const { return new CommandDeleteItems(*this); }

} // namespace values
