#include "valueclasses/selection/valueselectionmodel.h"
#include "valueclasses/valueselection.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gmock/gmock.h>

#include <memory>
#include <random>

namespace {

using namespace values;
using Tester = QAbstractItemModelTester;

/// The rows as they were told by the model's signals, kept by a view that asks for nothing else.
class Mirror : public QObject {
public:
    explicit Mirror(const QAbstractItemModel &model) : m_model(model)
    {
        connect(&model, &QAbstractItemModel::rowsInserted, this,
                [this](const QModelIndex &, int first, int last) {
                    for (int row = first; row <= last; ++row)
                        rows.insert(row, text(row));
                });
        connect(&model, &QAbstractItemModel::rowsRemoved, this,
                [this](const QModelIndex &, int first, int last) {
                    rows.erase(rows.begin() + first, rows.begin() + last + 1);
                });
        connect(&model, &QAbstractItemModel::dataChanged, this,
                [this](const QModelIndex &first, const QModelIndex &last) {
                    for (int row = first.row(); row <= last.row(); ++row)
                        rows[row] = text(row);
                });
    }
    QStringList rows;

private:
    QString text(int row) const { return m_model.index(row, 0).data().toString(); }
    const QAbstractItemModel &m_model;
};

QStringList namesOf(const ValueSelection &selection)
{
    QStringList names;
    for (int i = 0; i < selection.GetItemCount(); ++i)
        names << selection.GetItemAt(i)->GetName();
    return names;
}

TEST(ValueSelectionModel, FollowsARandomLifeOfItsSelection)
{
    std::mt19937 random(7);
    ValueSelection selection("s");
    ValueSelectionModel model(&selection);
    Tester tester(&model, Tester::FailureReportingMode::Fatal);
    Mirror mirror(model);
    int row = -1;
    QObject::connect(&model, &ValueSelectionModel::signalCurrentRowChanged,
                     [&row](int now) { row = now; });
    for (int i = 0; i < 1000; ++i) {
        const int n = int(random() % 7);
        SelectionItem *item = selection.GetItemAt(n);
        switch (random() % 6) {
        case 0:
            selection.DeleteItem(item, nullptr);
            break;
        case 1:
            model.slotSelectRow(n);
            break;
        case 2: {
            const ValueTransaction transaction(selection, CC_VALUE, nullptr);
            selection.DeleteItem(item, nullptr);
            selection.AddItems({"x", QString::number(n)}, nullptr);
            if (n == 0)
                selection.DeleteItems(nullptr);
            break;
        }
        default:
            selection.AddItem(QString::number(n), n, n, nullptr);
        }
        ASSERT_EQ(mirror.rows, namesOf(selection));
        ASSERT_EQ(model.rowCount(), selection.GetItemCount());
        ASSERT_EQ(row, selection.GetCurrentIndex());
        ASSERT_EQ(model.GetCurrentRow(), row);
    }
}

TEST(ValueSelectionModel, ShowsWhatItsItemsHold)
{
    ValueSelection selection("s");
    selection.AddItems({"a", "b"}, nullptr);
    selection.AddItem("c", 2.5, -3, nullptr);
    selection.GetItemAt(1)->SetState(VS_DISABLED);
    ValueSelectionModel model(&selection);
    const QModelIndex last = model.index(2);
    EXPECT_EQ(last.data(), "c");
    EXPECT_EQ(last.data(ValueSelectionModel::ValueRole), 2.5);
    EXPECT_EQ(last.data(ValueSelectionModel::KeyRole), -3);
    EXPECT_FALSE(last.data(Qt::DecorationRole).isValid());
    EXPECT_TRUE(last.flags() & Qt::ItemIsEnabled);
    EXPECT_FALSE(model.index(1).flags() & (Qt::ItemIsEnabled | Qt::ItemIsSelectable));
    {
        const ValueTransaction transaction(selection, CC_VALUE, nullptr);
        selection.DeleteItems(nullptr);
        EXPECT_EQ(model.index(2).data(), "c"); // the rows hold still meanwhile
    }
    EXPECT_EQ(model.rowCount(), 0);
}

TEST(ValueSelectionModel, MayBeDeletedByWhoHearsOfTheChoice)
{
    ValueSelection selection("s");
    selection.AddItems({"a", "b"}, nullptr);
    auto *const model = new ValueSelectionModel(&selection);
    QObject::connect(model, &ValueSelectionModel::signalCurrentRowChanged,
                     [model] { delete model; });
    selection.SelectIndex(1, nullptr);
    EXPECT_FALSE(selection.HasObservers());

    auto *const second = new ValueSelectionModel(&selection);
    QObject::connect(second, &QAbstractItemModel::rowsInserted, [second] { delete second; });
    {
        const ValueTransaction transaction(selection, CC_VALUE, nullptr);
        selection.DeleteItems(nullptr);
        selection.AddItems({"c", "d", "e"}, nullptr);
    }
    EXPECT_FALSE(selection.HasObservers());
}

TEST(ValueSelectionModel, OutlivesItsSelection)
{
    auto selection = std::make_unique<ValueSelection>("s");
    selection->AddItems({"a", "b"}, nullptr);
    selection->SelectIndex(1, nullptr);
    ValueSelectionModel model(selection.get());
    Tester tester(&model, Tester::FailureReportingMode::Fatal);
    QSignalSpy rows(&model, &ValueSelectionModel::signalCurrentRowChanged);
    selection.reset();
    EXPECT_EQ(model.GetSelection(), nullptr);
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_EQ(rows.count(), 1);
    model.slotSelectRow(0);

    ValueSelection second("t");
    second.AddItems({"c"}, nullptr);
    model.SetSelection(&second);
    EXPECT_EQ(model.rowCount(), 1);
    second.SetState(VS_DELETED, nullptr);
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_FALSE(second.HasObservers());
    second.SetState(VS_NORMAL, nullptr);
    auto third = std::make_unique<ValueSelectionModel>(&second);
    third.reset();
    EXPECT_FALSE(second.HasObservers());
}

TEST(ValueSelectionModel, BearsAViewThatAnswersWhileItIsTold)
{
    ValueSelection selection("s");
    ValueSelectionModel model(&selection);
    Tester tester(&model, Tester::FailureReportingMode::Fatal);
    // A combo box chooses its first row as soon as there is one; somebody adds one more then.
    QObject::connect(&model, &QAbstractItemModel::rowsInserted, [&] {
        model.slotSelectRow(0);
        if (selection.GetItemCount() < 3)
            selection.AddItem("more", 0, 0, nullptr);
    });
    selection.AddItems({"a"}, nullptr);
    EXPECT_EQ(model.rowCount(), 3);
    EXPECT_EQ(model.GetCurrentRow(), 0);
}

} // namespace
