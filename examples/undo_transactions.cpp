// Transactions and undo: two settings that change together, and are taken back together.
//
//   undo_transactions
#include "valueclasses/undo/undomanager.h"
#include "valueclasses/value.h"
#include "valueclasses/valuenumeric.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

using namespace values;

class Display final : public IObserver {
public:
    Display(const ValueNumeric<double> &bandwidth, const Value<QString> &demodulation)
        : m_bandwidth(bandwidth), m_demodulation(demodulation)
    {
    }
    void Update(Observable *, TChangeCode) override
    {
        std::printf("%s, %.0f Hz\n", qPrintable(m_demodulation.GetValue()), m_bandwidth.GetValue());
    }

private:
    const ValueNumeric<double> &m_bandwidth;
    const Value<QString> &m_demodulation;
};

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    UndoManager undo(50);
    ValueNumeric<double> bandwidth("BANDWIDTH", 15e3, 100, 200e3, 100);
    Value<QString> demodulation("DEMODULATION", QStringLiteral("FM"));
    Display display(bandwidth, demodulation);
    bandwidth.SetUndoManager(&undo);
    demodulation.SetUndoManager(&undo);
    demodulation.AddObserver(&display);

    // What the user calls one action is one stack. The transaction tells observers once, at its
    // end.
    undo.OpenNewUndoStack("Single sideband");
    {
        const ValueTransaction transaction = demodulation.CreateTransaction(CC_VALUE, nullptr);
        demodulation.SetValue(QStringLiteral("AM"), nullptr);
        demodulation.SetValue(QStringLiteral("USB"), nullptr);
        bandwidth.SetValue(2400, nullptr);
    }
    undo.FinishCurrentUndoStack();

    for (const QString &action : undo.GetUndoStackDescriptions())
        std::printf("undo: %s\n", qPrintable(action));
    undo.ExecuteUndoStacks(UndoManager::kAllStacks);
    std::printf("back to %s, %.0f Hz\n", qPrintable(demodulation.GetValue()), bandwidth.GetValue());
    demodulation.DeleteObserver(&display);
    return demodulation.GetValue() == QLatin1String("FM") ? 0 : 1;
}
