// Subtrees as XML texts: the document, what a round trip keeps, what is refused.
#include "platform/base/userquestion.h"
#include "quiettraces.h"
#include "valueclasses/ivaluedescriptormap.h"
#include "valueclasses/kfactorvalue.h"
#include "valueclasses/value_impl.h"
#include "valueclasses/valuefactory.h"
#include "valueclasses/valuelist.h"
#include "valueclasses/valuenumericwithoffset.h"
#include "valueclasses/valueselection.h"
#include "valueclasses/valuestream.h"
#include "valueclasses/valuevector.h"
#include "valuetree/everykind.h"
#include "valuetree/treelog.h"
#include "valuetree/vtfileversion.h"
#include "valuetree/vtxmltools.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>

namespace {

using namespace values;
using Number = ValueNumeric<double>;

const QString kGolden = QStringLiteral(R"(<!DOCTYPE Vt>
<Vt Version="1.0">
 <RECEIVER type="node">
  <FREQUENCY type="value">
   <Type>ValueNumericFloat</Type>
   <Value>50.000000</Value>
   <Max>100.000000</Max>
   <Min>0.000000</Min>
   <Step exact="1e-07">0.000000</Step>
  </FREQUENCY>
  <INNER_x0020_1 type="node">
   <TEXT type="value">
    <Type>ValueString</Type>
    <Value>a &lt; b &amp; "c" ä</Value>
   </TEXT>
   <_x0034_WIRE type="value">
    <Type>ValueBoolean</Type>
    <Value>true</Value>
   </_x0034_WIRE>
  </INNER_x0020_1>
  <MODE type="value">
   <Type>ValueSelection</Type>
   <CurrentSelection>FM</CurrentSelection>
   <SelectionItem>
    <Name>AM</Name>
    <Value>1.500000</Value>
    <Key>7</Key>
   </SelectionItem>
   <SelectionItem>
    <Name>FM</Name>
    <Value>0.000000</Value>
    <Key>-8</Key>
   </SelectionItem>
  </MODE>
 </RECEIVER>
</Vt>
)");

void fill(Node &root)
{
    root.AddValue("RECEIVER/FREQUENCY", new Number("FREQUENCY", 50, 0, 100, 1e-7));
    root.AddValue("RECEIVER/INNER 1/TEXT",
                  new Value<QString>("TEXT", QString::fromUtf8("a < b & \"c\" \xC3\xA4")));
    root.AddValue("RECEIVER/INNER 1/4WIRE", new Value<bool>("4WIRE", true));
    auto *const mode = new ValueSelection("MODE");
    mode->AddItem("AM", 1.5, Kelm::Long(7), nullptr);
    mode->AddItem("FM", 0, Kelm::Long(-8), nullptr);
    mode->Select(QStringLiteral("FM"), nullptr);
    root.AddValue("RECEIVER/MODE", mode);
}

TEST(VtXml, WritesTheDocumentByEitherRoad)
{
    Node root, copy;
    fill(root);
    QString golden = kGolden;
    golden.replace("\"c\"", "&quot;c&quot;");
    EXPECT_EQ(VtXml::ToXml(&root).toStdString(), golden.toStdString());
    VtXml single;
    single.AddNode(root.GetNode("RECEIVER"));
    EXPECT_EQ(single.GetString().toStdString(), golden.toStdString());

    EXPECT_TRUE(VtXml::FromXml(&copy, kGolden));
    EXPECT_EQ(copy.GetValue("RECEIVER/MODE")->GetState(), VS_DISABLED);
    enable(copy);
    EXPECT_TRUE(copy.Compare(&root));
    const std::unique_ptr<Node> made(VtXml(kGolden).CreateNodeAt(0));
    ASSERT_NE(made, nullptr);
    enable(*made);
    EXPECT_TRUE(made->Compare(root.GetNode("RECEIVER")));
    EXPECT_EQ(VtXml(kGolden).CreateNodeAt(1), nullptr);
    EXPECT_EQ(VtXml(kGolden).CreateNodeAt(-1), nullptr);
    EXPECT_EQ(VtXml(document("<v type=\"value\"><Type>ValueInt</Type></v>")).CreateNodeAt(0),
              nullptr);
}

QString traced; // by the check of asserts

TEST(VtXml, KeepsEveryKind)
{
    const QuietTraces quiet; // the changes below ask for what isn't there, too
    Node root, copy;
    for (int type = 0; type < 135; ++type)
        if (ValueFactory::Instance().IsRegistered(ValueType(type))) {
            ValueBase *const value = ValueFactory::Instance().CreateValue(ValueType(type));
            root.AddValue(QStringLiteral("K%1").arg(type), value);
        }
    Random random(1);
    forEachKind([&](const char *, const char *name, auto *value, auto change) {
        EXPECT_TRUE(root.AddValue(name, value));
        for (int i = 0; i < 4; ++i)
            change(*value, random);
    });
    auto *const outside = new ValueNumeric<int>("OUTSIDE", 50, 0, 100);
    outside->SetMax(20, nullptr);
    auto *const twins = new ValueSelection("TWINS");
    twins->AddItem("same", 1, Kelm::Long(1), nullptr);
    twins->AddItem("same", NAN, Kelm::Long(2), nullptr);
    twins->SelectIndex(Kelm::Long(1), nullptr);
    for (ValueBase *const value :
         {static_cast<ValueBase *>(outside), static_cast<ValueBase *>(twins)})
        EXPECT_TRUE(root.AddValue(QString(), value));

    const QuietTraces asserts(TraceAssertions); // files break no promise
    const auto handler = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { traced += text + '\n'; });
    expectSameByElements(root);
    const QString xml = VtXml::ToXml(&root);
    for (int round = 0; round < 2; ++round) { // into nothing, then into what is there
        VtXml::FromXml(&copy, xml);
        ASSERT_EQ(copy.GetChildrenCount(), root.GetChildrenCount());
        for (TreeItem *const item : root.GetTreeItems()) {
            const ValueBase *const value = item->AsValueItem()->GetValue();
            ValueBase *const other = copy.GetValue(item->GetName());
            ASSERT_NE(other, nullptr) << qPrintable(value->GetTypeName());
            EXPECT_EQ(other->GetState(), VS_DISABLED);
            other->SetState(VS_NORMAL, nullptr);
            EXPECT_TRUE(other->GetTypeName() == value->GetTypeName() && other->Compare(value))
                << qPrintable(value->GetTypeName());
        }
        const auto offsetIn = [](Node &node) {
            return dynamic_cast<ValueNumericWithOffset<double> &>(*node.GetValue("OFFSET"))
                .GetOffset();
        };
        EXPECT_EQ(offsetIn(copy), offsetIn(root));
        for (TreeItem *const item : copy.GetTreeItems())
            item->AsValueItem()->SetState(VS_DISABLED, nullptr); // reading sets no state
    }
    qInstallMessageHandler(handler);
    EXPECT_EQ(traced.toStdString(), "");
}

