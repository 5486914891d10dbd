#pragma once

#include "valueclasses/commands/command.h"

namespace values {

/// The channel on which an optimizer of a client reaches the one of its server.
class SPECTREE_EXPORT InternalProtocolCommandListOptimizer {
public:
    virtual ~InternalProtocolCommandListOptimizer() = default;
    virtual void InternalProtocolWriteString(const std::string &text) = 0;
};

/// The commands that wait on one connection, as far as a value sees them. Application thread.
class SPECTREE_EXPORT CommandListOptimizer {
public:
    virtual ~CommandListOptimizer() = default;
    virtual CommandList &GetCommands() = 0;
    virtual void Clear() = 0;
    /// True when the value reduces the list itself, with the vector form of OptimizeCommandList.
    virtual bool IsSmoothing() const = 0;
    /// Empty for an empty list.
    virtual std::string CreateCommandString(unsigned int mode) const = 0;
};

} // namespace values
