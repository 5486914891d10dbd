// Lookups: the index against a plain walk, and the rules of paths.
#include "valuetree/path.h"
#include "valuetree/treelog.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

namespace {

using namespace values;

/// The plain walk: part by part, the first child of the name.
TreeItem *walk(const Node &from, const QString &path)
{
    const int cut = path.indexOf('/');
    for (TreeItem *child : from.GetTreeItems())
        if (child->GetName() == path.left(cut)) {
            if (cut < 0)
                return child;
            return child->AsNode() != nullptr ? walk(*child->AsNode(), path.mid(cut + 1)) : nullptr;
        }
    return nullptr;
}

/// Changes a tree at random: few names, so that they clash.
class RandomTree {
public:
    explicit RandomTree(unsigned seed) : m_random(seed)
    {
        for (int depth = 0, begin = 0; depth < 4; ++depth) {
            const int end = int(paths.size());
            for (const char *name : {"a", "b", "c"})
                for (int i = begin; i < end || i == 0; ++i)
                    paths.push_back(depth == 0 ? QString(name)
                                               : paths[std::size_t(i)] + '/' + name);
            begin = end;
        }
    }
    void change()
    {
        const QString path = '/' + paths[pick(paths.size())];
        const QString name(QStringLiteral("abcd/").at(int(pick(5))));
        Node *const node = pickNode();
        switch (pick(9)) {
        case 0:
            if (auto value = std::make_unique<Int>(); tree.AddValue(path, value.get()))
                static_cast<void>(value.release());
            break;
        case 1:
            tree.AddNode(path);
            break;
        case 2: // siblings of one name
            if (pick(2) == 0)
                node->AddItem(new ValueItem(new Int(name == "/" ? "e" : name)));
            else
                node->AddItem(searchedNode(name));
            break;
        case 3:
        case 4:
            if (node != tree.GetRoot())
                node->SetName(name, nullptr);
            break;
        case 5:
            if (ValueBase *const value = tree.GetValue(path))
                value->SetName(name, nullptr);
            break;
        case 6:
            tree.DeleteValue(path);
            break;
        case 7:
            if (pick(4) == 0 && node != tree.GetRoot())
                delete node;
            break;
        default: // a move, unless it would close a circle
            try {
                node->AddItem(pickNode());
            } catch (const std::exception &) {
            }
        }
    }
    void check()
    {
        const Node *const from = pickNode();
        for (const QString &path : paths) {
            TreeItem *const item = walk(*tree.GetRoot(), path), *const below = walk(*from, path);
            ASSERT_EQ(tree.GetNode('/' + path), item != nullptr ? item->AsNode() : nullptr);
            ASSERT_EQ(tree.GetValueItem('/' + path),
                      item != nullptr ? item->AsValueItem() : nullptr);
            ASSERT_EQ(from->GetNode(path), below != nullptr ? below->AsNode() : nullptr);
        }
        for (const TreeItem *child : from->GetTreeItems()) {
            const auto &all = from->GetTreeItems();
            ASSERT_EQ(from->GetChild(child->GetName()),
                      *std::find_if(all.begin(), all.end(), [child](const TreeItem *other) {
                          return other->GetName() == child->GetName();
                      }));
            ASSERT_EQ(from->GetChild(quint64(from->GetIndex(child))), child);
        }
    }

    BaseTree tree;
    std::vector<QString> paths;

private:
    /// With an index of its own, which must be forgotten also where no path will lead to it.
    static Node *searchedNode(const QString &name)
    {
        auto *const node = new Node(name);
        node->AddValue("a/b", new Int);
        EXPECT_NE(node->GetValue("a/b"), nullptr);
        return node;
    }
    std::size_t pick(std::size_t count) { return m_random() % count; }
    Node *pickNode()
    {
        Node *node = tree.GetRoot();
        while (node->GetChildrenCount() > 0 && pick(4) != 0)
            if (Node *const next =
                    node->GetChild(pick(unsigned(node->GetChildrenCount())))->AsNode())
                node = next;
        return node;
    }