/// Prints a number in a way of its own, so that the value is of another class than its type says.
struct Hexadecimal {
    static QString GetString(int number) { return QString::number(number, 16); }
    static int GetValue(const QString &text) { return text.toInt(nullptr, 16); }
};

TEST(VtXml, LeavesOutAndRefusesAClassThatIsNotTheOneOfItsType)
{
    Node root;
    root.AddValue("plain", new Int("plain", 17));
    root.AddValue("hex", new Value<int, Hexadecimal, StreamFormat<int>>("hex", 17));
    class OtherName : public Int { // shares its number with another kind
        using Int::Int;
        QString GetTypeName() const override { return "Other"; }
    };
    root.AddValue("other", new OtherName("other", 17));
    const QString xml = VtXml::ToXml(&root);
    EXPECT_FALSE(xml.contains("hex") || xml.contains("other"));
    EXPECT_EQ(reasonOf(root, QString(xml).replace("plain", "hex")),
              "Value \"hex\": its class has no form for a ValueInt");
}

TEST(VtXml, RefusesAWholeDocumentForOnePart)
{
    const QString deep = QString("<n type=\"node\">").repeated(257) + QString("</n>").repeated(257);
    const QString far = QString("<n>").repeated(100000);
    const auto value = [](const char *name, const char *type, const char *fields) {
        return QStringLiteral("<%1 type=\"value\"><Type>%2</Type>%3</%1>").arg(name, type, fields);
    };
    const QString expected = "\". \"Vt\" is expected.";
    const std::pair<QString, QString> cases[] = {
        {"", "Parse error: "},
        {"<Vt/>", "No document type found. \"Vt\" is expected."},
        {"<!DOCTYPE a><Vt/>", "Wrong document type found: \"a" + expected},
        {"<!DOCTYPE Vt><a/>", "Wrong root element: \"a\" found. \"Vt\" is expected."},
        {"<!DOCTYPE Vt [<!ENTITY a \"b\">]><Vt Version=\"1.0\"/>",
         "Parse error: The document type"},
        {"<!DOCTYPE Vt SYSTEM \"<!--\"><Vt Version=\"1.0\"><a/></Vt>", "The document type"},
        {document("<a>"), "Parse error: "},
        {document("&a;"), "Parse error: "},
        {document(deep), "deeper than a tree may be"},
        {document(far), "deeper than a tree may be at line 1"},
        {document("<a/>\n<a" + QString(" b=''").repeated(33) + "/>"), "32 attributes at line 2"},
        {document("<a b='" + QString(1 << 24, 'x') + "y'/>"), "An attribute has more than"},
        {document(QString("<a/>").repeated(1 << 23)), "There are more than 8388608 elements"},
        {document(value("OLD", "ValueInt", "<Value>1x</Value>")), "\"1x\" is not a whole number"},
        {document(value("b", "ValueInt", "<Value>9999999999</Value>")), "not a whole number"},
        {document(value("b", "ValueBoolean", "<Value>yes</Value>")), "neither true nor false"},
        {document(value("b", "ValueNumericFloat", "<Max>x</Max>")), "Max: \"x\" is not a number"},
        {document(value("b", "ValueFloat", "<Value exact=\"?\">1</Value>")), "not a number"},
        {document(value("b", "ValueString", "<Value exact=\"YQ==\"/>")), "inside a character"},
        {document(value("b", "ValueString", "<Value exact=\"*\"/>")), "not base64"},
        {document(value("b", "ValueBuffer", "")), "\"State\" is missing"},
        {document(value("b", "ValueIntList", "<State>MjA7/w==</State>")), "Value \"b\": "},
        {document(value("b", "ValueSelection", "<SelectionItem><Key>a</Key></SelectionItem>")),
         "not a whole number"},
        {document("<OLD type=\"node\"/>"), "\"OLD\" is a node here"},
        {document(value("b", "ValueInt", "") + "<b type=\"node\"/>"), "\"b\" stands twice"},
        {document("<_x002F_ type=\"node\"/>"), "No item can have the name \"/\""},
        {document(value("OLD", "ValueIntList", "<State>AA==</State>")), "can't be read from"},
        {document(value("OLD", "ValueFloat", "<Value>3e9</Value>")), "out of the range"},
        {document(value("OLD", "ValueString", "<Value>x</Value>")), "\"x\" is not a number"},
    };
    Node root;
    root.AddValue("OLD", new Int("OLD", 7));
    for (const auto &[xml, reason] : cases) {
        QString text = xml;
        text.replace("Version=\"1.0\">", // what would change the tree comes first
                     "Version=\"1.0\"><NEW type=\"node\"/>");
        EXPECT_THAT(reasonOf(root, text).toStdString(), testing::HasSubstr(reason.toStdString()))
            << qPrintable(text.left(300));
        EXPECT_EQ(root.GetChildrenCount(), 1);
        EXPECT_EQ(root.GetValue("OLD")->GetStringValue(), "7");
    }
    EXPECT_THROW(VtXml(document(far)), KRException);
    EXPECT_THROW(VtXml(document(QString("<a/>").repeated(1 << 20))), KRException);
}

