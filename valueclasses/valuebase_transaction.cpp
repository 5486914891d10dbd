// Transactions, and the bracket that they leave in the undo stack.
#include "platform/base/errorhandler.h"
#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/iundomanager.h"
#include "valueclasses/valuebase.h"
#include "valueclasses/valuebase_p.h"

namespace values {

namespace {

// Numbers rather than addresses: the undo manager may have dropped a command, and the next one may
// stand where it stood.
std::uint64_t nextBracket()
{
    static std::atomic<std::uint64_t> last{0};
    return ++last;
}

} // namespace

bool ValueBase::FindCommandEndTransactionPredicate::operator()(const KELM::ICommand &command) const
{
    if (m_bracket == 0 || command.GetCommandId() != CommandEndTransaction::kId)
        return false;
    const auto *end = dynamic_cast<const CommandEndTransaction *>(&command);
    return end != nullptr && end->GetBracket() == m_bracket;
}

TChangeCode ValueBase::GetUndoChangeCode(TChangeCode code)
{
    switch (code) {
    case CC_ITEM_ADDED:
        return CC_ITEM_REMOVED;
    case CC_ITEM_REMOVED:
        return CC_ITEM_ADDED;
    case CC_LIST_CLEARED:
    case CC_LIST_CLEARED2:
        return CC_LIST_REPLACED;
    default:
        return code;
    }
}

void ValueBase::StartTransaction(IObserver *source)
{
    if (PostIfForeign([=, this] { ValueBase::StartTransaction(source); }))
        return;
    if (m_transactionCount < 1 && (source != nullptr || m_rare != nullptr))
        rare().transactionSource = source;
    ++m_transactionCount;
    setFlag(NotifyEnabled, false);
    if (GetUndoManager() != nullptr) {
        // Undo runs backwards: there this command ends what EndTransaction's begins.
        const std::uint64_t bracket = nextBracket();
        rare().openBrackets.push_back({m_transactionCount, bracket});
        if (!AddUndo(new CommandEndTransaction(this, CC_NONE, nullptr, bracket)))
            return;
    }
    if (Record())
        RecordCommand(new CommandStartTransaction(this, source));
}

void ValueBase::EndTransaction(TChangeCode code, IObserver *source)
{
    if (PostIfForeign([=, this] { ValueBase::EndTransaction(code, source); }))
        return;
    if (!closeUndoBracket(code))
        return;
    --m_transactionCount;
    if (Record())
        RecordCommand(new CommandEndTransaction(this, code, source));
    if (m_transactionCount != 0)
        return;
    EndTrImpl(code, source);
}

/// False when somebody who listens to the undo manager has deleted this value.
bool ValueBase::closeUndoBracket(TChangeCode code)
{
    std::uint64_t bracket = 0;
    if (m_rare != nullptr) {
        auto &open = m_rare->openBrackets;
        while (!open.empty() && open.back().depth >= m_transactionCount) {
            bracket = open.back().depth == m_transactionCount ? open.back().bracket : 0;
            open.pop_back();
        }
    }
    IUndoManager *undo = GetUndoManager();
    if (undo == nullptr)
        return true;
    FindCommandEndTransactionPredicate isOurs(bracket);
    auto end = std::make_unique<CommandEndTransaction>(this, GetUndoChangeCode(code), nullptr);
    if (!undo->ReplaceUndoCommand_If(&isOurs, end.get())) {
        // Without its end, the start of the inverse transaction would mute the value for ever.
        SPECTREE_TRACE(TraceLifecycle,
                       QStringLiteral("Error in ValueBase::EndTransaction: Cannot replace undo "
                                      "command of ValueBase::StartTransaction"));
        return true;
    }
    static_cast<void>(end.release());
    return AddUndo(new CommandStartTransaction(this, nullptr));
}

void ValueBase::EndTrImpl(TChangeCode code, IObserver *source)
{
    setFlag(NotifyEnabled, true);
    if (code != CC_NONE)
        NotifyObservers(code, source);
}

ValueTransaction ValueBase::CreateTransaction(TChangeCode code, const IObserver *source)
{
    return ValueTransaction(*this, code, source);
}

} // namespace values
