#pragma once

#include "platform/base/observable.h"
#include "valueclasses/selection/selectionitem.h"

#include <QAbstractListModel>

#include <vector>

namespace values {

class ValueBase;

/// The items of a selection for views: a row an item, in their order.
///
/// The model shows what the selection last notified, so that its rows hold still while a
/// transaction is open and after an Assign without a notification. It follows the selection until
/// that goes away or gets the state 1; from then on it is empty.
///
/// Threads:   the application thread.
/// Ownership: neither owns the other.
class SPECTREE_EXPORT ValueSelectionModel : public QAbstractListModel, public IObserver {
    Q_OBJECT

public:
    enum Roles {
        ValueRole = Qt::UserRole, ///< double
        KeyRole,                  ///< int
        StateRole,                ///< TValueState as int
    };

    explicit ValueSelectionModel(QObject *parent = nullptr);
    /// Null gives an empty model.
    explicit ValueSelectionModel(ValueSelection *selection, QObject *parent = nullptr);
    ~ValueSelectionModel() override;

    /// Shows another selection from now on, or none.
    void SetSelection(ValueSelection *selection);
    ValueSelection *GetSelection() const { return m_selection; }
    /// The row of the choice, -1 for none.
    int GetCurrentRow() const { return m_currentRow; }

    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    /// The name as display and edit role, and the Roles.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    /// A disabled item can't be chosen in views.
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QHash<int, QByteArray> roleNames() const override;

    void Update(Observable *subject, TChangeCode code) override;

public Q_SLOTS:
    /// Chooses the item of the row; -1 and rows that aren't there change nothing.
    void slotSelectRow(int row);

Q_SIGNALS:
    /// The choice stands in another row, -1 for none; the rows are up to date.
    void signalCurrentRowChanged(int row);

private:
    void detach();
    void showSelection();
    void showItems(std::vector<SelectionItem> items);

    ValueSelection *m_selection = nullptr;
    ValueBase *m_value = nullptr; // the same one, for when only its base is left
    std::vector<SelectionItem> m_rows;
    int m_currentRow = -1;
    bool m_showing = false, m_stale = false;
};

} // namespace values
