#pragma once

#include "platform/base/export.h"

namespace KELM {

/// Anything that can be executed: a change to a value, kept for replay or for undo.
class SPECTREE_EXPORT ICommand {
public:
    virtual ~ICommand() = default;
    virtual void Execute() = 0;
    virtual int GetCommandId() const = 0;
};

} // namespace KELM
