#include "valueclasses/valuespecialinterest.h"

#include "valueclasses/valuelist_impl.h"

namespace values {

class ValueSpecialInterest::CommandChangeInterest : public CommandOnValue {
public:
    static constexpr int kId = 50;
    using Stream = StreamFormat<SpecialInterest>;

    CommandChangeInterest(ValueBase *list, SpecialInterest item, IObserver *source)
        : CommandOnValue(kId, list, source), m_item(std::move(item))
    {
    }
    CommandChangeInterest(ValueBase *list, const char **pos, IObserver *source, int mode)
        : CommandOnValue(kId, list, pos, source), m_item(Stream::FromStream(pos, mode))
    {
        Kelm::readTerminator(pos, "ValueSpecialInterest::CommandChangeInterest",
                             "CommandChangeInterest");
    }
    void Execute() override
    {
        static_cast<ValueSpecialInterest *>(GetValue())->ChangeInterest(m_item, GetSource());
    }
    void AddCommandString(std::string &out, int mode) const override
    {
        CommandOnValue::AddCommandString(out, mode);
        Stream::Append(out, m_item, mode);
        out += ';';
    }
    Command *Clone() const override { return new CommandChangeInterest(*this); }

private:
    SpecialInterest m_item;
};

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
    if (GetUndoManager() != nullptr)
        AddUndo(new CommandChangeInterest(this, *found, nullptr));
    found->SetInterest(item.GetInterest());
    if (Record())
        RecordCommand(new CommandChangeInterest(this, item, source));
    const auto index = std::int32_t(std::distance(items.begin(), found));
    NotifyListChanged(CC_VALUE, index, *found, source);
}

Command *ValueSpecialInterest::CreateNextCommand(int id, const char **pos, IObserver *source,
                                                 int mode)
{
    if (id == CommandChangeInterest::kId)
        return new CommandChangeInterest(this, pos, source, mode);
    return ValueList::CreateNextCommand(id, pos, source, mode);
}

} // namespace values
