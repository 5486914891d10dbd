#include "valueclasses/valuedescriptor.h"

#include "platform/base/krexception.h"
#include "valueclasses/ivaluetree.h"
#include "valueclasses/scalars/ivaluenumeric.h"
#include "valueclasses/valueempty.h"
#include "valueclasses/valuefactory.h"
#include "valueclasses/valueselection.h"

#include <memory>
#include <utility>

namespace values {

namespace {

// Literals: a descriptor of static storage may ask before the constants below are made.
struct Prefix {
    int basis;
    const char16_t *text;
    double factor;
};
constexpr Prefix kPrefixes[] = {
    {-9, u"n", 1e-9}, {-6, u"\u00B5", 1e-6}, {-3, u"m", 0.001}, {-2, u"c", 0.01}, {-1, u"d", 0.1},
    {0, u"", 1.0},    {3, u"k", 1000.0},     {6, u"M", 1e6},    {9, u"G", 1e9},
};

const Prefix *prefixOf(int basis)
{
    for (const Prefix &prefix : kPrefixes)
        if (prefix.basis == basis)
            return &prefix;
    return nullptr;
}

QString &basePath()
{
    static QString path;
    return path;
}

} // namespace

const QString g_sNano = ValueDescriptor::Basis(-9);
const QString g_sMicro = ValueDescriptor::Basis(-6);
const QString g_sMilli = ValueDescriptor::Basis(-3);
const QString g_sCenti = ValueDescriptor::Basis(-2);
const QString g_sDezi = ValueDescriptor::Basis(-1);
const QString g_s0 = ValueDescriptor::Basis(0);
const QString g_sKilo = ValueDescriptor::Basis(3);
const QString g_sMega = ValueDescriptor::Basis(6);
const QString g_sGiga = ValueDescriptor::Basis(9);

ValueDescriptor::ValueDescriptor(QString key, QString path)
    : m_path(std::move(path)), m_pathName(std::move(key))
{
    Publish();
}

ValueDescriptor::ValueDescriptor(QString name, QString path, const ValueBase *type, QString initial,
                                 QString tooltip)
    : m_name(std::move(name)), m_path(std::move(path)), m_pathName(m_path + '/' + m_name),
      m_type(type), m_initial(std::move(initial)), m_tooltip(std::move(tooltip))
{
    Publish();
}

ValueDescriptor::ValueDescriptor(QString name, QString path, const ValueBase *type, QString initial,
                                 double minimum, double maximum, double step, QString unit,
                                 int basis, QString tooltip)
    : m_name(std::move(name)), m_path(std::move(path)), m_pathName(m_path + '/' + m_name),
      m_type(type), m_initial(std::move(initial)), m_min(minimum), m_max(maximum), m_step(step),
      m_unit(std::move(unit)), m_basis(basis), m_tooltip(std::move(tooltip))
{
    Publish();
}

ValueDescriptor::ValueDescriptor(QString name, QString path, const ValueBase *type, QString initial,
                                 Selection selection, QString unit, int basis, QString tooltip)
    : m_name(std::move(name)), m_path(std::move(path)), m_pathName(m_path + '/' + m_name),
      m_type(type), m_initial(std::move(initial)), m_selItems(selection.items),
      m_countSelItems(selection.count), m_unit(std::move(unit)), m_basis(basis),
      m_tooltip(std::move(tooltip))
{
    Publish();
}

ValueDescriptor::~ValueDescriptor()
{
    auto &published = ValueDescriptorMap::Instance().m_descriptors;
    const auto found = published.find(m_pathName);
    if (found != published.end() && found->second == this)
        published.erase(found);
}

void ValueDescriptor::Publish() const
{
    ValueDescriptorMap::Instance().m_descriptors.emplace(m_pathName, this);
}

const ValueBase *ValueDescriptor::Type() const
{
    static const ValueEmpty empty;
    return m_type != nullptr ? m_type : &empty;
}

void ValueDescriptor::applyLimits(ValueBase &value) const
{
    switch (value.GetType()) {
    case VTYPE_ValueNumericInt:
    case VTYPE_ValueNumericInt64:
    case VTYPE_ValueNumericFloat:
    case VTYPE_ValueNumericFloatWithOffset:
        if (auto *const number = dynamic_cast<IValueNumeric *>(&value))
            number->doubleSetMinMax(m_min, m_max, m_step, nullptr);
        break;
    case VTYPE_ValueSelection:
        if (auto *const selection = dynamic_cast<ValueSelection *>(&value))
            SelItemDesc::AddItems(m_selItems, m_countSelItems, selection, nullptr);
        break;
    default:
        break;
    }
}

ValueBase *ValueDescriptor::Create(IObserver *observer) const
{
    if (m_name.isEmpty()) {
        CreateNode(m_path, observer);
        return nullptr;
    }
    const QString path = GetBasePath() + m_pathName;
    IValueTree &tree = IValueTree::Instance();
    if (ValueBase *const present = tree.GetValue(path)) {
        present->AddObserver(observer);
        return present;
    }
    // By its name: another kind may have the same type number.
    std::unique_ptr<ValueBase> value(ValueFactory::Instance().CreateValue(
        m_type != nullptr ? m_type->GetTypeName() : QStringLiteral("ValueEmpty")));
    if (value == nullptr)
        return nullptr;
    value->SetName(m_name, nullptr);
    applyLimits(*value);
    value->SetStringValue(m_initial, nullptr);
    value->SetValueDescriptor(this);
    value->AddObserver(observer);
    const LifeWatch watch(value.get());
    const auto isTaken = [&] { return watch.IsGone() || value->GetDeleteObserver() != nullptr; };
    const auto giveUp = [&] {
        if (isTaken())
            static_cast<void>(value.release()); // an observer of the tree has failed
        else
            value->DeleteObserver(observer); // which saw no value, and sees no end of one
    };
    try {
        if (!tree.AddValue(path, value.get())) {
            giveUp();
            return nullptr;
        }
    } catch (...) {
        giveUp();
        throw;
    }
    static_cast<void>(value.release());
    return tree.GetValue(path); // an observer may have deleted it already
}

void ValueDescriptor::AddValues(const ValueDescriptor *const *descriptors, int count,
                                IObserver *observer)
{
    for (int i = 0; i < count; ++i)
        descriptors[i]->Create(observer);
}

Node *ValueDescriptor::CreateNode(IObserver *observer)
{
    return CreateNodeAbsolute(GetBasePath(), observer);
}

Node *ValueDescriptor::CreateNode(const QString &path, IObserver *observer)
{
    return CreateNodeAbsolute(GetBasePath() + path, observer);
}

Node *ValueDescriptor::CreateNodeAbsolute(const QString &path, IObserver *observer)
{
    Node *const node = IValueTree::Instance().MakeNode(path.mid(1), observer);
    if (node == nullptr)
        throw KRException(QStringLiteral("Cannot create node \"%1\".").arg(path), __FILE__,
                          "ValueDescriptor", "CreateNodeAbsolute", __LINE__);
    return node;
}

void ValueDescriptor::SetBasePath(const QString &path) { basePath() = path; }
const QString &ValueDescriptor::GetBasePath() { return basePath(); }

QString ValueDescriptor::Basis(int basis)
{
    const Prefix *const prefix = prefixOf(basis);
    return prefix != nullptr ? QString::fromUtf16(prefix->text) : QString::number(basis);
}

double ValueDescriptor::ValueToBasis(double value) const
{
    const Prefix *const prefix = prefixOf(m_basis);
    return prefix != nullptr ? value * prefix->factor : value;
}

ValueDescriptorMap &ValueDescriptorMap::Instance()
{
    // Never destroyed: descriptors of static storage take themselves back at the very end.
    static auto *const map = new ValueDescriptorMap;
    return *map;
}

const ValueDescriptor *ValueDescriptorMap::Find(const QString &key) const
{
    const auto found = m_descriptors.find(key);
    return found != m_descriptors.end() ? found->second : nullptr;
}

QString ValueDescriptorMap::KeyOf(const ValueDescriptor &descriptor) const
{
    return descriptor.PathName();
}

} // namespace values
