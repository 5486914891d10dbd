#include "memmap/logvtdata.h"
#include "valueclasses/valuenumeric.h"
#include "valueclasses/valueselection.h"
#include "valuetree/tree.h"

#include <cstdlib>

namespace {

using namespace values;

/// Every line is whole and bounded.
class CheckingSink : public ILogSink {
public:
    bool Write(const QString &, const QString &line) override
    {
        if (!line.startsWith("Data\t") || line.contains('\n') ||
            line.size() > 3 * LogVTData::kMaximumLine)
            std::abort();
        return true;
    }
};

} // namespace

/// A configuration with any content is loaded or refused, and what it says is followed, also when
/// values go.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const bool installed = [] {
        qputenv("QT_LOGGING_RULES", "spectree.*=false");
        CLogWriter::InstallSink(std::make_shared<CheckingSink>());
        return true;
    }();
    Tree &tree = Tree::Instance();
    auto *const number = new ValueNumeric<int>("i", 1, 0, 9);
    auto *const text = new Value<QString>("t", "#0#1");
    auto *const choice = new ValueSelection("s");
    choice->AddItems({"A", "B"}, nullptr);
    tree.AddValue("/a/i", number);
    tree.AddValue("/a/f", new ValueNumeric<double>("f", 1.5, 0, 9));
    tree.AddValue("/a/s", choice);
    tree.AddValue("/a/t", text);
    {
        LogVTData log;
        log.EnableTrigger(true);
        if (installed && log.LoadFromText({reinterpret_cast<const char *>(data), int(size)}))
            log.toLogger();
        number->SetValue(2, nullptr);
        choice->Select("B", nullptr);
        tree.DeleteValue("/a/i");
        text->SetValue("two\nlines", nullptr);
    }
    tree.DeleteNode("/a");
    return 0;
}
