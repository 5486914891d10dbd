// Command strings of selections. The first byte chooses the kind (modulo 5) and, by the rest of it,
// the mode; the rest is the string. A refused string changes nothing; what an accepted one made can
// be sent, undone and, reduced to what counts, replayed.
#include "fuzz/fuzztools.h"
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/selection/valuemultiselection.h"
#include "valueclasses/undo/undomanager.h"
#include "valueclasses/valueselection.h"

#include <algorithm>

namespace {

using namespace values;

std::unique_ptr<ValueBase> makeSelection()
{
    auto value = std::make_unique<ValueSelection>("s");
    value->AddItems({"a", "b", "a"}, nullptr);
    value->SelectIndex(1, nullptr);
    return value;
}

template <typename Selection>
std::unique_ptr<ValueBase> makeMulti()
{
    auto value = std::make_unique<Selection>("s");
    for (const char *text : {"a", "b", "c"}) {
        typename Selection::Items::mapped_type item;
        item.SetText(text);
        value->Add(item, nullptr);
    }
    value->SelectAt(1, true, nullptr);
    return value;
}

using Make = std::unique_ptr<ValueBase> (*)();
constexpr Make kMake[] = {
    makeSelection,
    makeMulti<ValueStringMultiSelection>,
    makeMulti<ValueStringExclusiveSelection>,
    makeMulti<ValueStringDoubleMultiSelection>,
    makeMulti<ValueStringDoubleExclusiveSelection>,
};

using Parsed = std::vector<std::unique_ptr<KELM::ICommand>>;

/// Whether the string holds commands of the kind alone: those of the base end undo or brackets.
bool isOwn(const Parsed &commands)
{
    constexpr int kFirstOwnId = 20;
    return std::all_of(commands.begin(), commands.end(),
                       [](const auto &command) { return command->GetCommandId() >= kFirstOwnId; });
}

void sendWhole(Make make, ValueBase &value)
{
    const auto copy = make();
    copy->SetCommandString(value.GetObjectStateStringForTransmission(unsigned(ModeBinaryTagged)),
                           nullptr, ModeBinaryTagged);
    require(copy->Compare(&value));
}

void undo(Make make, const std::string &commands, int mode)
{
    UndoManager manager(1);
    const auto value = make(), before = make();
    value->SetUndoManager(&manager);
    manager.OpenNewUndoStack("all");
    value->SetCommandString(commands, nullptr, mode);
    manager.FinishCurrentUndoStack();
    manager.ExecuteUndoStacks(1);
    value->SetUndoManager(nullptr);
    require(value->Compare(before.get()));
}

/// In one transaction, so that nothing was told in between.
void reduce(const std::string &commands, int mode)
{
    const auto value = makeSelection(), replica = makeSelection();
    value->CommandRecordingOnForTransmission();
    value->StartTransaction(nullptr);
    value->SetCommandString(commands, nullptr, mode);
    CommandList reduced;
    value->OptimizeCommandList(reduced);
    require(reduced.size() <= value->GetCommandListForTransmission().size());
    replica->SetCommandString(ValueBase::CreateCommandString(reduced, unsigned(ModeBinaryTagged)) +
                                  "4;0;",
                              nullptr, ModeBinaryTagged);
    require(replica->Compare(value.get()));
    value->EndTransaction(CC_NONE, nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    ErrorHandler::Instance().SetTraceMask(0);
    if (size == 0)
        return 0;
    constexpr int kModes[] = {0, -1, -2, 1, -3};
    const std::size_t kind = bytes[0] % std::size(kMake);
    const int mode = kModes[bytes[0] / std::size(kMake) % std::size(kModes)];
    const std::string commands(reinterpret_cast<const char *>(bytes) + 1, size - 1);
    const Make make = kMake[kind];
    const auto value = make(), before = make();
    try {
        value->SetCommandString(commands, nullptr, mode);
    } catch (const KRException &) {
        require(value->Compare(before.get()));
        return 0;
    }
    sendWhole(make, *value);
    Parsed parsed;
    before->SetCommandString(commands, parsed, nullptr, mode);
    if (!isOwn(parsed))
        return 0;
    undo(make, commands, mode);
    if (kind == 0)
        reduce(commands, mode);
    return 0;
}
