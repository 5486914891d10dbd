#include "valueclasses/undo/undomanager.h"

#include "valueclasses/commands/valuecommands.h"

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
        ++m_currentStack->openBrackets;
    m_currentStack->commands.push_back(std::move(own));
    if (m_finishWanted && m_currentStack->openBrackets == 0)
        keepCurrentStack();
    return true;
}

bool UndoManager::ReplaceUndoCommand_If(CommandPredicate *predicate, KELM::ICommand *command)
{
    if (m_executing || m_currentStack == nullptr || predicate == nullptr || command == nullptr)
        return false;
    auto &commands = m_currentStack->commands;
    for (auto entry = commands.rbegin(); entry != commands.rend(); ++entry) {
        if (!(*predicate)(**entry))
            continue;
        if (isOpenBracket(**entry))
            --m_currentStack->openBrackets;
        entry->reset(command);
        return true;
    }
    return false;
}

void UndoManager::FinishCurrentUndoStack()
{
    if (m_executing || m_currentStack == nullptr)
        return;
    // Cut in two, a transaction would leave its value without notifications after an undo.
    if (m_currentStack->openBrackets > 0)
        m_finishWanted = true;
    else if (m_currentStack->commands.empty())
        m_currentStack.reset();
    else
        keepCurrentStack();
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
    while (!stack.commands.empty() && !m_abandoned) {
        const std::unique_ptr<KELM::ICommand> command = std::move(stack.commands.back());
        stack.commands.pop_back();
        command->Execute();
    }
}

void UndoManager::executionEnded()
{
    if (std::exchange(m_abandoned, false))
        m_stacks.clear();
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

void UndoManager::ForgetValues()
{
    if (m_executing)
        m_abandoned = true;
    else
        ResetUndoStacks();
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
