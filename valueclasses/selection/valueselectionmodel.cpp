#include "valueclasses/selection/valueselectionmodel.h"

#include "valueclasses/valueselection.h"

#include <QPointer>

#include <algorithm>

namespace values {

ValueSelectionModel::ValueSelectionModel(QObject *parent) : QAbstractListModel(parent) {}

ValueSelectionModel::ValueSelectionModel(ValueSelection *selection, QObject *parent)
    : QAbstractListModel(parent)
{
    SetSelection(selection);
}

ValueSelectionModel::~ValueSelectionModel() { detach(); }

void ValueSelectionModel::detach()
{
    m_selection = nullptr;
    if (ValueBase *const value = std::exchange(m_value, nullptr))
        value->DeleteObserver(this);
}

void ValueSelectionModel::SetSelection(ValueSelection *selection)
{
    if (selection == m_selection)
        return;
    detach();
    m_selection = selection;
    m_value = selection;
    if (selection != nullptr)
        selection->AddObserver(this);
    Update(selection, CC_LIST_REPLACED);
}

void ValueSelectionModel::Update(Observable * /*subject*/, TChangeCode /*code*/)
{
    // Of a dying selection only the base is left, which still tells its state.
    if (m_value != nullptr && m_value->GetState() == VS_DELETED)
        detach();
    m_stale = true;
    if (m_showing)
        return; // a view's answer to a signal: the rows of the running change come first
    m_showing = true;
    const QPointer<ValueSelectionModel> alive(this); // a dialog may close at the choice
    while (!alive.isNull() && std::exchange(m_stale, false))
        showSelection();
    if (!alive.isNull())
        m_showing = false;
}

void ValueSelectionModel::showSelection()
{
    std::vector<SelectionItem> items;
    const int count = m_selection != nullptr ? m_selection->GetItemCount() : 0;
    const int currentRow = m_selection != nullptr ? m_selection->GetCurrentIndex() : -1;
    items.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i)
        items.push_back(*m_selection->GetItemAt(i));
    const QPointer<ValueSelectionModel> alive(this);
    showItems(std::move(items));
    if (alive.isNull())
        return;
    if (std::exchange(m_currentRow, currentRow) != currentRow)
        Q_EMIT signalCurrentRowChanged(currentRow);
}

/// Rows between the common head and the common tail are changed, removed or inserted.
void ValueSelectionModel::showItems(std::vector<SelectionItem> items)
{
    const int before = int(m_rows.size()), after = int(items.size());
    const auto mismatch = std::mismatch(m_rows.begin(), m_rows.end(), items.begin(), items.end());
    const int head = int(mismatch.first - m_rows.begin());
    const int tail = int(
        std::mismatch(m_rows.rbegin(), m_rows.rend() - head, items.rbegin(), items.rend() - head)
            .first -
        m_rows.rbegin());
    const int changed = std::min(before, after) - head - tail;
    const int from = head + changed;
    const QPointer<ValueSelectionModel> alive(this);
    std::copy_n(items.begin() + head, changed, m_rows.begin() + head);
    if (before > after) {
        beginRemoveRows(QModelIndex(), from, from + before - after - 1);
        m_rows = std::move(items);
        endRemoveRows();
    } else if (after > before) {
        beginInsertRows(QModelIndex(), from, from + after - before - 1);
        m_rows = std::move(items);
        endInsertRows();
    }
    if (changed > 0 && !alive.isNull())
        Q_EMIT dataChanged(index(head), index(from - 1));
}

int ValueSelectionModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant ValueSelectionModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const SelectionItem &item = m_rows[std::size_t(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return item.GetName();
    case ValueRole:
        return item.GetValue();
    case KeyRole:
        return int(item.GetKey());
    case StateRole:
        return int(item.GetState());
    default:
        return {};
    }
}

Qt::ItemFlags ValueSelectionModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags flags = QAbstractListModel::flags(index);
    const bool disabled = index.isValid() && data(index, StateRole).toInt() != VS_NORMAL;
    return disabled ? flags & ~(Qt::ItemIsEnabled | Qt::ItemIsSelectable) : flags;
}

QHash<int, QByteArray> ValueSelectionModel::roleNames() const
{
    QHash<int, QByteArray> names = QAbstractListModel::roleNames();
    names.insert(ValueRole, "value");
    names.insert(KeyRole, "key");
    names.insert(StateRole, "state");
    return names;
}

void ValueSelectionModel::slotSelectRow(int row)
{
    // While it dies, nothing but its base may be asked.
    if (m_selection != nullptr && m_selection->ValueBase::GetState() != VS_DELETED)
        m_selection->SelectIndex(row, nullptr);
}

} // namespace values
