#include "valueclasses/commands/command.h"

namespace values {

void Command::Execute() {}
void Command::AddCommandString(std::string & /*out*/, int /*mode*/) const {}
Command *Command::Clone() const { return new Command; }

} // namespace values
