// Life and death in the tree, and who is told of it.
#include "platform/base/kelmos.h"
#include "platform/base/krexception.h"
#include "valuetree/treelog.h"
#include "valuetree/vtxml.h"

#include <gmock/gmock.h>

#include <thread>

namespace {

using namespace values;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

/// "/n/m/v" and "/n/w" in a tree, everything watched: items by their names, values as "=name".
struct Life {
    Life()
    {
        for (const char *path : {"/n/m/v", "/n/w"}) {
            tree.AddValue(path, new Int);
            ValueItem *const item = tree.GetValueItem(path);
            log.watch(item, item->GetName().toStdString());
            log.watch(item->GetValue(), "=" + item->GetName().toStdString());
        }
        log.watch(tree.GetRoot(), "root");
        log.watch(tree.GetNode("/n"), "n");
        log.watch(tree.GetNode("/n/m"), "m");
    }

    TreeLog log; // outlives the tree, whose end it is told
    BaseTree tree;
};

TEST(TreeLife, AddingTellsTheNodeThatReceivesOnceTheSubtreeStands)
{
    Life life;
    BaseTree &tree = life.tree;
    bool whole = false;
    life.log.then["n 16"] = [&] { whole = tree.GetValue("/n/x/y/z") != nullptr; };
    EXPECT_TRUE(tree.AddValue("/n/x/y/z", new Int));
    EXPECT_TRUE(whole);
    EXPECT_THAT(life.log.take(), ElementsAre("n 16"));
    for (const char *path : {"/a/b/", "/a/c", "/a/c"}) // the last one is there already
        EXPECT_TRUE(tree.AddNode(path)) << path;
    EXPECT_THAT(life.log.take(), ElementsAre("root 16"));
    EXPECT_TRUE(tree.AddValue("/", new Int("own")));
    EXPECT_EQ(tree.CreateValue("/n/w", Int()), tree.GetValue("/n/w"));
    EXPECT_EQ(tree.CreateValue("/n/m", Int()), nullptr);
    EXPECT_EQ(tree.CreateValue("/n/w/x", Int()), nullptr);
    ValueBase *const made = tree.CreateValue("/n/q", Int("prototype", 7));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->GetName() + made->GetStringValue(), "q7");
    EXPECT_EQ(names(tree),
              "/\n\t/n\n\t\t/m\n\t\t\t/v\n\t\t/w\n\t\t/x\n\t\t\t/y\n\t\t\t\t/z\n\t\t/q\n"
              "\t/a\n\t\t/b\n\t\t/c\n\t/own\n");
}

TEST(TreeLife, WhatIsRefusedStaysTheCallers)
{
    Life life;
    BaseTree &tree = life.tree;
    const std::string before = names(tree);
    Int value("own"), unnamed;
    Node node("m"), nameless;
    Tree::LastDeletedObjectName() = "before";
    for (const char *path : {"/n/w", "/n/m", "/n/m/", "/n/w/x", "/n/w/x/y", "relative"})
        for (Int *const refused : {&value, &unnamed})
            EXPECT_FALSE(tree.AddValue(path, refused)) << path;
    EXPECT_EQ(tree.CreateValue("/n/w/x", value), nullptr);
    EXPECT_FALSE(tree.AddValue("/n/own", tree.GetValue("/n/w"))); // held already
    for (const char *path : {"/n", "/n/w", "/n/w/x"})
        EXPECT_FALSE(tree.AddNode(path, &node)) << path;
    EXPECT_FALSE(tree.AddNode("/n", &nameless));
    EXPECT_FALSE(tree.AddNode("/n/w/x"));
    EXPECT_FALSE(tree.DeleteValue("/n/m"));
    EXPECT_FALSE(tree.DeleteNode("/n/w"));
    EXPECT_THROW(tree.GetNode("/n/m")->AddItem(tree.GetNode("/n")), KRException); // below itself
    EXPECT_THROW(tree.GetNode("/n")->SetName("", nullptr), KRException);
    for (const QString &path :
         {QString("/a//b"), QString("/1"), QString(), QString("/a").repeated(257)})
        EXPECT_THROW(tree.AddValue(path, &value), KRException) << path.toStdString();
    EXPECT_EQ(names(tree), before);
    EXPECT_EQ(value.GetName() + unnamed.GetName(), "own");
    EXPECT_EQ(Tree::LastDeletedObjectName(), "before");
    EXPECT_EQ(value.GetDeleteObserver(), nullptr);
    EXPECT_THAT(life.log.take(), IsEmpty());
}