TEST(VtXml, ReadsIntoWhatIsThere)
{
    TreeLog log, deleting;
    Node root, second;
    fill(root);
    auto *const number = static_cast<Number *>(root.GetValue("RECEIVER/FREQUENCY"));
    number->SetMinMax(0, 10, 1, nullptr);
    number->SetValue(7, nullptr);
    log.watch(number, "f");
    log.watch(root.GetNode("RECEIVER"), "r");
    VtXml::FromXml(&root, kGolden);
    EXPECT_EQ(root.GetValue("RECEIVER/FREQUENCY"), number);
    EXPECT_EQ(number->GetValue(), 50);
    EXPECT_THAT(log.take(), testing::ElementsAre("f 4", "f 4", "f 3"));

    // New subtrees are told of when they stand; unknown kinds and elements are left out.
    const QString more = document("<RECEIVER type=\"node\"><A type=\"node\"><B type=\"node\"/>"
                                  "<V type=\"value\"><Type>ValueInt</Type><Value>3</Value></V></A>"
                                  "<x/>"
                                  "<X type=\"value\"><Type>Nonsense</Type></X></RECEIVER>");
    log.then["r 16"] = [&] { EXPECT_EQ(names(*root.GetNode("RECEIVER/A")), "/A\n\t/B\n\t/V\n"); };
    VtXml::FromXml(&root, more);
    EXPECT_THAT(log.take(), testing::ElementsAre("r 16"));
    EXPECT_EQ(root.GetValue("RECEIVER/X"), nullptr);
    root.AddValue("RECEIVER/X", new Int("X", 7));
    EXPECT_EQ(reasonOf(root, QString(more).replace(">3<", ">4<")), "");
    EXPECT_EQ(root.GetValue("RECEIVER/X")->GetStringValue(), "7");
    EXPECT_EQ(root.GetValue("RECEIVER/A/V")->GetStringValue(), "4");

    fill(second);
    auto *const victim = static_cast<Number *>(second.GetValue("RECEIVER/FREQUENCY"));
    victim->SetMinMax(0, 1, 1, nullptr);
    deleting.watch(victim, "v");
    deleting.then["v 4"] = [&] { second.DeleteChildren(); };
    VtXml::FromXml(&second, kGolden); // everything goes in the middle of a value
    EXPECT_EQ(second.GetChildrenCount(), 0);

    fill(second);
    ValueItem *const item = second.GetNode("RECEIVER")->GetChildValueItem("FREQUENCY");
    static_cast<Number *>(item->GetValue())->SetMinMax(0, 1, 1, nullptr);
    deleting.watch(item, "w");
    deleting.then["w 4"] = [&] { // another value takes its place, perhaps its address too
        deleting.then.clear();
        delete item->GetValue();
        item->AddValue("", new Number("FREQUENCY", 5, 0, 10));
        ValueItem *const mode = second.GetNode("RECEIVER")->GetChildValueItem("MODE");
        delete mode->GetValue(); // and one that the rest of the text doesn't fit
        mode->AddValue("", new Int("MODE", 3));
    };
    VtXml::FromXml(&second, kGolden);
    EXPECT_EQ(item->GetStringValue(), "5.000000");
    EXPECT_EQ(second.GetValue("RECEIVER/MODE")->GetStringValue(), "3");

    auto *const curve = new ValueKFactor("CURVE");
    curve->SetTransducerName("HL", nullptr);
    second.AddValue("", curve);
    VtXml::FromXml(&second, VtXml::ToXml(&second).remove("<Transducer>HL</Transducer>"));
    EXPECT_EQ(curve->GetTransducerName(), "HL"); // which the document doesn't name
}

