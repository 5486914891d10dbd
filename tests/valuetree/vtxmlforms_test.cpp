// Names, texts and numbers in tree documents: what XML can't bear, and what another kind takes.
#include "platform/base/xmlformat.h"
#include "valueclasses/valuefactory.h"
#include "valueclasses/valuenumeric.h"
#include "valueclasses/xml/xmltext.h"
#include "valuetree/vtxmltools.h"

#include <gmock/gmock.h>

#include <array>
#include <limits>

namespace {

using namespace values;

TEST(VtXmlForms, LosesNoTextAndNoNumber)
{
    const QString texts[] = {{},
                             " ",
                             "\t\n",
                             " a ",
                             "a\r\nb",
                             "]]>",
                             QString(QChar(0)),
                             QString(QChar(0xD800)),
                             "\u00E4\n",
                             "\u00A0", // a blank for Qt's DOM
                             "&",
                             "_x0041_",
                             QString(QChar(0xFFFE)),
                             QString::fromUtf8("\xF0\x9F\x98\x80")};
    const QString longest(7'000'000, QChar(1)); // has no place in an attribute
    const double numbers[] = {
        0.1 + 0.2, 1e-9, 1e300, 123456789.123456, std::numeric_limits<double>::infinity(), 5e-324};
    Node root, copy;
    for (const QString &text : texts)
        root.AddValue(root.GetUniqueChildName("t"), new Value<QString>("t", text));
    for (const double number : numbers)
        root.AddValue(root.GetUniqueChildName("n"), new Value<double>("n", number));
    root.AddValue("longest", new Value<QString>("longest", longest));
    const QString xml = VtXml::ToXml(&root);
    ASSERT_TRUE(VtXml::FromXml(&copy, xml)) << qPrintable(xml.left(4000));
    enable(copy);
    EXPECT_TRUE(copy.Compare(&root)) << qPrintable(VtXml::ToXml(&copy).left(4000));
    root.DeleteValue("longest");

    expectSameByElements(root);
    const QString shorter = VtXml::ToXml(&root);
    EXPECT_EQ(XmlFormat::Format(shorter), shorter);
}

/// What else may stand in an element is an editor's.
TEST(VtXmlForms, ReadsTheTextThatAnElementBeginsWithByEitherRoad)
{
    struct {
        const char *type, *inside, *value;
    } const rows[] = {
        {"ValueInt", "5<x/>", "5"},
        {"ValueInt", "5<!-- c -->6", "5"},
        {"ValueInt", "5<?p?>6", "5"},
        {"ValueInt", "<!-- c -->5", "0"},
        {"ValueInt", "<?p?>5", "0"},
        {"ValueInt", "\n  <x>7</x>5", "0"},
        {"ValueInt", "\n", "0"},
        {"ValueString", "\n  ", ""},
        {"ValueString", "&#32;", ""},
        {"ValueString", " a ", " a "},
        {"ValueString", " &lt;&#32;", " < "},
        {"ValueString", "<![CDATA[ ]]>", " "},
        {"ValueString", "\n<![CDATA[a]]]]>\n<![CDATA[>b]]>c\n", "a]]>bc\n"},
        {"ValueString", "a<![CDATA[b]]><x/>", "ab"},
        {"ValueString", "<x/><![CDATA[b]]>", ""},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string(row.type) + ' ' + row.inside);
        const QString xml = document(QStringLiteral("<n type=\"node\"><v type=\"value\"><Type>%1"
                                                    "</Type><Value>%2</Value></v></n>")
                                         .arg(row.type, row.inside));
        Node root;
        EXPECT_EQ(reasonOf(root, xml), "");
        const std::unique_ptr<Node> made(VtXml(xml).CreateNodeAt(0));
        for (const Node *const node : {root.GetNode("n"), made.get()}) {
            ASSERT_TRUE(node != nullptr && node->GetValue("v") != nullptr);
            EXPECT_EQ(node->GetValue("v")->GetStringValue(), row.value);
        }
    }
}

