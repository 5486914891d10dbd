#include "valueclasses/undo/undomanager.h"

#include "platform/base/errorhandler.h"
#include "valueclasses/commands/valuecommands.h"

#include <algorithm>
#include <map>
#include <utility>

namespace values {

namespace {

/// Whether \a command stands for a transaction that hasn't ended yet.
bool isOpenBracket(const KELM::ICommand &command)
{
    if (command.GetCommandId() != ValueBase::CommandEndTransaction::kId)
        return false;
    const auto *end = dynamic_cast<const ValueBase::CommandEndTransaction *>(&command);
    return end != nullptr && end->GetBracket() != 0;
}

} // namespace

UndoManager::UndoManager(unsigned int maxStacks) : m_maxStacksSize(maxStacks) {}

UndoManager::UndoManager(const UndoManager &other)
    : IUndoManager(other), m_maxStacksSize(other.m_maxStacksSize)
{
}

UndoManager &UndoManager::operator=(const UndoManager &other)
{
    if (this == &other)
        return *this;
    m_maxStacksSize = other.m_maxStacksSize;
    ResetUndoStacks();
    return *this;
}

UndoManager::~UndoManager() = default;

bool UndoManager::OpenNewUndoStack(const QString &description)
{
    if (m_executing || m_currentStack != nullptr)
        return false;
    m_currentStack = std::make_unique<UndoStack>(description);
    m_finishWanted = false;
    return true;
}

bool UndoManager::AddUndoCommand(KELM::ICommand *command)
{
    std::unique_ptr<KELM::ICommand> own(command);
    if (m_executing || own == nullptr)
        return false;
    if (m_currentStack == nullptr) {
        ResetUndoStacks();
        return false;
    }
    if (isOpenBracket(*own))
        m_currentStack->openBrackets.push_back(m_currentStack->commands.size());
    m_currentStack->commands.push_back(std::move(own));
    if (m_finishWanted)
        FinishCurrentUndoStack();
    return true;
}

/// The position of the command in the open stack.
std::optional<std::size_t> UndoManager::find(const CommandPredicate &predicate) const
{
    const auto &commands = m_currentStack->commands;
    if (dynamic_cast<const ValueBase::FindCommandEndTransactionPredicate *>(&predicate) !=
        nullptr) {
        // At most one of the open brackets. Transactions of many values end in the order in which
        // they began, or the other way round.
        const auto &open = m_currentStack->openBrackets;
        if (!open.empty() && predicate(*commands[open.front()]))
            return open.front();
        const auto found = std::find_if(open.rbegin(), open.rend(), [&](std::size_t position) {
            return predicate(*commands[position]);
        });
        return found != open.rend() ? std::optional(*found) : std::nullopt;
    }
    const auto found = std::find_if(commands.begin(), commands.end(),
                                    [&](const auto &command) { return predicate(*command); });
    return found != commands.end() ? std::optional(std::size_t(found - commands.begin()))
                                   : std::nullopt;
}

void UndoManager::closeBracket(std::size_t position)
{
    auto &open = m_currentStack->openBrackets;
    const auto at = std::lower_bound(open.begin(), open.end(), position);
    if (at != open.end() && *at == position)
        open.erase(at);
}

bool UndoManager::ReplaceUndoCommand_If(CommandPredicate *predicate, KELM::ICommand *command)
{
    if (m_executing || m_currentStack == nullptr || predicate == nullptr || command == nullptr)
        return false;
    const auto found = find(*predicate);
    if (!found)
        return false;
    closeBracket(*found);
    m_currentStack->commands[*found].reset(command);
    return true;
}

bool UndoManager::RemoveUndoCommand_If(CommandPredicate *predicate)
{
    if (m_executing || m_currentStack == nullptr || predicate == nullptr)
        return false;
    const auto found = find(*predicate);
    if (!found)
        return false;
    closeBracket(*found);
    m_currentStack->commands.erase(m_currentStack->commands.begin() + std::ptrdiff_t(*found));
    for (std::size_t &position : m_currentStack->openBrackets)
        position -= position > *found ? 1 : 0;
    if (m_finishWanted)
        FinishCurrentUndoStack();
    return true;
}

void UndoManager::FinishCurrentUndoStack()
{
    if (m_executing || m_currentStack == nullptr)
        return;
    // Cut in two, a transaction would leave its value without notifications after an undo.
    if (!m_currentStack->openBrackets.empty())
        m_finishWanted = true;
    else if (m_currentStack->commands.empty())
        dropCurrentStack();
    else
        keepCurrentStack();
}

void UndoManager::dropCurrentStack()
{
    m_currentStack.reset();
    if (std::exchange(m_finishWanted, false))
        tellRecordings(); // somebody may wait to open the next one
}

void UndoManager::keepCurrentStack()
{
    m_stacks.push_back(std::move(m_currentStack));
    if (m_stacks.size() > m_maxStacksSize)
        m_stacks.pop_front();
    tellRecordings();
}

bool UndoManager::ExecuteUndoStacks(unsigned int count)
{
    if (m_executing || m_currentStack != nullptr)
        return false;
    if (count == kAllStacks)
        count = unsigned(m_stacks.size());
    if (count == 0 || count > m_stacks.size())
        return false;
    m_executionListeners.Notify(&IUndoExecutionListener::OnUndoExecutionStart);
    m_executing = true;
    try {
        for (; count > 0 && !m_stacks.empty() && !m_abandoned; --count) {
            run(*m_stacks.back());
            m_stacks.pop_back();
        }
    } catch (...) {
        m_abandoned = true;
        executionEnded();
        throw;
    }
    executionEnded();
    return true;
}

void UndoManager::run(UndoStack &stack)
{
    try {
        while (!stack.commands.empty() && !m_abandoned) {
            const std::unique_ptr<KELM::ICommand> command = std::move(stack.commands.back());
            stack.commands.pop_back();
            command->Execute();
        }
    } catch (...) {
        endTransactions(stack);
        throw;
    }
    endTransactions(stack);
}

/// A run that breaks off leaves the ends of the transactions in \a stack that it has begun: without
/// them a value would notify nobody any more. The others are left, with their ends.
void UndoManager::endTransactions(const UndoStack &stack)
{
    std::map<const ValueBase *, int> notBegun;
    for (auto rest = stack.commands.rbegin(); rest != stack.commands.rend(); ++rest) {
        auto *const command = dynamic_cast<ValueBase::CommandOnValue *>(rest->get());
        if (command == nullptr || isGone(command->GetValue()))
            continue;
        const int id = command->GetCommandId();
        int &skipped = notBegun[command->GetValue()];
        if (id == ValueBase::CommandStartTransaction::kId)
            ++skipped;
        if (id != ValueBase::CommandEndTransaction::kId)
            continue;
        if (skipped > 0) {
            --skipped;
            continue;
        }
        try {
            command->Execute();
        } catch (const std::exception &error) { // the first one is on its way
            SPECTREE_TRACE(TraceWarnings, QStringLiteral("The end of a transaction failed: %1")
                                              .arg(QString::fromUtf8(error.what())));
        }
    }
}

bool UndoManager::isGone(const ValueBase *value) const
{
    return std::find(m_gone.begin(), m_gone.end(), value) != m_gone.end();
}

void UndoManager::executionEnded()
{
    if (std::exchange(m_abandoned, false)) {
        m_stacks.clear();
        m_currentStack.reset(); // a listener may have opened it as the run began
    }
    m_gone.clear();
    m_executing = false;
    m_executionListeners.Notify(&IUndoExecutionListener::OnUndoExecutionEnd);
    tellRecordings();
}

void UndoManager::ResetUndoStacks()
{
    if (m_executing)
        return;
    m_currentStack.reset();
    m_stacks.clear();
    tellRecordings();
}

void UndoManager::ForgetValue(const ValueBase *value)
{
    if (!m_executing)
        return ResetUndoStacks();
    m_abandoned = true;
    m_gone.push_back(value);
}

std::vector<QString> UndoManager::GetUndoStackDescriptions() const
{
    std::vector<QString> descriptions;
    for (const auto &stack : m_stacks)
        descriptions.push_back(stack->description);
    return descriptions;
}

void UndoManager::tellRecordings() const
{
    m_recordingsListeners.Notify(&IUndoRecordingsListener::OnUndoRecordingsChanged);
}

} // namespace values