class Versions final : public VtFileVersion {
public:
    QString GetVersion() const override { return "1.0"; }
    void FixVersionConflict(Node *node, const ValueDescriptor *) override
    {
        fixed.push_back(node->GetName().toStdString());
        if (repair)
            repair(*node);
    }
    std::vector<std::string> fixed;
    std::function<void(Node &)> repair;
};

class OneDescriptor final : public IValueDescriptorMap {
public:
    OneDescriptor() { SetInstance(this); }
    ~OneDescriptor() override { SetInstance(m_before); }
    const ValueDescriptor *Find(const QString &key) const override
    {
        return key == "KEY" ? descriptor : nullptr;
    }
    QString KeyOf(const ValueDescriptor &) const override { return "KEY"; }
    int storage = 0;
    const ValueDescriptor *const descriptor = reinterpret_cast<const ValueDescriptor *>(&storage);

private:
    IValueDescriptorMap *const m_before = Instance();
};

TEST(VtXml, AsksAboutOtherVersions)
{
    const OneDescriptor map;
    const QString item = "<n type=\"node\"><ValueDescriptor>KEY</ValueDescriptor>"
                         "<v type=\"value\"><Type>ValueInt</Type>"
                         "<ValueDescriptor>KEY</ValueDescriptor></v></n>";
    Node root;
    EXPECT_FALSE(VtXml::FromXml(&root, document(item, "0.9")));
    QString asked;
    {
        Versions handler;
        handler.AddValueDescriptor(map.descriptor);
        VtXml::SetVtFileVersion(&handler);
        EXPECT_FALSE(VtXml::FromXml(&root, document(item, "0.9"))); // nobody to ask
        UserQuestion::SetHandler([&](const QString &question) {
            asked = question;
            return handler.GetFileVersion() == "0.9" ? UserQuestion::Continue : UserQuestion::Abort;
        });
        EXPECT_FALSE(VtXml::FromXml(&root, "<!DOCTYPE Vt><Vt>" + item + "</Vt>"));
        EXPECT_EQ(handler.GetFileVersion(), "0.0");
        EXPECT_EQ(root.GetChildrenCount(), 0);
        EXPECT_TRUE(VtXml::FromXml(&root, document(item, "0.9")));
        EXPECT_TRUE(asked.startsWith("The application version doesn't match"));
        EXPECT_THAT(handler.fixed, testing::ElementsAre("n"));
        VtXml::FromXml(&root, document(item)); // once a node, though it has the descriptor already
        EXPECT_THAT(handler.fixed, testing::ElementsAre("n", "n"));
    }
    UserQuestion::SetHandler(nullptr);
    EXPECT_FALSE(VtXml::FromXml(&root, document(item, "0.9"))); // the handler is gone
    EXPECT_EQ(root.GetNode("n")->GetValueDescriptor(), map.descriptor);
    EXPECT_EQ(root.GetValue("n/v")->GetValueDescriptor(), map.descriptor);
    EXPECT_EQ(VtXml::ToXml(&root).count("<ValueDescriptor>KEY</ValueDescriptor>"), 2);
    root.GetNode("n")->SetValueDescriptor(nullptr, nullptr);
    root.GetValue("n/v")->SetValueDescriptor(nullptr);
}