struct Ending {
    const char *name;
    std::function<void(BaseTree &)> end;
    std::vector<std::string> told;
    const char *lastDeleted;
};

const Ending kEndings[] = {
    {"a value by path",
     [](BaseTree &tree) { tree.DeleteValue("/n/w"); },
     {"w 17", "w 18", "=w 2"},
     "/n/w"},
    {"a value item",
     [](BaseTree &tree) { delete tree.GetValueItem("/n/w"); },
     {"w 18", "=w 2"},
     "/n/w"},
    {"a value", [](BaseTree &tree) { delete tree.GetValue("/n/w"); }, {"w 2", "=w 2"}, "/n/w"},
    {"a subtree",
     [](BaseTree &tree) { tree.DeleteNode("/n"); },
     {"v 17", "v 1", "=v 1", "v 18", "m 17", "m 18", "w 17", "w 1", "=w 1", "w 18", "n 18", "=v 2",
      "=w 2"},
     "/n/w"},
    {"children",
     [](BaseTree &tree) { tree.GetNode("/n/m")->DeleteChildren(); },
     {"v 17", "v 1", "=v 1", "v 18", "=v 2"},
     "/n/m/v"},
    {"the tree",
     [](BaseTree &tree) { tree.DeleteNode("/"); },
     {"v 17", "v 1", "=v 1", "v 18", "m 17", "m 18", "w 17", "w 1", "=w 1", "w 18", "n 17", "n 18",
      "root 18", "=v 2", "=w 2"},
     "/n/w"},
};

TEST(TreeLife, EveryEndIsToldOnceAndInOrder)
{
    for (const Ending &row : kEndings) {
        SCOPED_TRACE(row.name);
        Life life;
        row.end(life.tree);
        EXPECT_THAT(life.log.take(), ElementsAreArray(row.told));
        EXPECT_EQ(Tree::LastDeletedObjectName(), row.lastDeleted);
    }
    BaseTree empty;
    EXPECT_TRUE(empty.DeleteNode("/")); // from now on nothing is found or added
    EXPECT_EQ(Tree::m_eLastDelObjectType, LastDeletedObject::NodeType);
    EXPECT_FALSE(empty.AddNode("/a"));
    EXPECT_EQ(empty.GetValue("/a"), nullptr);
    EXPECT_EQ(empty.GetSubTree("/"), nullptr);
}

/// What an observer does when it is told something, while others walk the same items.
TEST(TreeLife, ObserversMayDeleteWhatTheyWatch)
{
    const std::map<std::string, std::function<void(BaseTree &)>> actions = {
        {"delete value", [](BaseTree &tree) { delete tree.GetValue("/n/m/v"); }},
        {"delete item", [](BaseTree &tree) { delete tree.GetValueItem("/n/m/v"); }},
        {"delete by path", [](BaseTree &tree) { tree.DeleteValue("/n/m/v"); }},
        {"delete sibling", [](BaseTree &tree) { tree.DeleteValue("/n/w"); }},
        {"delete parent", [](BaseTree &tree) { tree.DeleteNode("/n/m"); }},
        {"delete all", [](BaseTree &tree) { tree.DeleteNode("/"); }},
        {"add", [](BaseTree &tree) { tree.CreateValue("/n/m/new", Int()); }},
        {"move beside",
         [](BaseTree &tree) {
             try {
                 if (Node *const node = tree.GetNode("/n/m"))
                     if (ValueItem *const item = tree.GetValueItem("/n/w"))
                         node->AddItem(item);
             } catch (const KRException &) { // one whose end is told takes nothing
             }
         }},
        {"ask",
         [](BaseTree &tree) {
             if (Node *const node = tree.GetNode("/n")) {
                 node->SetName("o", nullptr);
                 static_cast<void>(VtXml::ToXml(node));
                 std::string text;
                 node->AddTreeString(text, 0, 0);
             }
         }},
        {"move", [](BaseTree &tree) {
             if (Node *const node = tree.GetNode("/n/m"))
                 tree.AddNode("/", node);
         }}};
    for (const char *when :
         {"v 17", "v 1", "v 18", "=v 1", "=v 2", "m 17", "w 17", "w 18", "w 2", "=w 2", "n 18"})
        for (const auto &[name, act] : actions) {
            for (const Ending &row : kEndings) {
                SCOPED_TRACE(std::string(when) + ", " + name + ", " + row.name);
                Life life;
                life.log.then[when] = [&life, run = act] {
                    life.log.then.clear();
                    run(life.tree);
                };
                row.end(life.tree);
                for (const char *once :
                     {"v 17", "v 18", "m 17", "m 18", "w 17", "w 18", "=v 2", "=w 2"})
                    EXPECT_LE(std::count(life.log.lines.begin(), life.log.lines.end(), once), 1)
                        << once;
            }
        }
}

