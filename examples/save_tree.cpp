// A tree saved and restored: settings go to a file, and come back in another tree, where they wait
// disabled until their owner declares them.
//
//   save_tree [FILE]
#include "platform/base/krexception.h"
#include "valueclasses/valuenumeric.h"
#include "valueclasses/valueselection.h"
#include "valuetree/tree.h"
#include "valuetree/vtfile.h"

#include <QCoreApplication>
#include <QDir>

#include <cstdio>

using namespace values;

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    const QString file = argc > 1 ? QString::fromLocal8Bit(argv[1])
                                  : QDir::temp().filePath("spectree-save_tree.xml");
    try {
        BaseTree settings;
        settings.AddValue("/RECEIVER/FREQUENCY",
                          new ValueNumeric<double>("FREQUENCY", 144.8e6, 20e6, 3000e6, 25e3));
        auto *const mode = new ValueSelection("MODE");
        mode->AddItems({"AM", "FM", "SSB"}, nullptr);
        mode->Select(QStringLiteral("FM"), nullptr);
        settings.AddValue("/RECEIVER/MODE", mode);
        VtFile(file, settings.GetRoot(), nullptr).Write();

        BaseTree restored;
        VtFile(file, restored.GetRoot(), nullptr).Read();
        for (const char *const path : {"/RECEIVER/FREQUENCY", "/RECEIVER/MODE"}) {
            ValueBase *const value = restored.GetValue(path);
            std::printf("%s = %s, state %d\n", path, qPrintable(value->GetStringValue()),
                        int(value->GetState()));
            value->SetState(VS_NORMAL, nullptr); // its owner declares it
        }
        return restored.GetRoot()->Compare(settings.GetRoot()) ? 0 : 1;
    } catch (const KRException &error) {
        std::fprintf(stderr, "save_tree: %s\n", error.what());
        return 1;
    }
}