/// Reads onto what a repair adds, and makes anew what it deletes.
TEST(VtXml, ReadsBehindARepair)
{
    const OneDescriptor map;
    const QString key = "<ValueDescriptor>KEY</ValueDescriptor>";
    const QString value = "<%1 type=\"value\"><Type>ValueInt</Type><Value>%2</Value></%1>";
    const QString xml =
        document("<N type=\"node\">" + key + value.arg("A").arg(42) + "<S type=\"node\">" + key +
                 value.arg("B").arg(43) + "</S>" + value.arg("C").arg(44) + "<T type=\"node\">" +
                 value.arg("D").arg(45) + "</T></N>");
    const auto add = [](Node &node) {
        if (node.GetName() == "S" || node.GetChild("A") != nullptr)
            return;
        node.AddValue("A", new Int("A", 7));
        node.AddValue("S/B", new Int("B", 8));
    };
    const auto remove = [](Node &node) {
        for (const char *const name : {"A", "B"})
            node.DeleteValue(name);
        delete node.GetNode("S");
    };
    const auto addBeside = [](Node &node) {
        if (node.GetName() != "S")
            return;
        node.GetParent()->AddValue("C", new Int("C", 7));
        node.GetParent()->AddNode("T/E");
    };
    const auto addAbove = [&](Node &node) { node.GetName() == "S" ? remove(node) : add(node); };
    struct {
        const char *name;
        std::function<void(Node &)> before, repair;
        TValueState a, b;
        TValueState c = VS_DISABLED;
    } const rows[] = {
        {"a new node is added to", {}, add, VS_NORMAL, VS_NORMAL},
        {"a new node is deleted from", {}, remove, VS_DISABLED, VS_DISABLED},
        {"both", {}, addAbove, VS_NORMAL, VS_DISABLED},
        {"what follows is added", {}, addBeside, VS_DISABLED, VS_DISABLED, VS_NORMAL},
        {"one that is there is added to", [](Node &) {}, add, VS_NORMAL, VS_NORMAL},
        {"one that is there is deleted from", add, remove, VS_DISABLED, VS_DISABLED},
        {"one that is there loses a grandchild", add, addAbove, VS_NORMAL, VS_DISABLED},
    };
    Versions handler;
    handler.AddValueDescriptor(map.descriptor);
    VtXml::SetVtFileVersion(&handler);
    for (const auto &row : rows)
        for (const bool viaElements : {false, true}) {
            if (viaElements && row.before)
                continue; // only makes new nodes
            SCOPED_TRACE(std::string(row.name) + (viaElements ? " via elements" : ""));
            Node root;
            if (row.before) {
                root.AddNode("N");
                row.before(*root.GetNode("N"));
            }
            handler.repair = row.repair;
            EXPECT_EQ(faultOf([&] {
                          if (viaElements)
                              root.AddNode("", VtXml(xml).CreateNodeAt(0));
                          else
                              VtXml::FromXml(&root, xml);
                      }).reason,
                      "");
            Node *const node = root.GetNode("N");
            ASSERT_TRUE(node != nullptr && node->GetNode("S") != nullptr);
            for (const auto &[path, text, state] : {std::tuple("A", "42", row.a),
                                                    {"S/B", "43", row.b},
                                                    {"C", "44", row.c},
                                                    {"T/D", "45", VS_DISABLED}}) {
                const ValueBase *const read = node->GetValue(path);
                ASSERT_NE(read, nullptr) << path;
                EXPECT_EQ(read->GetStringValue(), text) << path;
                EXPECT_EQ(read->GetState(), state) << path;
            }
            for (Node *const each : {node, node->GetNode("S")})
                each->SetValueDescriptor(nullptr, nullptr);
        }
}

