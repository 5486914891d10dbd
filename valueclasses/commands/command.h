#pragma once

#include "valueclasses/commands/icommand.h"

#include <memory>
#include <string>
#include <vector>

namespace values {

/// The form of a command string (`iCommandOption`). Every number that isn't listed is binary.
enum CommandMode : int {
    ModeText = -1,          ///< fields are printed, each closed by ";"
    ModeBinaryTagged = -2,  ///< binary, a QString carries a mark of its encoding
    ModeBinaryTagged2 = -3, ///< the same
    ModeBinary = 0,
    ModeRecording = 1, ///< binary; recorded state and copies of values use it
};
inline constexpr bool isTextMode(int mode) { return mode == ModeText; }
inline constexpr bool isTaggedMode(int mode)
{
    return mode == ModeBinaryTagged || mode == ModeBinaryTagged2;
}

/// A change that can be executed, cloned and written into a command string. One thread at a time.
class SPECTREE_EXPORT Command : public KELM::ICommand {
public:
    Command() = default;
    explicit Command(int id) : m_id(id) {}
    Command(const Command &) = default;
    Command &operator=(const Command &) = default;

    /// Small commands come and go by the thousand: each thread keeps up to 4 MiB of their memory a
    /// size, until it ends.
    static void *operator new(std::size_t size);
    static void operator delete(void *block, std::size_t size);

    /// Does nothing here.
    void Execute() override;
    int GetCommandId() const override { return m_id; }
    /// Appends this command in the form of \a mode; nothing here.
    virtual void AddCommandString(std::string &out, int mode) const;
    /// A copy, owned by the caller. Here a bare command without the id.
    virtual Command *Clone() const;

    /// Identity, not content.
    bool operator!=(const Command &other) const { return this != &other; }

private:
    int m_id = -1;
};

/// For whom a command of a change is made.
enum class CommandUse {
    Record, ///< carries the new state to another value
    Undo,   ///< puts the old state back, whatever limits it
};

using CommandList = std::vector<std::unique_ptr<Command>>;

} // namespace values
