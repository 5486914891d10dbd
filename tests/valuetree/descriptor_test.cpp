// Descriptors, the values that they make, and the factory behind them.
#include "platform/base/krexception.h"
#include "valueclasses/records/sequencekinds.h"
#include "valueclasses/valuedescriptor.h"
#include "valueclasses/valuefactory.h"
#include "valueclasses/valuenumericwithoffset.h"
#include "valueclasses/valueselection.h"
#include "valueclasses/valuestream.h"
#include "valueclasses/ytypedefinition.h"
#include "valuetree/treelog.h"

#include <gmock/gmock.h>

namespace {

using namespace values;
using ::testing::ElementsAre;

/// Each test begins and ends with an empty tree and no base path.
class Descriptors : public ::testing::Test {
protected:
    ~Descriptors() override
    {
        ValueDescriptor::SetBasePath("");
        Tree::Instance().GetRoot()->DeleteChildren();
    }
};

TEST_F(Descriptors, CreateMakesEachKindWithWhatWasDeclared)
{
    const ValueNumeric<int> intType;
    const ValueNumeric<std::int64_t> longType;
    const ValueNumeric<double> floatType;
    const ValueNumericWithOffset<double> offsetType;
    const ValueStream<double> streamType; // shares its number with another kind
    const ValueSelection selectionType;
    const SelItemDesc items[] = {{L"off", 0, 1}, {L"on", 1, 2}};
    const ValueDescriptor plain("plain", "/D", &intType, "5"),
        fromZero("fromZero", "/D", &intType, "50", 0, 10), // a minimum, not a null list of items
        number("number", "/D", &longType, "7", -10, 10, 2),
        real("real", "/D", &floatType, "1.5", 1, 3),
        shifted("shifted", "/D", &offsetType, "4", -5, 5, 0),
        choice("choice", "/D", &selectionType, "on", items, 2), stream("stream", "/D", &streamType);
    const ValueDescriptor *const all[] = {&plain,   &fromZero, &number, &real,
                                          &shifted, &choice,   &stream};
    TreeLog log;
    ValueDescriptor::SetBasePath("/Base");
    ValueDescriptor::AddValues(all, 0, nullptr);
    EXPECT_EQ(Tree::Instance().GetNode("/Base"), nullptr);
    ValueDescriptor::AddValues(all, 7, nullptr);

    std::string text;
    Tree::Instance().GetNode("/Base/D")->AddTreeString(text, 0, 0);
    EXPECT_EQ(text, "/D\n"
                    "\t/plain = 5 (NumericInt: Min=0, Max=2147483647, Step=1, Unit=, Basis=0)\n"
                    "\t/fromZero = 10 (NumericInt: Min=0, Max=10, Step=1, Unit=, Basis=0)\n"
                    "\t/number = 7 ( *** unknown type *** )\n"
                    "\t/real = 1.500000 (NumericFloat: Min=1, Max=3, Step=1, Unit=, Basis=0)\n"
                    "\t/shifted = 4.000000 (NumericFloatWithOffset: Offset=0 Min=-5, Max=5, "
                    "Step=0, Unit=, Basis=0)\n"
                    "\t/choice = on (Selection: [ off/0/1 on/1/2 ] )\n"
                    "\t/stream =  ( *** unknown type *** )\n");
    auto *const whole =
        dynamic_cast<ValueNumeric<std::int64_t> *>(Tree::Instance().GetValue("/Base/D/number"));
    ASSERT_NE(whole, nullptr);
    EXPECT_THAT((std::array{whole->GetMin(), whole->GetMax(), whole->GetStep()}),
                ElementsAre(-10, 10, 2));
    EXPECT_EQ(Tree::Instance().GetValue("/Base/D/stream")->GetTypeName(), "ValueStreamDouble");
    EXPECT_EQ(whole->GetValueDescriptor(), &number);

    // What is there stays as it is, and gets the observer.
    whole->SetMinMax(0, 1, 1, nullptr);
    TreeLog::Watcher observer(log, "seen");
    EXPECT_EQ(number.Create(&observer), whole);
    EXPECT_EQ(whole->GetMax(), 1);
    whole->SetValue(1, nullptr);
    EXPECT_THAT(log.take(), ElementsAre("seen 3"));
    whole->DeleteObserver(&observer);
}

TEST_F(Descriptors, OneOfANodeMakesThatAlone)
{
    const ValueDescriptor node("key", "/N/M");
    EXPECT_EQ(node.PathName(), "key");
    EXPECT_EQ(node.Create(nullptr), nullptr);
    EXPECT_EQ(names(Tree::Instance()), "/\n\t/N\n\t\t/M\n");
    TreeLog log;
    TreeLog::Watcher observer(log, "M");
    ValueDescriptor::SetBasePath("/N");
    Node *const there = ValueDescriptor::CreateNode("/M", &observer);
    EXPECT_EQ(there, Tree::Instance().GetNode("/N/M"));
    there->AddValue("v", new Int);
    EXPECT_THAT(log.take(), ElementsAre("M 16"));
    there->DeleteObserver(&observer);
    EXPECT_EQ(ValueDescriptor::CreateNode(nullptr), Tree::Instance().GetNode("/N"));
    EXPECT_THROW(ValueDescriptor::CreateNodeAbsolute("/N/M/v", nullptr), KRException);
    const ValueDescriptor clash("M", "", nullptr), inTheWay("x", "/M/v", nullptr);
    EXPECT_EQ(clash.Create(nullptr), nullptr);
    EXPECT_EQ(inTheWay.Create(nullptr), nullptr);
}

TEST_F(Descriptors, TheFirstOneKeepsTheKeyAndTakesItBack)
{
    const IValueDescriptorMap &map = ValueDescriptorMap::Instance();
    {
        const ValueDescriptor first("name", "/path", nullptr), second("name", "/path", nullptr);
        EXPECT_EQ(map.Find("/path/name"), &first);
        EXPECT_EQ(map.KeyOf(second), "/path/name");
    }
    EXPECT_EQ(map.Find("/path/name"), nullptr);
}

TEST_F(Descriptors, PrefixesOfUnits)
{
    const std::pair<int, double> rows[] = {{-9, 1e-9}, {-6, 1e-6}, {-3, 0.001}, {-2, 0.01},
                                           {-1, 0.1},  {0, 1},     {3, 1000},   {6, 1e6},
                                           {9, 1e9},   {4, 1}};
    QString prefixes;
    for (const auto &[basis, factor] : rows) {
        const ValueDescriptor descriptor("n", "/p", nullptr, "", 0, 1, 1, "Hz", basis);
        EXPECT_EQ(descriptor.ValueToBasis(3), 3 * factor) << basis;
        prefixes += ValueDescriptor::Basis(basis) + ' ';
    }
    EXPECT_EQ(prefixes, QString::fromUtf8("n \xC2\xB5 m c d  k M G 4 "));
    EXPECT_EQ(g_sKilo + g_s0, "k");
}

TEST(ValueFactory, MakesNothingOfWhatItDoesNotKnow)
{
    const ValueFactory &factory = ValueFactory::Instance();
    EXPECT_EQ(factory.CreateValue("NoSuchKind"), nullptr);
    EXPECT_EQ(factory.TypeForTypeName("NoSuchKind"), VTYPE_Unknown);
    EXPECT_EQ(factory.CreateValue(ValueType(999)), nullptr);
    EXPECT_FALSE(factory.IsRegistered(ValueType(999)));

    class Special : public Int {};
    EXPECT_EQ(factory.CloneValue(Special()), nullptr); // never a slice of it
}

TEST(YTypeDefinition, TellsTheDimensionsOfEachKind)
{
    struct {
        int type, count;
        bool isQdf;
        const char *waterfall;
        std::vector<int> levels;
    } const rows[] = {
        {107, 6, true, "Level,Azimuth,Elevation,Quality", {0, 7}},
        {110, 8, true, "Level,Azimuth,Elevation,Quality,Validity,Short Time Level", {0, 7}},
        {112,
         6,
         true,
         "Level,Validity,Short Time Level,Azimuth,Elevation,Quality,Field Strength",
         {0, 2, 6}},
        {111, 1, false, "Level", {0, 1, 3}},
        {109, 1, false, "", {}},
        {102, 1, false, "", {0, 1, 2, 3, 4, 5, 6, 7}},
        {99, 1, false, "", {}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.type);
        EXPECT_EQ(YTypeDefinition::GetDimensionCnt(row.type), row.count);
        EXPECT_EQ(YTypeDefinition::isQDFType(row.type), row.isQdf);
        EXPECT_EQ(YTypeDefinition::GetWaterfallDimensions(row.type).join(','), row.waterfall);
        std::vector<int> levels;
        for (int dimension = 0; dimension < 8; ++dimension)
            if (YTypeDefinition::IsLevelDimension(row.type, dimension))
                levels.push_back(dimension);
        EXPECT_EQ(levels, row.levels);
    }
    EXPECT_EQ(YTypeDefinition::GetDimensionString(-1, 0), "");
    EXPECT_EQ(YTypeDefinition::GetColorRoleIndex(-1, 0), 1);
    EXPECT_EQ(YTypeDefinition::GetColorRoleIndex(112, 5), 6);
    EXPECT_EQ(YTypeDefinition::GetColorRoleIndex(111, 2), 9);
}

} // namespace