TEST(TreeLife, ObserversOfANewChildMayDeleteOrFail)
{
    const std::pair<const char *, std::function<bool(BaseTree &)>> additions[] = {
        {"CreateValue", [](BaseTree &tree) { return tree.GetNode("/n")->CreateValue("x", Int()); }},
        {"AddChildNode", [](BaseTree &tree) { return tree.GetNode("/n")->AddChildNode("x"); }},
        {"Merge",
         [](BaseTree &tree) {
             Node other;
             other.AddValue("x", new Int);
             tree.GetNode("/n")->Merge(&other);
             return tree.GetValue("/n/x") != nullptr;
         }},
        {"FromXml",
         [](BaseTree &tree) {
             VtXml::FromXml(tree.GetNode("/n"), R"(<!DOCTYPE Vt><Vt Version="1.0"><x type="value">)"
                                                "<Type>ValueInt</Type></x></Vt>");
             return tree.GetValue("/n/x") != nullptr;
         }},
    };
    for (const auto &[name, add] : additions) {
        SCOPED_TRACE(name);
        Life life;
        life.log.then["n 16"] = [&] { life.tree.DeleteNode("/n"); };
        EXPECT_FALSE(add(life.tree));
        Life failing;
        failing.log.then["n 16"] = [] { throw KRException("no", "", "", "", 0); };
        EXPECT_THROW(add(failing.tree), KRException);
        EXPECT_TRUE(failing.tree.GetValue("/n/x") != nullptr || failing.tree.GetNode("/n/x"));
    }
}

TEST(TreeLife, NothingComesBelowChildrenWhoseEndIsTold)
{
    Life life;
    int refused = 0;
    for (const char *when : {"v 17", "m 17", "m 18", "w 17"})
        life.log.then[when] = [&] {
            Int value("x");
            refused += life.tree.AddValue("/n/m/x", &value) ? 0 : 1;
        };
    life.tree.GetNode("/n")->DeleteChildren();
    EXPECT_EQ(refused, 4);
    EXPECT_EQ(names(life.tree), "/\n\t/n\n");
}

TEST(TreeLife, NoChildIsToldTwiceWhenAnObserverBreaksOffInIt)
{
    Life life;
    Node &node = *life.tree.GetNode("/n");
    TreeLog::Watcher watcher(life.log, "later");
    life.log.then["m 18"] = [&] {
        auto *const later = new Node("later");
        node.AddItem(later);
        later->AddObserver(&watcher);
        EXPECT_THROW(node.DeleteChildren(), KRException);
    };
    life.log.then["later 17"] = [&] {
        life.log.then.clear();
        throw KRException("no", "", "", "", 0);
    };
    node.DeleteChildren();
    for (const char *told : {"v 17", "v 18", "m 18", "w 17", "w 18"})
        EXPECT_EQ(std::count(life.log.lines.begin(), life.log.lines.end(), told), 1) << told;
    life.log.take();
    EXPECT_TRUE(life.tree.DeleteNode("/n/later"));
    EXPECT_THAT(life.log.take(), ElementsAre("later 18"));
}

TEST(TreeLife, WhatAnObserverMovesLivesOn)
{
    for (const std::string when : {"v 17", "v 1", "m 17", "m 18"}) {
        SCOPED_TRACE(when);
        Life life;
        std::vector<std::string> &lines = life.log.lines;
        life.log.then[when] = [&] {
            lines.clear();
            life.tree.AddNode("/", life.tree.GetNode("/n/m"));
        };
        life.tree.DeleteNode("/n");
        for (const char *told : {"v 18", "m 17", "m 18"})
            EXPECT_EQ(std::count(lines.begin(), lines.end(), told), 0) << told;
        life.log.then.clear();
        lines.clear();
        EXPECT_TRUE(life.tree.DeleteNode("/m"));
        EXPECT_THAT(life.log.take(), ElementsAre("v 17", "v 1", "=v 1", "v 18", "m 18", "=v 2"));
    }
}

