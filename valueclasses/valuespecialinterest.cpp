#include "valueclasses/valuespecialinterest.h"

#include "valueclasses/valuelist_impl.h"

namespace values {

QString ValueSpecialInterest::GetTypeName() const { return QStringLiteral("ValueSpecialInterest"); }

void ValueSpecialInterest::ChangeInterest(const SpecialInterest &item, IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, item, source] { ChangeInterest(item, source); });
    auto &items = Items();
    const auto isMeant = [&](const SpecialInterest &other) {
        return other.GetGUID() == item.GetGUID() && other.GetFileName() == item.GetFileName();
    };
    const auto found = std::find_if(items.begin(), items.end(), isMeant);
    if (found == items.end())
        return PushBack(item, source);
    if (found->GetInterest() == item.GetInterest())
        return;
    if (GetUndoManager() != nullptr && !AddUndo(new CommandChangeInterest(this, *found, nullptr)))
        return;
    found->SetInterest(item.GetInterest());
    if (Record())
        RecordCommand(new CommandChangeInterest(this, item, source));
    const auto index = std::int32_t(std::distance(items.begin(), found));
    NotifyListChanged(CC_VALUE, index, *found, source);
}

Command *ValueSpecialInterest::CreateNextCommand(int id, const char **pos, IObserver *source,
                                                 int mode)
{
    Command *const own = CreateOneOf<CommandChangeInterest>(id, this, pos, source, mode);
    return own != nullptr ? own : ValueList::CreateNextCommand(id, pos, source, mode);
}

} // namespace values
