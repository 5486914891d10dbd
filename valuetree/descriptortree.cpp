// The arrow from a descriptor of a value into the tree: it runs against the floors, so it stands
// behind an interface of the lower one.
#include "valueclasses/ivaluetree.h"
#include "valuetree/tree.h"

namespace values {

namespace {

class DescriptorTree final : public IValueTree {
public:
    ValueBase *GetValue(const QString &path) const override
    {
        return Tree::Instance().GetValue(path);
    }
    bool AddValue(const QString &path, ValueBase *value) override
    {
        return Tree::Instance().AddValue(path, value);
    }
    Node *MakeNode(const QString &path, IObserver *observer) override
    {
        Tree &tree = Tree::Instance();
        if (tree.GetRoot() == nullptr)
            return nullptr;
        if (tree.GetRoot()->GetNode(path) == nullptr)
            tree.GetRoot()->AddNode(path);
        Node *const root = tree.GetRoot(); // observers may have deleted what they were told of
        Node *const node = root != nullptr ? root->GetNode(path) : nullptr;
        if (node != nullptr)
            node->AddObserver(observer);
        return node;
    }
};

} // namespace

IValueTree &IValueTree::Instance()
{
    static DescriptorTree tree;
    return tree;
}

} // namespace values