/// An observer moves what is deleted by path, takes it out, or throws: then it isn't deleted, and
/// is told all of its end when that comes.
TEST(TreeLife, WhatADeletionLeavesLivesOn)
{
    const std::pair<QString, const char *> cases[] = {
        {"w", "w 17"}, {"w", "w 18"}, {"m", "v 17"}, {"m", "v 18"}, {"m", "m 18"}};
    const std::vector<std::string> endOfValue{"w 17", "w 18", "=w 2"},
        endOfNode{"v 17", "v 1", "=v 1", "v 18", "m 18", "=v 2"};
    for (const auto &[name, when] : cases)
        for (const char *how : {"moves", "takes out", "throws"}) {
            SCOPED_TRACE(std::string(when) + ", " + how);
            Life life;
            Node other("other");
            TreeItem *const item = life.tree.GetNode("/n")->GetChild(name);
            const auto end = [&](const QString &path) {
                return name == "w" ? life.tree.DeleteValue(path) : life.tree.DeleteNode(path);
            };
            life.log.then[when] = [&] {
                life.log.then.clear();
                if (how[0] == 'm')
                    return other.AddItem(item);
                if (how[1] == 'a')
                    return item->SetParent(nullptr, false);
                throw KRException("no", "", "", "", 0);
            };
            if (how[1] == 'h') {
                EXPECT_THROW(end("/n/" + name), KRException);
            } else {
                EXPECT_FALSE(end("/n/" + name));
            }
            EXPECT_EQ(item->GetLastCompletePathName(), "/n/" + name);
            life.tree.GetRoot()->AddItem(item);
            life.log.take();
            EXPECT_TRUE(end('/' + name));
            EXPECT_EQ(life.log.take(), name == "w" ? endOfValue : endOfNode);
        }
}

TEST(TreeLife, AnObserverMayEndWhatIsAddedAndWhereItGoes)
{
    Life life;
    BaseTree &tree = life.tree;
    auto *const value = new Int;
    life.log.watch(value, "=new");
    life.log.then["=new 1"] = [&] { delete value; };
    EXPECT_TRUE(tree.AddValue("/n/x", value)) << "nothing is left for the caller";
    EXPECT_EQ(tree.GetValueItem("/n/x"), nullptr);
    Node item("item");
    life.log.watch(&item, "item");
    life.log.then["item 1"] = [&] { tree.DeleteNode("/n/m"); };
    tree.GetNode("/n/m")->AddItemUnique(&item);
    EXPECT_EQ(item.GetParent(), nullptr);
    life.log.then["n 16"] = [&] { tree.DeleteNode("/n"); };
    EXPECT_EQ(tree.GetNode("/n")->CopyChildNode(&item), nullptr);
    EXPECT_EQ(tree.GetRoot()->GetChildrenCount(), 0);
}

TEST(TreeLife, SetParentMovesAnItemOrTakesItOut)
{
    Life life;
    Node *const root = life.tree.GetRoot(), *const m = life.tree.GetNode("/n/m");
    const TreeItem *const v = m->GetChild("v");
    Node detached("d");
    detached.AddItem(m);
    EXPECT_EQ(v->GetLastCompletePathName(), "/n/m/v");
    m->SetParent(root, false);
    EXPECT_EQ(v->GetLastCompletePathName(), "/m/v");
    EXPECT_EQ(life.tree.GetValue("/m/v")->GetPathName(), "/m/v");
    EXPECT_EQ(root->SearchTreeItem("m"), 1);
    EXPECT_THROW(root->GetChild("n")->SetParent(root->GetChildNode("n"), true), KRException);
    EXPECT_THAT(life.log.take(), IsEmpty());
    m->SetParent(nullptr, true);
    EXPECT_THAT(life.log.take(), ElementsAre("m 18"));
    EXPECT_EQ(root->SearchTreeItem("m"), -1);
    EXPECT_EQ(v->GetLastCompletePathName(), "/m/v");
    EXPECT_EQ(life.tree.GetNode("/m"), nullptr);
    delete m;
    EXPECT_THAT(life.log.take(), ElementsAre("v 17", "v 1", "=v 1", "v 18", "=v 2"));
}

/// Destroys the observer behind it, then itself.
struct Dying : IObserver {
    void Update(Observable *subject, TChangeCode) override
    {
        for (IObserver *const each :
             {static_cast<IObserver *>(next), static_cast<IObserver *>(this)})
            subject->DeleteObserver(each);
        delete next;
        delete this;
    }
    Dying *next = nullptr;
};