TEST(VtXmlForms, EscapesOnlyNamesThatNeedIt)
{
    const std::pair<const char *, const char *> names[] = {
        {"PLAIN-1.2_x", "PLAIN-1.2_x"},
        {"_a", "_a"},
        {"a b", "a_x0020_b"},
        {"1a1", "_x0031_a1"},
        {"-a", "_x002D_a"},
        {"a:b", "a_x003A_b"},
        {"_x0041_", "_x005F_x0041_"},
        {"_x004_", "_x004_"},
        {"a_x00e4_", "a_x00e4_"},
        {"_x005F_x0041_", "_x005F_x005F_x005F_x0041_"},
    };
    Node root, copy;
    for (const auto &[name, element] : names) {
        EXPECT_EQ(XmlTextForms::EncodeName(name), element);
        EXPECT_EQ(XmlTextForms::DecodeName(QString(element)), name);
        root.AddValue(name, new Int(name, 1));
        root.AddNode(QStringLiteral("node/%1").arg(name));
    }
    root.AddValue("ValueDescriptor", new Int("ValueDescriptor", 1));
    VtXml::FromXml(&copy, VtXml::ToXml(&root));
    enable(copy);
    EXPECT_TRUE(copy.Compare(&root));
}

/// A value may be of another scalar kind than it was when the file was made.
TEST(VtXmlForms, ReadsAScalarFromAnotherKind)
{
    struct {
        const char *from, *field, *into, *value;
    } const rows[] = {
        {"ValueFloat", "<Value>50.000000</Value>", "ValueInt", "50"},
        {"ValueFloat", "<Value exact=\"1.5e9\">0.1</Value>", "ValueInt", "1500000000"},
        {"ValueNumericFloat", "<Value>-2.600000</Value>", "ValueInt64", "-3"},
        {"ValueInt64", "<Value>9223372036854775807</Value>", "ValueInt64", "9223372036854775807"},
        {"ValueString", "<Value>9223372036854775807</Value>", "ValueInt64", "9223372036854775807"},
        {"ValueBoolean", "<Value>true</Value>", "ValueUInt", "1"},
        {"ValueBoolean", "<Value>true</Value>", "ValueNumericFloat", "1.000000"},
        {"ValueInt", "<Value>42</Value>", "ValueFloat", "42.000000"},
        {"ValueInt", "<Value>-1</Value>", "ValueBoolean", "true"},
        {"ValueFloat", "<Value>0.000000</Value>", "ValueBoolean", "false"},
        {"ValueFloat", "<Value exact=\"1e-09\">0.000000</Value>", "ValueString", "1e-09"},
        {"ValueString", "<Value exact=\"NwANAA==\"/>", "ValueInt", "7"}, // "7\r"
        {"ValueInt", "", "ValueString", ""},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string(row.from) + row.field + row.into);
        Node root;
        root.AddValue("v", ValueFactory::Instance().CreateValue(QString(row.into)));
        EXPECT_EQ(reasonOf(root, document(QStringLiteral("<v type=\"value\"><Type>%1</Type>%2</v>")
                                              .arg(row.from, row.field))),
                  "");
        EXPECT_EQ(root.GetValue("v")->GetStringValue(), row.value);
    }
    Node root; // a limit that is out of range is the last one there
    auto *const number = new ValueNumeric<int>("v", 5, 0, 10);
    root.AddValue("", number);
    VtXml::FromXml(&root,
                   document("<v type=\"value\"><Type>ValueNumericFloat</Type><Value>42.000000"
                            "</Value><Max exact=\"1e300\">0</Max><Min>-1.500000</Min></v>"));
    EXPECT_THAT((std::array{number->GetValue(), number->GetMax(), number->GetMin()}),
                testing::ElementsAre(42, std::numeric_limits<int>::max(), -2));
    for (const char *exact : {"9223372036854775806", "-9223372036854775807"}) // no double
        EXPECT_EQ(QString::number(XmlTextForms::ConvertedLimit<std::int64_t>(
                      VTYPE_ValueNumericFloat, {exact, QString(), true})),
                  exact);
}

} // namespace
