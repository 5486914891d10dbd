// Command strings of the scalar values. The first byte chooses the kind (modulo 22) and, by its
// upper bits, the mode; the rest is the string. A refused string changes nothing; what was taken is
// recorded, and the record makes an equal value of a copy; undo gives the first state back.
#include "fuzz/fuzztools.h"
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/kfactor.h"
#include "valueclasses/records/bearingresult.h"
#include "valueclasses/undo/undomanager.h"
#include "valueclasses/valuebuffer.h"
#include "valueclasses/valueempty.h"
#include "valueclasses/valuenumericwithoffset.h"
#include "valueclasses/valuestream.h"

#include <QCoreApplication>

namespace {

using namespace values;

constexpr auto kLossless = unsigned(ModeBinaryTagged);

template <typename V>
void run(const std::string &commands, int mode)
{
    UndoManager undo(1);
    V value;
    const std::string before = value.GetObjectStateStringForTransmission(0);
    std::vector<std::unique_ptr<KELM::ICommand>> parsed;
    try {
        value.SetCommandString(commands, parsed, nullptr, mode);
    } catch (const KRException &) {
        require(parsed.empty() && value.GetObjectStateStringForTransmission(0) == before);
        return;
    }
    // A deleted state, a late end and an early one, and a timer change what may be asked
    // afterwards.
    for (const auto &command : parsed)
        if (const int id = command->GetCommandId(); id < 20 && id != 3 && id != 4)
            return;
    value.SetUndoManager(&undo);
    undo.OpenNewUndoStack("fuzz");
    {
        const ValueTransaction keepsTheRecord(value, nullptr);
        value.CommandRecordingOn();
        for (const auto &command : parsed)
            if (command->GetCommandId() >= 20)
                command->Execute();
        V replayed, restored;
        replayed.SetCommandString(value.GetCommandStringForRecording(kLossless), nullptr,
                                  ModeBinaryTagged);
        restored.SetCommandString(value.GetObjectStateStringForTransmission(kLossless), nullptr,
                                  ModeBinaryTagged);
        const bool holdsNaN = !V(value).Compare(&value);
        require(holdsNaN || (replayed.Compare(&value) && restored.Compare(&value)));
        value.GetObjectStateStringForTransmission(unsigned(mode));
        value.SetStringValue(value.GetStringValue(), nullptr);
    }
    undo.FinishCurrentUndoStack();
    undo.ExecuteUndoStacks(UndoManager::kAllStacks);
    if (value.GetType() != VTYPE_ValueBuffer)
        require(value.GetObjectStateStringForTransmission(0) == before);
    value.SetUndoManager(nullptr);
}

using Run = void (*)(const std::string &, int);
constexpr Run kRuns[] = {
#define SPECTREE_RUN(T, F, Type, Name) run<Value<T>>,
    SPECTREE_FOR_EACH_SCALAR(SPECTREE_RUN)
#undef SPECTREE_RUN
#define SPECTREE_RUN(T, F, Type, Name) run<ValueNumeric<T>>,
        SPECTREE_FOR_EACH_NUMERIC(SPECTREE_RUN)
#undef SPECTREE_RUN
#define SPECTREE_RUN(T, F, Type, Name) run<ValueStream<T>>,
            SPECTREE_FOR_EACH_STREAM(SPECTREE_RUN)
#undef SPECTREE_RUN
                run<ValueNumericWithOffset<double>>,
    run<ValueBuffer>,
    run<ValueEmpty>,
    run<Value<BearingResult>>,
    run<KFactorPure>,
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    ErrorHandler::Instance().SetTraceMask(0);
    if (size == 0)
        return 0;
    constexpr int kModes[] = {0, -1, -2, 1};
    kRuns[bytes[0] % std::size(kRuns)](
        std::string(reinterpret_cast<const char *>(bytes) + 1, size - 1),
        kModes[bytes[0] / std::size(kRuns) % 4]);
    return 0;
}