TEST(TreeLife, ObserversMayDestroyThemselvesAndEachOther)
{
    TreeLog log;
    BaseTree tree;
    tree.AddValue("/n/v", new Int);
    const std::initializer_list<Observable *> subjects = {
        tree.GetValueItem("/n/v"), tree.GetValue("/n/v"), tree.GetNode("/n")};
    for (Observable *const subject : subjects) {
        auto *const first = new Dying;
        first->next = new Dying;
        subject->AddObserver(first);
        subject->AddObserver(first->next);
        IObserver *const last = log.watch(subject, "last");
        subject->NotifyObservers(CC_VALUE, nullptr);
        EXPECT_THAT(log.take(), ElementsAre("last 3"));
        EXPECT_EQ(subject->GetObservers(), std::vector{last});
        subject->DeleteObserver(last);
    }
}

TEST(TreeLife, AnItemListensToItsValueWhileItIsObserved)
{
    TreeLog log;
    BaseTree tree;
    tree.AddValue("/v", new Int);
    auto *const value = static_cast<Int *>(tree.GetValue("/v"));
    ValueItem *const item = tree.GetValueItem("/v");
    EXPECT_FALSE(value->HasObservers());
    IObserver *const first = log.watch(item, "first");
    log.watch(item, "second");
    value->SetValue(1, first); // the source is skipped at the item too
    EXPECT_THAT(log.take(), ElementsAre("second 3"));
    IObserver *const own = log.watch(value, "own");
    item->DeleteObservers();
    EXPECT_THAT(value->GetObservers(), ElementsAre(own));

    EXPECT_EQ(item->GetPathName(), "/v");
    value->SetName("x", nullptr);
    EXPECT_EQ(tree.GetValueItem("/x"), item);
    delete value;
    EXPECT_EQ(item->GetValue(), nullptr);
    EXPECT_EQ(item->GetStringValue(), "");
    EXPECT_EQ(item->GetLastCompletePathName(), "/x");
    EXPECT_EQ(tree.GetValueItem("/x"), nullptr);
    EXPECT_TRUE(item->AddValue("", new Int("x")));
    EXPECT_EQ(tree.GetValueItem("/x"), item);
}

TEST(TreeLife, AnAutoDeleteValueGoesWithItsLastObserver)
{
    TreeLog log;
    BaseTree tree;
    tree.AddNode("/n");
    tree.SetAutoDeleteAtAddValue(true); // the nodes that are there take it over
    tree.AddValue("/n/kept", new Int);
    tree.AddValue("/n/gone", new Int);
    ValueBase *const kept = tree.GetValue("/n/kept");
    IObserver *const observer = log.watch(kept, "kept");
    log.watch(tree.GetNode("/n"), "n");
    tree.DeleteNode("/n");
    EXPECT_THAT(log.take(), ElementsAre("kept 1", "n 18"));
    kept->DeleteObserver(observer);
    EXPECT_EQ(Tree::LastDeletedObjectName(), "/n/kept");
}

TEST(TreeLife, PathsOutliveTheTree)
{
    TreeLog log;
    QString path, last;
    {
        BaseTree tree;
        tree.AddValue("/n/m/v", new Int);
        ValueItem *const item = tree.GetValueItem("/n/m/v");
        log.watch(item->GetValue(), "=v");
        log.watch(tree.GetRoot(), "root");
        log.then["root 18"] = [&] { path = item->GetLastCompletePathName(); };
        log.then["=v 2"] = [&] { last = Tree::LastDeletedObjectName(); };
    }
    EXPECT_EQ(path, "/n/m/v");
    EXPECT_EQ(last, "/n/m/v");

    Node top("top");
    top.AddValue("a/b", new Int);
    EXPECT_EQ(top.GetPathName(), "");
    const TreeItem *const inner = top.GetChild("a")->AsNode()->GetChild("b");
    EXPECT_EQ(inner->GetPathName(), "/a/b"); // begins at the detached top
    EXPECT_EQ(inner->GetPathName_NoSlashForRoot(), "/a/b");
}

TEST(TreeDeath, DestroyingOnAWrongThreadEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto elsewhere = [](auto act) { std::thread(act).join(); };
    BaseTree tree;
    tree.AddValue("/n/v", new Int);
    EXPECT_DEATH(elsewhere([&] { tree.DeleteNode("/n"); }),
                 "VTTHREADING: Destructing node from non-main thread /n");
    EXPECT_DEATH(elsewhere([&] { delete tree.GetValueItem("/n/v"); }),
                 "VTTHREADING: Destructing value item from non-main thread ");
    Kelm::setUnloading(true);
    elsewhere([&] { tree.DeleteNode("/n"); });
    Kelm::setUnloading(false);
    EXPECT_EQ(tree.GetNode("/n"), nullptr);
}

} // namespace