TEST(VtXml, ARepairMayLeaveAnObserverWhoDeletes)
{
    struct Deleter : IObserver {
        void Update(Observable *subject, TChangeCode code) override
        {
            if (code == CC_CHILD_ADDED)
                delete dynamic_cast<Node &>(*subject).GetNode("S");
        }
    } deleter;
    const OneDescriptor map;
    Versions handler;
    handler.AddValueDescriptor(map.descriptor);
    handler.repair = [&](Node &node) {
        if (node.GetName() == "N")
            node.AddObserver(&deleter);
    };
    VtXml::SetVtFileVersion(&handler);
    const QString key = "<ValueDescriptor>KEY</ValueDescriptor>";
    Node root;
    VtXml::FromXml(&root, document("<N type=\"node\">" + key + "<S type=\"node\">" + key +
                                   "</S><T type=\"node\"/></N>"));
    Node *const node = root.GetNode("N");
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->GetNode("S"), nullptr);
    EXPECT_NE(node->GetNode("T"), nullptr);
    node->DeleteObserver(&deleter);
    delete node;

    handler.repair = [](Node &repaired) {
        delete &repaired;
        throw KRException("no", "", "", "", 0);
    };
    EXPECT_THROW(VtXml::FromXml(&root, document("<N type=\"node\">" + key + "</N>")), KRException);
    EXPECT_EQ(root.GetChildrenCount(), 0);
}

} // namespace