    std::mt19937 m_random;
};

TEST(TreeIndex, FindsWhatAPlainWalkFinds)
{
    for (unsigned seed = 1; seed <= 20; ++seed) {
        SCOPED_TRACE(seed);
        RandomTree random(seed);
        for (int step = 0; step < 600; ++step) {
            random.change();
            if (step % 3 == 0)
                random.check();
            ASSERT_FALSE(::testing::Test::HasFatalFailure()) << "step " << step;
        }
    }
}

TEST(TreeIndex, DetachedNodesAreSearchedToo)
{
    Node top;
    top.AddValue("a/b/c", new Int);
    auto *const part = new Node("part");
    part->AddValue("x/y", new Int);
    EXPECT_NE(part->GetValue("x/y"), nullptr);
    EXPECT_TRUE(top.AddNode("a", part));
    EXPECT_NE(top.GetValue("a/part/x/y"), nullptr);
    EXPECT_NE(part->GetValue("x/y"), nullptr);
    EXPECT_EQ(top.GetNode(""), &top);
    EXPECT_EQ(top.GetNode("a/b/"), top.GetNode("a/b"));
    EXPECT_EQ(top.GetValue(""), nullptr);
    EXPECT_EQ(top.GetValue("a/b/c/"), nullptr);
    EXPECT_EQ(part->GetAncestor(1), top.GetNode("a"));
    EXPECT_EQ(part->GetAncestor(3), nullptr);
}

TEST(TreeIndex, TellsPathsApartThatDifferByZeroes)
{
    Node top;
    const QString name("a"), longer = name + QChar(u'\0');
    auto *const first = new Node(name), *const second = new Node(longer);
    top.AddItem(first);
    top.AddItem(second);
    EXPECT_EQ(top.GetNode(name), first);
    EXPECT_EQ(top.GetNode(longer), second);
}

TEST(TreePaths, Rules)
{
    struct {
        const char *path;
        bool isIdentifier, isPath;
    } const rows[] = {
        {"", false, false},       {"abc", true, true},  {"1abc", false, false},
        {"a 1-.:_Z", true, true}, {"a/b", false, true}, {"/a-b/c.d", false, true},
        {"/a//b", false, false},  {"//", false, false}, {"/", false, true},
        {"/a/1", false, false},   {"a/", false, true},  {"\xC3\xA4", false, false},
        {"a;b", false, false},    {"/a/", false, true}, {"a\tb", false, false},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(Tree::CheckIdentifier(QString::fromUtf8(row.path)), row.isIdentifier) << row.path;
        EXPECT_EQ(Tree::CheckPath(QString::fromUtf8(row.path)), row.isPath) << row.path;
    }
    EXPECT_TRUE(Tree::CheckPath(QString("/a").repeated(256)));
    EXPECT_FALSE(Tree::CheckPath(QString("/a").repeated(257)));
    EXPECT_EQ(Tree::AdaptPath("/a/b"), "/a/b/");
    for (const char *path : {"a/b", "/a//b"})
        EXPECT_ANY_THROW(Tree::AdaptPath(path)) << path;

    struct {
        const char *path, *left, *right, *withoutLeft, *withoutRight;
    } const parts[] = {
        {"/a/b/c", "a", "c", "/b/c", "/a/b"},
        {"a/b/", "a", "b", "b/", "a/"},
        {"/a/b/", "a", "b", "/b/", "/a/"},
        {"a", "a", "a", "", ""},
        {"/a/", "a", "a", "/", "/"},
        {"", "", "", "", ""},
        {"/", "", "", "/", "/"},
    };
    for (const auto &row : parts) {
        EXPECT_EQ(Path::GetLeft(row.path), row.left) << row.path;
        EXPECT_EQ(Path::GetRight(row.path), row.right) << row.path;
        EXPECT_EQ(Path::TrimLeft(row.path), row.withoutLeft) << row.path;
        EXPECT_EQ(Path::TrimRight(row.path), row.withoutRight) << row.path;
    }
    EXPECT_TRUE(Path::IsPrefixPath("/a/b", "/a") && Path::IsPrefixPath("/a", "/a"));
    EXPECT_FALSE(Path::IsPrefixPath("/ab", "/a") || Path::IsPrefixPath("/A/b", "/a"));

    BaseTree tree;
    tree.AddValue("/a/v", new Int);
    EXPECT_EQ(tree.GetValue("/a/v/"), nullptr);
    EXPECT_EQ(tree.GetValue("a/v"), nullptr);
    EXPECT_EQ(tree.GetNode("/a/"), nullptr);
    EXPECT_EQ(tree.GetSubTree("/a/"), tree.GetNode("/a"));
    EXPECT_EQ(tree.GetSubTree("/"), tree.GetRoot());
    EXPECT_EQ(tree.GetRoot()->GetPathName(), "/");
    EXPECT_EQ(tree.GetRoot()->GetPathName_NoSlashForRoot(), "");
}

} // namespace
