#include "valueclasses/selection/multiselectioncommands.h"

#include "valueclasses/commands/commandfield_p.h"

namespace values {

bool isEmptySelectionFlag(const char *command, int mode)
{
    const std::string_view id = commandField(command);
    if (Kelm::bytesLeft(command) <= id.size())
        return false;
    const char *const field = command + id.size() + 1;
    if (isTextMode(mode)) {
        const std::string_view text(field, std::size_t(Kelm::findByte(field, ';') - field));
        return text == "true" || text == "false";
    }
    const std::size_t left = Kelm::bytesLeft(field);
    // A text of 15 104 characters begins with 0 and ";", too, but a zero byte follows.
    return left >= 2 && (field[0] == 0 || field[0] == 1) && field[1] == ';' &&
           (left == 2 || field[2] == ';' || (field[2] >= '0' && field[2] <= '9'));
}

Command *createMultiSelectionCommand(int id, IMultiSelection *selection, const char **pos,
                                     IObserver *source, int mode)
{
    if (id == CommandMapEmptyText::kId && !isEmptySelectionFlag(*pos, mode))
        return new CommandMapEmptyText(selection, pos, source, mode);
    return CreateOneOf<CommandSelectAt, CommandEnableAt, CommandAllowEmptySelection,
                       CommandMapMultiSelectedText>(id, selection, pos, source, mode);
}

} // namespace values
