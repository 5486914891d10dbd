#include "valueclasses/value_impl.h"

namespace values {

namespace {

constexpr int kValueId = 20;

bool isSuperfluousBefore(int earlier, int later)
{
    switch (later) {
    case kValueId:
        return earlier == kValueId || earlier == ValueBase::CommandHasChanged::kId;
    case ValueBase::CommandHasChanged::kId:
    case ValueBase::CommandSetState::kId:
        return earlier == later;
    default:
        return false;
    }
}

} // namespace

void dropSuperfluousCommands(CommandList &commands)
{
    if (commands.empty())
        return;
    std::size_t kept = 0;
    for (std::size_t i = 1; i < commands.size(); ++i) {
        if (!isSuperfluousBefore(commands[kept]->GetCommandId(), commands[i]->GetCommandId()))
            ++kept;
        if (kept != i)
            commands[kept] = std::move(commands[i]);
    }
    commands.resize(kept + 1);
}

#define SPECTREE_INSTANTIATE(T, FormatClass, Type, Name)                                           \
    template class CommandSetValue<T>;                                                             \
    template class Value<T>;
SPECTREE_FOR_EACH_SCALAR(SPECTREE_INSTANTIATE)

} // namespace values
