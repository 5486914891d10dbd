// Copies, comparisons and text forms of items.
#include "platform/base/krexception.h"
#include "platform/startup/cfgcenter.h"
#include "valueclasses/valuedescriptor.h"
#include "valueclasses/valuenumericwithoffset.h"
#include "valueclasses/valueselection.h"
#include "valuetree/treelog.h"
#include "valuetree/treetocfg.h"

#include <QStandardPaths>
#include <gmock/gmock.h>

namespace {

using namespace values;

std::unique_ptr<Node> makeNode(std::initializer_list<std::pair<const char *, int>> values)
{
    auto node = std::make_unique<Node>("n");
    for (const auto &[path, number] : values)
        node->AddValue(path, new Int("v", number));
    return node;
}

TEST(TreeCopy, ComparesByNameAndContent)
{
    const auto node = makeNode({{"a", 1}, {"s/b", 2}});
    EXPECT_TRUE(node->Compare(makeNode({{"s/b", 2}, {"a", 1}}).get())); // in any order
    EXPECT_FALSE(node->Compare(nullptr));
    for (const auto &other :
         {makeNode({{"a", 1}}), makeNode({{"a", 1}, {"s/b", 3}}), makeNode({{"a", 1}, {"s", 2}}),
          makeNode({{"a/x", 1}, {"s/b", 2}}), makeNode({{"a", 1}, {"s/c", 2}})})
        EXPECT_FALSE(node->Compare(other.get())) << names(*other);
}

TEST(TreeCopy, CopiesAndMerges)
{
    const auto from = makeNode({{"a", 1}, {"s/b", 2}, {"s/c", 3}});
    Node copy;
    copy.AddValue("old", new Int);
    copy.Copy(from.get());
    EXPECT_TRUE(copy.Compare(from.get()));
    copy.Copy(copy.GetNode("s")); // which goes with the other children
    EXPECT_EQ(names(copy), "/s\n\t/b\n\t/c\n");

    const auto into = makeNode({{"s/b", 7}, {"a/x", 1}});
    into->Merge(from.get());
    EXPECT_EQ(names(*into), "/n\n\t/s\n\t\t/b\n\t\t/c\n\t/a\n\t\t/x\n");
    EXPECT_EQ(into->GetValue("s/b")->GetStringValue(), "7"); // what exists stays
    EXPECT_EQ(into->CopyChildNode(from->GetNode("s")), into->GetNode("s"));
    EXPECT_EQ(into->GetValue("s/b")->GetStringValue(), "2");
    const Node *const made = into->CopyChildNode(makeNode({}).get());
    EXPECT_EQ(made, into->GetNode("n"));

    EXPECT_EQ(into->GetUniqueChildName("item12"), "item00000");
    into->AddItemUnique(new Node("item7"));
    into->AddItemUnique(new Node("item7"));
    EXPECT_NE(into->GetNode("item00001"), nullptr);
    into->GetNode("item00000")->SetName("other", nullptr);
    EXPECT_EQ(into->GetUniqueChildName("item"), "item00000");
}

TEST(TreeText, PrintsForDiagnosis)
{
    BaseTree tree;
    auto *const number = new ValueNumeric<int>("n", 5, 0, 10);
    tree.AddValue("/a/n", number);
    tree.AddValue("/a/f", new ValueNumeric<double>("f", 0.5, 0, 1, 0.25));
    tree.AddValue("/a/o", new ValueNumericWithOffset<double>("o"));
    tree.AddValue("/a/t", new Value<QString>("t", QString("text")));
    tree.AddValue("/a/b", new Value<bool>("b", true));
    tree.AddValue("/a/i", new Int("i", 3));
    auto *const selection = new ValueSelection("s");
    selection->AddItem("x", 1.5, 7, nullptr);
    tree.AddValue("/a/s", selection);
    const ValueDescriptor unit("n", "/a", nullptr, "", 0, 10, 1, "Hz", 6);
    number->SetValueDescriptor(&unit);
    std::string full, kinds;
    tree.AddTreeString(full, 0, 0);
    tree.AddTreeString(kinds, 1, 1);
    EXPECT_EQ(full, "/\n\t/a\n"
                    "\t\t/n = 5 (NumericInt: Min=0, Max=10, Step=1, Unit=Hz, Basis=6)\n"
                    "\t\t/f = 0.500000 (NumericFloat: Min=0, Max=1, Step=0.25, Unit=, Basis=0)\n"
                    "\t\t/o = 0.000000 (NumericFloatWithOffset: Offset=0 Min=0, Max=1, Step=1, "
                    "Unit=, Basis=0)\n"
                    "\t\t/t = text (String)\n\t\t/b = true (ValueBoolean)\n"
                    "\t\t/i = 3 ( *** unknown type *** )\n"
                    "\t\t/s =  (Selection: [ x/1.5/7 ] )\n");
    EXPECT_EQ(kinds, "\t/\n\t\t/a\n\t\t\t/n(NumericInt)\n\t\t\t/f(NumericFloat)\n"
                     "\t\t\t/o(NumericFloatWithOffset)\n\t\t\t/t(String)\n\t\t\t/b(ValueBoolean)\n"
                     "\t\t\t/i( *** unknown type *** )\n\t\t\t/s(Selection)\n");
}

TEST(TreeText, GoesIntoAConfiguration)
{
    QStandardPaths::setTestModeEnabled(true);
    const auto node = makeNode({{"a", 1}, {"s/b", 2}, {"s/deep/c", 3}});
    const auto cfg = CfgCenter::CreateCfg("Xml:tree test", "User");
    const auto read = [&](const char *key) { return cfg->GetString(key, "-").toStdString(); };
    for (const char *key : {"a", "s/b", "s/deep/c"})
        cfg->Set(key, QVariant());
    TreeToCfg::ToCfg(node.get(), cfg.get(), true);
    EXPECT_EQ(read("a") + read("s/b"), "1-");
    TreeToCfg::ToCfg(node.get(), cfg.get(), false);
    EXPECT_EQ(read("a") + read("s/b") + read("s/deep/c"), "12-");
    TreeToCfg::ToCfg(node.get(), "tree test two", false);
    EXPECT_EQ(CfgCenter::CreateCfg("Xml:tree test two", "User")->GetString("s/b", "-"), "2");
    for (const char *name : {"Xml:../x", "Xml:", "Ini:x"})
        EXPECT_THROW(CfgCenter::CreateCfg(name, "User"), KRException) << name;
}

TEST(TreeText, StringFormsRoundTrip)
{
    TreeLog log;
    Node node("n");
    EXPECT_EQ(node.GetAsStdString(), "n;;");
    node.SetAsStdString("other;unknown;", nullptr);
    EXPECT_EQ(node.GetName(), "other");
    EXPECT_EQ(node.GetValueDescriptor(), nullptr);
    const ValueDescriptor descriptor("key", "");
    node.SetAsStdString("other;key;", nullptr);
    EXPECT_EQ(node.GetValueDescriptor(), &descriptor);
    EXPECT_EQ(node.GetAsStdString(), "other;key;");

    ValueItem from(new ValueNumeric<int>("v", 5, 0, 10)), to;
    EXPECT_EQ(from.GetAsStdString(), "v;6,;1;0;7;VdStr;2;;20;5;21;0;22;10;23;1;20;5;;");
    log.watch(&to, "to");
    to.SetAsStdString(from.GetAsStdString(), nullptr);
    ASSERT_NE(to.GetValue(), nullptr);
    EXPECT_EQ(to.GetAsStdString(), from.GetAsStdString());
    EXPECT_FALSE(log.take().empty());
    EXPECT_EQ(ValueItem().GetAsStdString(), "");

    ValueItem disabled;
    disabled.SetAsStdString("v;2,;;", nullptr);
    EXPECT_EQ(disabled.GetState(), VS_DISABLED);
}

TEST(TreeText, MalformedFormsChangeNothing)
{
    using namespace std::string_view_literals;
    ValueItem item(new Int("v", 1)), empty;
    for (const auto text : {"v"sv, "v;2"sv, "v;2,"sv, ";2,;20;5;;"sv, "v;x,;20;5;;"sv, "v;999,;;"sv,
                            "v;2,;20;5"sv, "v;2,;20;5;99;;"sv, ""sv}) {
        EXPECT_THROW(empty.SetAsStdString(text, nullptr), KRException) << text;
        EXPECT_EQ(empty.GetValue(), nullptr);
        EXPECT_THROW(item.SetAsStdString(text, nullptr), KRException) << text;
        EXPECT_EQ(item.GetStringValue(), "1");
    }
    EXPECT_THROW(item.SetAsStdString("v;3,;20;5;;", nullptr), KRException); // another type
    Node node("n");
    for (const auto text : {"x"sv, "x;key"sv, ";key"sv, ""sv}) {
        EXPECT_THROW(node.SetAsStdString(text, nullptr), KRException) << text;
        EXPECT_EQ(node.GetName(), "n");
    }
    node.SetAsStdString(Node().GetAsStdString(), nullptr);
    EXPECT_EQ(node.GetName(), "n") << "a node without a name has none to give";
}

} // namespace
