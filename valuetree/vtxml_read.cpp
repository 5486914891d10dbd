// Text to a subtree, in two steps: everything is checked and every new value made, then the tree is
// changed.
#include "platform/base/errorhandler.h"
#include "platform/base/krexception.h"
#include "valueclasses/lifewatch.h"
#include "valueclasses/xml/xmltext.h"
#include "valueclasses/xmlvaluefactory.h"
#include "valuetree/path.h"
#include "valuetree/treewatch_p.h"
#include "valuetree/valueitem.h"
#include "valuetree/vtxml.h"
#include "valuetree/vtxml_p.h"

#include <QSet>

namespace values {

namespace {

using Role = XmlDocument::Role;

/// The elements below one element of the document.
class ElementFields final : public XmlFields {
public:
    ElementFields(const XmlDocument &document, std::size_t element,
                  const LifeWatch *target = nullptr)
        : m_document(document), m_element(element), m_target(target)
    {
    }
    XmlText Find(QStringView tag) const override
    {
        const XmlDocument::Element *const found = find(tag);
        if (found == nullptr)
            return {};
        return {m_document.text(found->text),
                found->exact.length == 0 ? QString() : m_document.text(found->exact), true};
    }
    bool Holds(QStringView tag, QStringView text) const override
    {
        const XmlDocument::Element *const found = find(tag);
        return found != nullptr && m_document.view(found->text) == text;
    }
    void ForEach(QStringView tag,
                 const std::function<void(const XmlFields &)> &visit) const override
    {
        const auto &elements = m_document.elements();
        const auto end = std::size_t(elements[m_element].end);
        for (std::size_t i = m_element + 1; i < end; i = std::size_t(elements[i].end))
            if (m_document.view(elements[i].name) == tag)
                visit(ElementFields(m_document, i));
    }
    bool IsTargetGone() const override { return m_target != nullptr && m_target->IsGone(); }

private:
    const XmlDocument::Element *find(QStringView tag) const
    {
        const auto &elements = m_document.elements();
        const auto end = std::size_t(elements[m_element].end);
        for (std::size_t i = m_element + 1; i < end; i = std::size_t(elements[i].end))
            if (m_document.view(elements[i].name) == tag)
                return &elements[i];
        return nullptr;
    }

    const XmlDocument &m_document;
    std::size_t m_element;
    const LifeWatch *m_target;
};

class TreeReader {
public:
    explicit TreeReader(XmlDocument &document)
        : m_document(document), m_elements(document.elements())
    {
    }
    TreeReader(const TreeReader &) = delete;
    TreeReader &operator=(const TreeReader &) = delete;
    ~TreeReader()
    {
        const KeepLastDeletedObject keep; // of a document that is refused
        m_made.clear();
    }

    /// \a node is null for one that is still to be made.
    void check(const Node *node, std::size_t parent, int depth);
    void apply(Node &node, std::size_t parent);

private:
    void checkItem(const Node *node, std::size_t at, int depth, QSet<QString> &seen);
    void checkValue(ValueBase *existing, std::size_t at, const QString &name);
    void applyDescriptor(Node &node, std::size_t element);
    void applyNode(Node &parent, std::size_t at, const QString &name);
    void applyValue(Node &parent, std::size_t at, const QString &name);
    void makeAnew(std::size_t at, const QString &name);
    std::size_t descriptorOf(std::size_t element) const;
    QString nameOf(std::size_t at) const
    {
        return XmlTextForms::DecodeName(m_document.view(m_elements[at].name));
    }
    TreeItem *existing(const Node &parent, const QString &name) const
    {
        return m_fresh ? nullptr : parent.GetChild(name);
    }
    static void traceSkipped(const QString &name);

