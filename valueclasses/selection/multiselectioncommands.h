#pragma once

#include "valueclasses/commands/fieldcommand.h"
#include "valueclasses/selection/imultiselection.h"

/// The commands that a multi-selection has beside those of an item map. docs/selections.md tells
/// their forms.
namespace values {

/// Whether a command with id 33 at \a command sets the flag (CommandAllowEmptySelection) and not
/// the text (CommandMapEmptyText): in text its field is "true" or "false"; in binary the ";" stands
/// behind one byte 0 or 1, and the string ends there or goes on with an id.
SPECTREE_EXPORT bool isEmptySelectionFlag(const char *command, int mode);

using CommandSelectAt = FieldCommand<"CommandSelectAt", 31, &IMultiSelection::RestoreSelectedAt,
                                     CommandFieldOf<unsigned int>, CommandFieldOf<bool>>;
using CommandEnableAt = FieldCommand<"CommandEnableAt", 32, &IMultiSelection::EnableAt,
                                     CommandFieldOf<unsigned int>, CommandFieldOf<bool>>;
using CommandAllowEmptySelection =
    FieldCommand<"CommandAllowEmptySelection", 33, &IMultiSelection::SetAllowEmptySelection,
                 CommandFieldOf<bool>>;
using CommandMapEmptyText = FieldCommand<"CommandMapEmptyText", 33, &IMultiSelection::SetEmptyText,
                                         CommandFieldOf<QString>>;
using CommandMapMultiSelectedText =
    FieldCommand<"CommandMapMultiSelectedText", 34, &IMultiSelection::SetMultiSelectedText,
                 CommandFieldOf<QString>>;

/// The command with one of these ids, or null for any other id.
SPECTREE_EXPORT Command *createMultiSelectionCommand(int id, IMultiSelection *selection,
                                                     const char **pos, IObserver *source, int mode);

} // namespace values
