#include "valueclasses/kfactorvalue.h"

#include "valueclasses/commands/fieldcommand.h"
#include "valueclasses/value_impl.h"

namespace values {

ValueKFactor::ValueKFactor(QString name, TValueState state) : KFactorPure(std::move(name), state) {}

ValueKFactor::ValueKFactor(QString name, KFactor curve, TValueState state)
    : KFactorPure(std::move(name), std::move(curve), state)
{
}

bool ValueKFactor::Compare(const ValueBase *other) const
{
    return dynamic_cast<const ValueKFactor *>(other) != nullptr && KFactorPure::Compare(other);
}

void ValueKFactor::SetValue(KFactor curve, IObserver *source)
{
    if (IsChangeForeign())
        return PostChange([this, curve, source] { SetValue(curve, source); });
    if (m_value.IsSame(curve))
        return;
    StoreChanged(m_value, std::move(curve), CC_VALUE, source,
                 [this](const KFactor &state, IObserver *on, CommandUse) {
                     return new CommandSetValue<KFactor>(this, state, on);
                 });
}

void ValueKFactor::setRead(KFactor curve, IObserver *source)
{
    // The string holds no transducer's name.
    if (IsChangeForeign())
        return PostChange([this, curve, source] { setRead(curve, source); });
    if (m_value == curve)
        return;
    curve.SetTransducerName(m_value.GetTransducerName());
    SetValue(std::move(curve), source);
}

Command *ValueKFactor::CreateNextCommand(int id, const char **pos, IObserver *source, int mode)
{
    using CommandSetRead = FieldCommand<"Value::CommandSetValue", CommandSetValue<KFactor>::kId,
                                        &ValueKFactor::setRead, CommandFieldOf<KFactor>>;
    Command *const own = CreateOneOf<CommandSetRead>(id, this, pos, source, mode);
    return own != nullptr ? own : KFactorPure::CreateNextCommand(id, pos, source, mode);
}

template <typename Edit>
auto ValueKFactor::edit(IObserver *source, std::invoke_result_t<Edit, KFactor &> posted,
                        Edit change) -> decltype(posted)
{
    if (IsChangeForeign()) {
        PostChange([=, this] { edit(source, posted, change); });
        return posted;
    }
    KFactor edited = m_value;
    const auto result = change(edited);
    SetValue(std::move(edited), source);
    return result;
}

template <typename Edit>
void ValueKFactor::editAlways(IObserver *source, Edit change)
{
    edit(source, true, [change](KFactor &curve) {
        change(curve);
        return true;
    });
}

void ValueKFactor::SetTransducerName(const QString &name, IObserver *source)
{
    editAlways(source, [=](KFactor &curve) { curve.SetTransducerName(name); });
}

void ValueKFactor::SetDescription(const QString &description, IObserver *source)
{
    editAlways(source, [=](KFactor &curve) { curve.SetDescription(description); });
}

void ValueKFactor::Add(double frequency, double value, double minimum, IObserver *source)
{
    Add(KF{frequency, value, minimum}, source);
}

void ValueKFactor::Add(const KF &point, IObserver *source) { Add(std::vector<KF>{point}, source); }

void ValueKFactor::Add(const std::vector<KF> &points, IObserver *source)
{
    KFactor().Add(points); // throws here and not where it is posted to; so do those below
    editAlways(source, [=](KFactor &curve) { curve.Add(points); });
}

void ValueKFactor::Set(const std::vector<KF> &points, IObserver *source)
{
    KFactor().Set(points);
    editAlways(source, [=](KFactor &curve) { curve.Set(points); });
}

bool ValueKFactor::InsertAt(double frequency, IObserver *source)
{
    KFactor().InsertAt(frequency);
    return edit(source, true, [=](KFactor &curve) { return curve.InsertAt(frequency); });
}

void ValueKFactor::Trim(IObserver *source)
{
    editAlways(source, [](KFactor &curve) { curve.Trim(); });
}

void ValueKFactor::Unique(IObserver *source)
{
    editAlways(source, [](KFactor &curve) { curve.Unique(); });
}

void ValueKFactor::SetMaxOffset(double offset, IObserver *source)
{
    KFactor().SetMaxOffset(offset);
    editAlways(source, [=](KFactor &curve) { curve.SetMaxOffset(offset); });
}

void ValueKFactor::SetMinOffset(double offset, IObserver *source)
{
    KFactor().SetMinOffset(offset);
    editAlways(source, [=](KFactor &curve) { curve.SetMinOffset(offset); });
}

void ValueKFactor::SetUseMin(bool use, IObserver *source)
{
    editAlways(source, [=](KFactor &curve) { curve.SetUseMin(use); });
}

void ValueKFactor::SetUseSmooth(bool use, IObserver *source)
{
    editAlways(source, [=](KFactor &curve) { curve.SetUseSmooth(use); });
}

void ValueKFactor::Reduce(int frame, IObserver *source)
{
    editAlways(source, [=](KFactor &curve) { curve.Reduce(frame); });
}

bool ValueKFactor::insertReduced(int index, IObserver *source)
{
    return edit(source, true, [=](KFactor &curve) { return curve.insertReduced(index); });
}

bool ValueKFactor::removeReduced(int index, IObserver *source)
{
    return edit(source, true, [=](KFactor &curve) { return curve.removeReduced(index); });
}

bool ValueKFactor::setReduced(int index, int field, double value, IObserver *source)
{
    return edit(source, true,
                [=](KFactor &curve) { return curve.setReduced(index, field, value); });
}

void ValueKFactor::ResetReducedChangeIndex(IObserver *source)
{
    editAlways(source, [](KFactor &curve) { curve.ResetReducedChangeIndex(); });
}

int ValueKFactor::LoadFromFile(const QString &fileName, IObserver *source)
{
    return edit(source, 0, [=](KFactor &curve) { return curve.LoadFromFile(fileName); });
}

bool ValueKFactor::LoadFromCSVString(const QString &text, IObserver *source)
{
    return edit(source, true, [=](KFactor &curve) { return curve.LoadFromCSVString(text); });
}

int ValueKFactor::SaveToFile(const QString &fileName, IObserver *source)
{
    return edit(source, 0, [=](KFactor &curve) { return curve.SaveToFile(fileName); });
}

void ValueKFactor::fromVector(const std::vector<double> &data, bool withMin, IObserver *source)
{
    KFactor().fromVector(data, withMin);
    editAlways(source, [=](KFactor &curve) { curve.fromVector(data, withMin); });
}

void ValueKFactor::Add(const KFactor &other, IObserver *source)
{
    editAlways(source, [=](KFactor &curve) { curve += other; });
}

void ValueKFactor::Subtract(const KFactor &other, IObserver *source)
{
    editAlways(source, [=](KFactor &curve) { curve -= other; });
}

ValueKFactor &ValueKFactor::operator+=(const KFactor &other)
{
    Add(other, nullptr);
    return *this;
}

ValueKFactor &ValueKFactor::operator-=(const KFactor &other)
{
    Subtract(other, nullptr);
    return *this;
}

} // namespace values