    XmlDocument &m_document;
    std::vector<XmlDocument::Element> &m_elements;
    std::vector<std::unique_ptr<ValueBase>> m_made;
    bool m_fresh = false; // inside a subtree that nobody else knows yet
};

void TreeReader::check(const Node *node, std::size_t parent, int depth)
{
    const std::size_t descriptor = descriptorOf(parent);
    if (descriptor != 0)
        XmlTextForms::TextOf({QString(), m_document.text(m_elements[descriptor].exact), true});
    QSet<QString> seen;
    const auto end = std::size_t(m_elements[parent].end);
    for (std::size_t at = parent + 1; at < end; at = std::size_t(m_elements[at].end))
        if (m_elements[at].role != Role::Other)
            checkItem(node, at, depth, seen);
}

void TreeReader::checkItem(const Node *node, std::size_t at, int depth, QSet<QString> &seen)
{
    const QString name = nameOf(at);
    if (!VtXmlParts::isItemName(name))
        VtXmlParts::fail(QStringLiteral("No item can have the name \"%1\".").arg(name.left(80)));
    if (depth >= TreePathHelpers::kMaximumDepth)
        VtXmlParts::fail(QStringLiteral("The item \"%1\" is deeper than a tree may be.").arg(name));
    const Role role = m_elements[at].role;
    TreeItem *const there = node != nullptr ? node->GetChild(name) : nullptr;
    if (seen.contains(name))
        VtXmlParts::fail(QStringLiteral("The item \"%1\" stands twice in one place.").arg(name));
    seen.insert(name);
    if (there != nullptr && (there->AsNode() != nullptr) != (role == Role::Node))
        VtXmlParts::fail(
            QStringLiteral("The item \"%1\" is a node here and a value there.").arg(name));
    if (role == Role::Node)
        check(there != nullptr ? there->AsNode() : nullptr, at, depth + 1);
    else
        checkValue(there != nullptr ? there->AsValueItem()->GetValue() : nullptr, at, name);
}

void TreeReader::checkValue(ValueBase *existing, std::size_t at, const QString &name)
{
    const ElementFields fields(m_document, at);
    if (existing != nullptr) {
        if (XmlValueBase::OtherKind(*existing, fields) != VTYPE_Unknown)
            return XmlValueFactory::Instance().HandlerFor(*existing).Check(*existing, fields);
        VtXmlParts::leaveOut(fields.Find(u"Type").text, name);
        m_elements[at].role = Role::LeftOut;
        return;
    }
    std::unique_ptr<ValueBase> made = VtXmlParts::makeValue(fields.Find(u"Type").text, name);
    if (made == nullptr) {
        m_elements[at].role = Role::LeftOut;
        return;
    }
    const XmlValueBase &handler = XmlValueFactory::Instance().HandlerFor(*made);
    handler.Check(*made, fields);
    handler.Read(*made, fields);
    m_elements[at].madeValue = int(m_made.size());
    m_made.push_back(std::move(made));
}

std::size_t TreeReader::descriptorOf(std::size_t element) const
{
    const auto end = std::size_t(m_elements[element].end);
    for (std::size_t i = element + 1; i < end; i = std::size_t(m_elements[i].end)) {
        if (m_elements[i].role == Role::Other &&
            m_document.view(m_elements[i].name) == QLatin1String("ValueDescriptor"))
            return i;
    }
    return 0;
}

void TreeReader::apply(Node &node, std::size_t parent)
{
    const ItemWatch watch(&node);
    const auto end = std::size_t(m_elements[parent].end);
    for (std::size_t at = parent + 1; at < end && !watch.isGone();
         at = std::size_t(m_elements[at].end)) {
        if (m_elements[at].role == Role::Node)
            applyNode(node, at, nameOf(at));
        else if (m_elements[at].role == Role::Value)
            applyValue(node, at, nameOf(at));
    }
}

void TreeReader::applyDescriptor(Node &node, std::size_t element)
{
    const std::size_t at = descriptorOf(element);
    XmlText key;
    if (at != 0)
        key = {m_document.text(m_elements[at].text), m_document.text(m_elements[at].exact), true};
    VtXmlParts::setDescriptor(node, XmlTextForms::TextOf(key));
}

void TreeReader::applyNode(Node &parent, std::size_t at, const QString &name)
{
    TreeItem *const there = existing(parent, name);
    if (there != nullptr && there->AsNode() == nullptr)
        return traceSkipped(name);
    if (there != nullptr) {
        const ItemWatch watch(there);
        applyDescriptor(*there->AsNode(), at);
        if (!watch.isGone())
            apply(*there->AsNode(), at);
        return;
    }
    Node &node = *new Node(name);
    const ItemWatch parentWatch(&parent), watch(&node);
    // Not when a repair has deleted it or put it somewhere, even one that throws.
    const auto discard = [&watch](Node *unplaced) {
        if (!watch.isGone() && unplaced->GetParent() == nullptr)
            delete unplaced;
    };
    std::unique_ptr<Node, decltype(discard)> made(&node, discard);
    node.SetAutoDeleteAtAddValue(parent.IsAutoDeleteAtAddValue());
    const auto add = [&] { // an observer that throws does so when the node stands
        static_cast<void>(made.release());
        if (!parent.AddNode(QString(), &node))
            made.reset(&node);
        return made == nullptr;
    };
    const bool wasFresh = m_fresh;
    if (wasFresh && !add()) { // a repair further down has put something here
        m_fresh = false;
        applyNode(parent, at, name);
        m_fresh = true; // for the next ones
        return;
    }
    if (!watch.isGone()) // a repair may have left an observer who deletes
        applyDescriptor(node, at);
    if (!watch.isGone()) {
        m_fresh = node.GetChildrenCount() == 0; // a repair may have added some
        apply(node, at);
    }
    m_fresh = wasFresh;
    if (!watch.isGone() && node.GetParent() == nullptr && made != nullptr &&
        (parentWatch.isGone() || !add()))
        traceSkipped(name);
}

/// In the place of what was there when the document was checked.
void TreeReader::makeAnew(std::size_t at, const QString &name)
{
    try {
        checkValue(nullptr, at, name);
    } catch (const KRException &) { // it was checked for a value of another kind
        traceSkipped(name);
    }
}

void TreeReader::applyValue(Node &parent, std::size_t at, const QString &name)
{
    TreeItem *const there = existing(parent, name);
    if (there == nullptr) {
        if (m_elements[at].madeValue < 0)
            makeAnew(at, name);
        const int index = m_elements[at].madeValue;
        if (index < 0)
            return;
        std::unique_ptr<ValueBase> &made = m_made[std::size_t(index)];
        ValueBase *const value = made.release(); // an observer that throws does so when it stands
        if (parent.AddValue(QString(), value))
            return;
        made.reset(value);
        if (!m_fresh)
            return traceSkipped(name);
        m_fresh = false; // as above
        applyValue(parent, at, name);
        m_fresh = true;
        return;
    }
    ValueItem *const item = there->AsValueItem();
    ValueBase *const value = item != nullptr ? item->GetValue() : nullptr;
    if (value == nullptr)
        return traceSkipped(name);
    const LifeWatch target(value); // an observer may put another one into its place
    const ElementFields fields(m_document, at, &target);
    const XmlValueBase &handler = XmlValueFactory::Instance().HandlerFor(*value);
    // Another one than was checked, perhaps, which an observer has put here.
    try {
        handler.Check(*value, fields);
    } catch (const KRException &) {
        return traceSkipped(name);
    }
    handler.Read(*value, fields);
}

void TreeReader::traceSkipped(const QString &name)
{
    _Q_Trace(QStringLiteral(
                 "The item \"%1\" is not read: an observer or a repair has changed its place.")
                 .arg(name),
             __FILE__, __LINE__);
}

int depthOf(const Node &node)
{
    int depth = 0;
    for (const Node *above = node.GetParent(); above != nullptr; above = above->GetParent())
        ++depth;
    return depth;
}

} // namespace

bool VtXml::FromXml(Node *node, const QString &xml)
{
    if (node == nullptr)
        VtXmlParts::fail(QStringLiteral("There is no node to read into."));
    const ItemWatch watch(node);
    XmlDocument document(xml);
    if (!VtXmlParts::accept(document) || watch.isGone())
        return false;
    TreeReader reader(document);
    reader.check(node, 0, depthOf(*node));
    reader.apply(*node, 0);
    return true;
}

} // namespace values
