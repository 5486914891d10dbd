// Recorded commands and command strings.
#include "platform/base/bytes.h"
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/commands/commandfield_p.h"
#include "valueclasses/commands/commandlistoptimizer.h"
#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/valuebase.h"
#include "valueclasses/valuebase_p.h"

#include <algorithm>

namespace values {

void ValueBase::updateRecordingFlags()
{
    const Rare &own = rare();
    setFlag(Recording, own.recordingCount > 0 && !own.recordingSuspended);
    setFlag(RecordingForTransmission, own.transmissionCount > 0 && !own.transmissionSuspended);
}

void ValueBase::CommandRecordingOn()
{
    ++rare().recordingCount;
    updateRecordingFlags();
}

void ValueBase::CommandRecordingOff()
{
    rare().recordingCount = std::max(0, rare().recordingCount - 1);
    updateRecordingFlags();
}

void ValueBase::SuspendCommandRecording(bool suspend)
{
    rare().recordingSuspended = suspend;
    updateRecordingFlags();
}

void ValueBase::CommandRecordingOnForTransmission()
{
    ++rare().transmissionCount;
    updateRecordingFlags();
}

void ValueBase::CommandRecordingOffForTransmission()
{
    rare().transmissionCount = std::max(0, rare().transmissionCount - 1);
    updateRecordingFlags();
}

void ValueBase::SuspendCommandRecordingForTransmission(bool suspend)
{
    rare().transmissionSuspended = suspend;
    updateRecordingFlags();
}

void ValueBase::RecordCommand(Command *command)
{
    std::unique_ptr<Command> own(command);
    if (isForeignThread())
        return postLate(std::move(own), &ValueBase::RecordCommand);
    std::unique_ptr<Command> second;
    if (IsCommandRecording() && IsCommandRecordingForTransmission())
        second.reset(command->Clone());
    if (IsCommandRecording())
        AddCommand(own.release());
    if (IsCommandRecordingForTransmission())
        AddCommandForTransmission(second != nullptr ? second.release() : own.release());
}

void ValueBase::AddCommand(Command *command)
{
    std::unique_ptr<Command> own(command);
    if (isForeignThread())
        return postLate(std::move(own), &ValueBase::AddCommand);
    rare().commandList.push_back(std::move(own));
}

void ValueBase::AddCommandForTransmission(Command *command)
{
    std::unique_ptr<Command> own(command);
    if (isForeignThread())
        return postLate(std::move(own), &ValueBase::AddCommandForTransmission);
    rare().commandListForTransmission.push_back(std::move(own));
}

/// Recording came to be wanted while the change was on its way.
void ValueBase::postLate(std::unique_ptr<Command> command, void (ValueBase::*add)(Command *))
{
    PostChange([this, add, posted = std::shared_ptr<Command>(std::move(command))] {
        (this->*add)(posted->Clone());
    });
}

void ValueBase::releaseCommands()
{
    m_rare->commandListForTransmission.clear();
    m_rare->commandList.clear();
}

namespace {
/// Never destroyed: a value may still be asked while the process exits.
const CommandList &noCommands()
{
    static const auto *const none = new CommandList;
    return *none;
}
} // namespace

const CommandList &ValueBase::GetCommandList() const
{
    return m_rare != nullptr ? m_rare->commandList : noCommands();
}

const CommandList &ValueBase::GetCommandListForTransmission() const
{
    return m_rare != nullptr ? m_rare->commandListForTransmission : noCommands();
}

void ValueBase::ClearCommandListForTransmission()
{
    if (m_rare != nullptr)
        m_rare->commandListForTransmission.clear();
}

std::string ValueBase::CreateCommandString(const CommandList &commands, unsigned int mode)
{
    std::vector<std::string> pieces(commands.size());
    std::size_t size = 0;
    for (std::size_t i = 0; i < commands.size(); ++i) {
        commands[i]->AddCommandString(pieces[i], int(mode));
        size += pieces[i].size();
    }
    std::string all;
    all.reserve(size + 1);
    for (const std::string &piece : pieces)
        all += piece;
    return all;
}

std::string ValueBase::GetCommandStringForTransmission(unsigned int mode)
{
    return CreateCommandString(GetCommandListForTransmission(), mode);
}

std::string ValueBase::GetCommandStringForRecording(unsigned int mode)
{
    return CreateCommandString(GetCommandList(), mode);
}

void ValueBase::SetCommandString(const std::string &commands,
                                 std::vector<std::unique_ptr<KELM::ICommand>> &out,
                                 IObserver *source, int mode)
{
    const Kelm::ReadScope scope(commands.data(), commands.size());
    const char *pos = commands.data();
    const char *const end = pos + commands.size();
    const std::size_t before = out.size();
    try {
        while (pos < end) {
            int id = shortCommandId(pos, std::size_t(end - pos));
            if (id < 0)
                id = ExtractCommandId(pos);
            if (id < 0)
                break;
            std::unique_ptr<Command> command(CreateNextCommand(id, &pos, source, mode));
            if (command != nullptr)
                out.push_back(std::move(command));
        }
    } catch (...) {
        out.resize(before);
        throw;
    }
}

void ValueBase::SetCommandString(const std::string &commands, IObserver *source, int mode)
{
    std::vector<std::unique_ptr<KELM::ICommand>> parsed;
    SetCommandString(commands, parsed, source, mode);
    if (!IsChangeForeign())
        return executeAll(parsed);
    // Whole, so that no change of the application thread falls between two of them.
    const auto posted = std::make_shared<decltype(parsed)>(std::move(parsed));
    PostChange([this, posted] { executeAll(*posted); });
}

void ValueBase::executeAll(const std::vector<std::unique_ptr<KELM::ICommand>> &commands)
{
    const LifeWatch watch(this);
    std::size_t next = 0;
    try {
        while (next < commands.size() && !watch.IsGone())
            commands[next++]->Execute();
    } catch (...) {
        if (!watch.IsGone())
            endTransactions(commands, next);
        throw;
    }
}

/// Of commands that aren't executed from \a next on, the ends of the transactions that have begun:
/// without them this value would notify nobody any more.
void ValueBase::endTransactions(const std::vector<std::unique_ptr<KELM::ICommand>> &commands,
                                std::size_t next)
{
    const LifeWatch watch(this);
    for (int notBegun = 0; next < commands.size() && !watch.IsGone(); ++next) {
        const int id = commands[next]->GetCommandId();
        if (id == CommandStartTransaction::kId)
            ++notBegun;
        if (id != CommandEndTransaction::kId || notBegun-- > 0)
            continue;
        notBegun = 0;
        try {
            commands[next]->Execute();
        } catch (const std::exception &error) { // the first one is on its way
            SPECTREE_TRACE(TraceWarnings, QStringLiteral("The end of a transaction failed: %1")
                                              .arg(QString::fromUtf8(error.what())));
        }
    }
}

int ValueBase::ExtractCommandId(const char *position)
{
    const std::string_view field = commandField(position);
    if (field.empty())
        return -1;
    return parseDigits(field, "Syntax error in command id: %1", "ValueBase", "ExtractGetCommandId");
}

Command *ValueBase::CreateNextCommand(int id, const char **pos, IObserver *source, int mode)
{
    switch (id) {
    case CommandHasChanged::kId:
        return new CommandHasChanged(this, pos, source, mode);
    case CommandSetState::kId:
        return new CommandSetState(this, pos, source, mode);
    case CommandSetValueDescriptor::kId:
        return new CommandSetValueDescriptor(this, pos, source, mode);
    case CommandStartTransaction::kId:
        return new CommandStartTransaction(this, pos, source, mode);
    case CommandEndTransaction::kId:
        return new CommandEndTransaction(this, pos, source, mode);
    case CommandUpdateTimerTime::kId:
        return new CommandUpdateTimerTime(this, pos, source, mode);
    case CommandSetTranslationNamespace::kId:
        return new CommandSetTranslationNamespace(this, pos, source, mode);
    default:
        throw KRException(QStringLiteral("Invalid command id: %1").arg(id), __FILE__, "ValueBase",
                          "CreateNextCommand", __LINE__);
    }
}

std::string ValueBase::GetObjectStateStringForTransmission(unsigned int mode)
{
    std::string out;
    PrepareObjectState();
    AddObjectStateStringForTransmission(out, mode);
    return out;
}

std::string ValueBase::GetObjectStateStringForRecording()
{
    std::string out;
    PrepareObjectState();
    AddObjectStateStringForRecording(out);
    return out;
}

void ValueBase::AddObjectStateStringForTransmission(std::string &out, unsigned int mode)
{
    CommandSetState(this, m_state, nullptr).AddCommandString(out, int(mode));
    if (GetUpdateTimerTime() != 0)
        CommandUpdateTimerTime(this, GetUpdateTimerTime(), nullptr)
            .AddCommandString(out, int(mode));
    CommandSetTranslationNamespace(this, GetTranslationNamespace(), nullptr)
        .AddCommandString(out, int(mode));
    CommandSetValueDescriptor(this, m_descriptor, nullptr).AddCommandString(out, int(mode));
}

void ValueBase::AddObjectStateStringForRecording(std::string &out)
{
    AddObjectStateStringForTransmission(out, ModeRecording);
}

std::shared_ptr<CommandListOptimizer>
ValueBase::CreateCommandListOptimizer(bool /*server*/,
                                      InternalProtocolCommandListOptimizer * /*protocol*/)
{
    return nullptr;
}

void ValueBase::OptimizeCommandList(std::shared_ptr<CommandListOptimizer> &optimizer)
{
    if (optimizer == nullptr)
        return;
    if (optimizer->IsSmoothing())
        OptimizeCommandList(optimizer->GetCommands());
    else
        ValueBase::OptimizeCommandList(optimizer->GetCommands());
}

void ValueBase::OptimizeCommandList(CommandList &commands)
{
    for (const auto &command : GetCommandListForTransmission())
        commands.emplace_back(command->Clone());
}

void ValueBase::UpdateOptimizersCommandList(std::shared_ptr<CommandListOptimizer> &optimizer)
{
    OptimizeCommandList(optimizer);
}

void ValueBase::PreWorkOptimizersCommandList(std::shared_ptr<CommandListOptimizer> & /*optimizer*/)
{
}

std::string ValueBase::GetOptimizedCommandString(std::shared_ptr<CommandListOptimizer> optimizer,
                                                 bool clear, unsigned int mode)
{
    if (optimizer == nullptr)
        return {};
    std::string commands = optimizer->CreateCommandString(mode);
    if (clear)
        optimizer->Clear();
    return commands;
}

void ValueBase::ClearOptimizedCommandList(std::shared_ptr<CommandListOptimizer> optimizer)
{
    if (optimizer != nullptr)
        optimizer->Clear();
}

} // namespace values
