// Curves over frequency: points, lines, forms, and their value in the tree.
#include "platform/axis/axisdefinition.h"
#include "platform/base/krexception.h"
#include "quiettraces.h"
#include "valueclasses/changeroad.h"
#include "valueclasses/kfactorvalue.h"
#include "valueclasses/recordsamples.h"
#include "valueclasses/valuefactory.h"
#include "valueclasses/xml/xmlvaluebase.h"
#include "valueclasses/xmlvaluefactory.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <cmath>
#include <thread>

namespace {

using namespace values;
using namespace std::string_literals;
using ::testing::ElementsAre;
using Points = std::vector<KF>;
constexpr double kNone = KF::kNoMinimum;

KFactor curve()
{
    KFactor curve;
    curve.SetDescription("Loop");
    curve.Set({{2e6, 4, 1}, {1e6, 2, 1}, {2e6, 3, -1}});
    curve.SetMaxOffset(0.5);
    return curve;
}

KFactor curveOf(const Points &points)
{
    KFactor curve;
    curve.Set(points);
    return curve;
}

TEST(KFactors, KeepOnePointAFrequency)
{
    KFactor each = curve();
    EXPECT_EQ(each.GetList(), (Points{{1e6, 2, 1}, {2e6, 4, -1}}));
    each.Add(2e6, 3, 0);
    EXPECT_EQ(each, curve()) << "nothing larger, nothing smaller";
    for (const auto &[frequency, useMax, expected] : {std::tuple(0.9e6, true, 0.0),
                                                      {1e6, false, 2.0},
                                                      {1.5e6, true, 3.0},
                                                      {1.5e6, false, 0.0},
                                                      {2.1e6, true, 0.0}})
        EXPECT_EQ(each.GetKFactor4Frequency(frequency, nullptr, useMax), expected) << frequency;
    EXPECT_EQ(each.GetMidValue(), 3.0);
    EXPECT_THAT(each.GetBasePoints(1e6, 3e6), ElementsAre(2e6));
    EXPECT_EQ(each.NextFrequency(1e6), 2e6);
    EXPECT_EQ(each.NextFrequency(2e6), 0.0);
    EXPECT_EQ(each.GetYRange(), KFactor::Range(2.5, 4.5));
    each.SetUseMin(true);
    EXPECT_EQ(each.GetYRange(), KFactor::Range(-1, 4.5));
    EXPECT_TRUE(each.InsertAt(1.5e6));
    EXPECT_FALSE(each.InsertAt(1.5e6));
    EXPECT_EQ(each.GetList()[1], (KF{1.5e6, 3, 0}));
    EXPECT_EQ(each.GetMaxOffset(), 0.0) << "a new point drops the offsets";
    for (const KF &broken : {KF{NAN, 1}, KF{1, INFINITY}, KF{1, 1, NAN}})
        EXPECT_THROW(each.Add(broken), KRException);
    for (const double offset : {double(NAN), -double(INFINITY)}) {
        EXPECT_THROW(each.SetMaxOffset(offset), KRException);
        EXPECT_THROW(each.SetMinOffset(offset), KRException);
    }
    EXPECT_THROW(each.fromVector({1, 2, 3}, false), KRException);
    EXPECT_EQ(each.toVector(true, false).size(), 9U);
    each.Set(each.GetList());
    each.Add(each.GetList());
    EXPECT_EQ(each.GetList().size(), 3U) << "set to what it holds";
    each.SetMaxOffset(1);
    each.Reduce(2);
    each.Set({});
    EXPECT_EQ(each.GetMaxOffset() + each.GetReducedFrame(), 1) << "as with points";
    each = curveOf({{1, 0, kNone}, {2, 0, kNone}, {3, 1, kNone}, {4, 0, kNone}, {5, 0, 2}});
    each.Trim();
    EXPECT_EQ(each.GetXRange(), KFactor::Range(2, 5));
    EXPECT_FALSE(KFactor().valid() || curveOf({{1, 1, kNone}}).valid());
}

TEST(KFactors, AreAddedAndSubtracted)
{
    const KFactor empty, point = curveOf({{1, 1, kNone}});
    const KFactor low = curveOf({{1, 1, -1}, {3, 3, -3}}), high = curveOf({{2, 10, 0}, {4, 30, 0}});
    struct Row {
        const char *name;
        KFactor left, right;
        Points sum, difference;
    } const rows[] = {
        {"none", empty, point, {}, {}},
        {"the other one", point, high, high.GetList(), high.GetList()},
        {"nothing to add", low, point, low.GetList(), low.GetList()},
        {"overlapping",
         low,
         high,
         {{1, 1, -1}, {2, 12, kNone}, {3, 23, -3}, {4, 30, kNone}},
         {{1, 1, -1}, {2, -8, kNone}, {3, -17, -3}, {4, -30, kNone}}},
        {"itself", low, low, {{1, 2, -1}, {3, 6, -3}}, {{1, 0, -1}, {3, 0, -3}}},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        KFactor sum = row.left, difference = row.left;
        sum += row.right;
        difference -= row.right;
        EXPECT_EQ(sum.GetList(), row.sum);
        EXPECT_EQ(difference.GetList(), row.difference);
    }
    KFactor left = curve(), right = high;
    left.SetTransducerName("A");
    right.SetTransducerName("B");
    right.SetDescription("Cable");
    KFactor sum = empty;
    sum += left;
    EXPECT_TRUE(sum.IsSame(left)) << "the name unchanged";
    sum -= right;
    EXPECT_EQ(sum.GetTransducerName(), "A - B");
    EXPECT_EQ(sum.GetDescription(), "Loop - Cable");
    EXPECT_EQ(sum.GetMaxOffset(), 0.0);
    sum += sum;
    EXPECT_EQ(sum.GetDescription(), "Loop - Cable + Loop - Cable");
}

TEST(KFactors, AreDrawnPixelByPixel)
{
    KFactor each = curveOf({{20, 1, -1}, {34, 5, -2}, {66, 3, -9}});
    axisDefinition axis, other;
    ASSERT_EQ(axis.init(0, 80, 4), 0);
    ASSERT_EQ(other.init(0, 80, 2), 0);
    each.SetMaxOffset(1);
    EXPECT_THAT(each.GetCalculatedLineFor(axis, true), ElementsAre(0, 6, 5, 4))
        << "outside, the highest, between two, the last";
    EXPECT_THAT(each.GetCalculatedLineFor(axis, false), ElementsAre(0, -2, -5.5, -9));
    EXPECT_EQ(each.GetMaxPixelLineFor(axis), each.GetCalculatedLineFor(axis, true));
    const KFactor copy = each;
    each.SetMaxOffset(2);
    EXPECT_EQ(each.GetMaxPixelLineFor(axis)[1], 7) << "not the line kept before";
    EXPECT_EQ(each.GetMaxPixelLineFor(other).size(), 2U);
    EXPECT_EQ(KFactor(copy).GetMaxPixelLineFor(axis)[1], 6);
    EXPECT_THAT(each.GetPixOffsetVector(axis), ElementsAre(1, 1, 3));
    EXPECT_EQ(each.GetPolygonVector(false)[2], QPointF(66, -9));
    EXPECT_TRUE(each.GetCalculatedLineFor(axisDefinition(), true).empty());
    for (const int pixels : {40000, 0, -65530})
        EXPECT_TRUE(each.GetCalculatedLineFor(0, 1, pixels, true).empty()) << pixels;
    EXPECT_EQ(curveOf({{1e6, 7, kNone}}).GetCalculatedLineFor(0, 2000, 2, true)[1], 7);

    each = curveOf({{0, 0, kNone}, {40, 2, kNone}, {80, 4, kNone}});
    each.SetUseSmooth(true);
    const std::vector<double> line = each.GetCalculatedLineFor(axis, true);
    for (std::size_t pixel = 0; pixel < line.size(); ++pixel)
        EXPECT_NEAR(line[pixel], double(pixel) + 0.5, 1e-12) << "a straight line stays one";
    each = curveOf({{0, 0, kNone}, {40, 6, 3}, {80, 0, kNone}});
    each.SetUseSmooth(true);
    EXPECT_NEAR(each.GetCalculatedLineFor(other, true)[1], 2.75, 1e-12);
    EXPECT_THAT(each.GetCalculatedLineFor(other, false), ElementsAre(3, 3)) << "the only minimum";
    EXPECT_THAT(KFactor().GetCalculatedLineFor(axis, true), ElementsAre(0, 0, 0, 0));
}

TEST(KFactors, AreEditedByTheirReducedPoints)
{
    KFactor each =
        curveOf({{1, 1, 9}, {2, 2, 8}, {3, 7, 7}, {4, 4, 6}, {5, 5, 5}, {6, 6, 4}, {7, 0, kNone}});
    each.Reduce(3);
    EXPECT_EQ(each.Reduced(), (Points{{1, 1, 9}, {3, 7, 6}, {6, 6, 4}, {7, 0, kNone}}));
    EXPECT_EQ(each.ReducedChangeIndex(), -1);
    EXPECT_TRUE(each.insertReduced(0));
    EXPECT_EQ(each.Reduced()[1], (KF{2, 4, 7.5}));
    EXPECT_TRUE(each.removeReduced(2));
    EXPECT_TRUE(each.setReduced(1, KFactor::ReducedFrequency, 5.5));
    EXPECT_TRUE(each.setReduced(1, KFactor::ReducedMinimum, -1));
    EXPECT_EQ(each.ReducedChangeIndex(), 1);
    EXPECT_EQ(each.GetReducedIndex(5), 1);
    const Points edited = each.Reduced();
    EXPECT_EQ(edited, (Points{{1, 1, 9}, {5.5, 4, -1}, {6, 6, 4}, {7, 0, kNone}}));
    for (const auto &[index, field, value] : {std::tuple(1, 0, 6.0),
                                              {1, 0, 1.0},
                                              {4, 1, 1.0},
                                              {-1, 1, 1.0},
                                              {1, 3, 1.0},
                                              {1, 1, double(NAN)}})
        EXPECT_FALSE(each.setReduced(index, field, value)) << index << ' ' << field;
    EXPECT_FALSE(each.insertReduced(3) || each.insertReduced(-1) || each.removeReduced(4));
    EXPECT_EQ(each.Reduced(), edited);
    EXPECT_EQ(each.GetList().size(), 7U) << "until it is saved";
    const QTemporaryDir folder;
    ASSERT_EQ(each.SaveToFile(folder.filePath("a")), 0);
    EXPECT_EQ(each.GetList(), edited);
    EXPECT_EQ(each.GetReducedFrame(), 1);
    each.removeReduced(0);
    each.Add(9, 9);
    EXPECT_EQ(each.Reduced(), each.GetList()) << "a new point drops the edits";
}

TEST(KFactors, AreSavedWithTheirOffsetsAndLoseMinima)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath("loop.csv");
    KFactor each = curve();
    ASSERT_EQ(each.SaveToFile(name), 0);
    EXPECT_EQ(each.GetFileName(), name);
    EXPECT_EQ(each.GetMaxOffset(), 0.0);
    KFactor loaded;
    EXPECT_EQ(loaded.LoadFromFile(name), 0);
    EXPECT_EQ(loaded.toVector(), (std::vector<double>{1e6, 2e6, 2.5, 4.5}));
    EXPECT_EQ(loaded.GetTransducerName(), "LimitLine");
    EXPECT_EQ(FormatKFactor::GetString(each),
              "Transducer Name;LimitLine\nDescription;LimitTine\nUnit;dBuV\n"
              "1;1.000000;2.50\n2;2.000000;4.50\n");
    each.SetUseMin(true);
    EXPECT_TRUE(
        FormatKFactor::GetString(each).contains("MinMax\nUnit;dBuV\n1;1.000000;2.50;1.00\n"));
    EXPECT_FALSE(FormatKFactor::GetValue(FormatKFactor::GetString(each)).valid());
    for (const char *text : {"1;abc;3\n1;nan;3\n1;1;inf\n\n1;1;1", "Unit;dBuV", " "})
        EXPECT_THROW(FormatKFactor::GetValue(text), KRException) << text;
    const KFactor odd = FormatKFactor::GetValue("Description; x \r\n \r\nx\n1; 1 ;2 \r\n\r\n1;3;4");
    EXPECT_EQ(odd.GetDescription(), " x ");
    EXPECT_EQ(odd.GetList(), (Points{{1e6, 2, kNone}})) << "only an empty line ends it";
    EXPECT_TRUE(FormatKFactor::GetValue("").GetList().empty());
    const QuietTraces quiet;
    EXPECT_EQ(loaded.LoadFromFile(folder.filePath("none")), -1);
    EXPECT_EQ(loaded.LoadFromFile(folder.path()), -1);
    EXPECT_EQ(loaded.LoadFromFile("/proc/self/mem"), -1) << "an error while it is read";
    EXPECT_EQ(loaded.SaveToFile(folder.filePath("no/folder")), -1);
    KFactor high = curveOf({{1e6, 1e308, kNone}});
    high.SetMaxOffset(1e308);
    EXPECT_EQ(high.SaveToFile(name), -1);
    EXPECT_EQ(loaded.LoadFromFile(name), 0) << "the old file";
    EXPECT_EQ(loaded.GetList().size(), 2U);
}

TEST(KFactors, WriteTheirImage)
{
    const auto image = [](int frame, double offset = 0.5) {
        return "\x04\0\0\0L\0o\0o\0p\0"s + raw(offset) + raw(0.0) + raw(frame) + "\0\0"s + raw(6) +
               raw(1e6) + raw(2e6) + raw(2.0) + raw(4.0) + raw(1.0) + raw(-1.0) + ';';
    };
    EXPECT_EQ(StreamFormat<KFactor>::ToStream(curve(), 0), image(1));
    const std::string endless = image(1, INFINITY);
    const char *start = endless.data();
    const Kelm::ReadScope whole(start, endless.size());
    EXPECT_THROW(Kelm::fromCharStream<KFactor>(&start), KRException);
    for (const int frame : {1, 2, 0x7FFFFFFF, -5}) {
        const std::string bytes = image(frame);
        for (std::size_t size = 0; size <= bytes.size(); ++size) {
            const char *pos = bytes.data();
            const Kelm::ReadScope scope(pos, size);
            if (size < bytes.size()) {
                EXPECT_THROW(Kelm::fromCharStream<KFactor>(&pos), KRException) << size;
                continue;
            }
            const KFactor read = Kelm::fromCharStream<KFactor>(&pos);
            EXPECT_EQ(read.GetReducedFrame(), std::max(frame, 1));
            EXPECT_EQ(read.Reduced().size(), 2U);
        }
    }
}

std::unique_ptr<ValueKFactor> makeValue() { return std::make_unique<ValueKFactor>("k", curve()); }

#define SET(...) [](V &v, IObserver *on) { v.__VA_ARGS__; }

TEST(ValueKFactor, GoesTheRoadOfAChange)
{
    using V = ValueKFactor;
    const RoadRow<V> rows[] = {
        {"value", SET(SetValue(curveOf({{1, 2, 3}}), on)), {CC_VALUE}},
        {"text", SET(SetStringValue("1;2;3", on)), {CC_VALUE}},
        {"point", SET(Add(3e6, 1, kNone, on)), {CC_VALUE}},
        {"description", SET(SetDescription("Cable", on)), {CC_VALUE}},
        {"offset", SET(SetMaxOffset(1, on)), {CC_VALUE}},
        {"minima", SET(SetUseMin(true, on)), {CC_VALUE}},
        {"frame", SET(Reduce(2, on)), {CC_VALUE}},
        {"vector", SET(fromVector({1, 2, 3, 4}, false, on)), {CC_VALUE}},
    };
    for (const RoadRow<V> &row : rows)
        checkRoad(row, makeValue);
    checkRoad<KFactorPure>(
        {"pure", [](KFactorPure &pure, IObserver *on) { pure.SetValue(curve(), on); }, {CC_VALUE}},
        [] { return std::make_unique<KFactorPure>(); });
}

TEST(ValueKFactor, UndoesWhatNoStringHolds)
{
    UndoOnce undo;
    const auto value = makeValue();
    value->SetUndoManager(&undo);
    Recorder recorder(*value, ModeBinary);
    value->SetTransducerName("HL 1", nullptr);
    value->setReduced(0, KFactor::ReducedValue, 8, nullptr);
    EXPECT_EQ(recorder.codes, (std::vector<int>{CC_VALUE, CC_VALUE}));
    *value += curveOf({{1e6, 1, kNone}, {3e6, 2, kNone}});
    EXPECT_EQ(value->GetTransducerName(), "HL 1 + ");
    undo.undoAll();
    EXPECT_TRUE(value->GetCurve().IsSame(curve()));
    value->SetTransducerName("HL 2", nullptr);
    recorder.codes.clear();
    value->SetCommandString(value->GetObjectStateStringForTransmission(0), nullptr, 0);
    EXPECT_EQ(value->GetTransducerName(), "HL 2") << "the string doesn't hold it";
    EXPECT_TRUE(recorder.codes.empty());
    ValueKFactor other("k", curveOf({{1, 2, 3}}));
    value->SetCommandString(other.GetObjectStateStringForTransmission(0), nullptr, 0);
    EXPECT_TRUE(value->Compare(&other));
    EXPECT_EQ(value->GetTransducerName(), "HL 2");
    EXPECT_THROW(value->SetStringValue("no curve", nullptr), KRException);
    EXPECT_TRUE(value->Compare(&other));
    value->SetUndoManager(nullptr);
}

void expectSame(const KFactor &read, const KFactor &kept)
{
    EXPECT_TRUE(read.IsSame(kept))
        << qPrintable(read.GetTransducerName() + read.GetFileName()) << read.ReducedChangeIndex();
}

TEST(ValueKFactor, IsKeptWholeInATreeFile)
{
    const QTemporaryDir folder;
    std::vector<KFactor> curves(6, curve());
    curves[1].SetTransducerName(" HL;1 ");
    ASSERT_EQ(curves[2].SaveToFile(folder.filePath("a\r")), 0);
    curves[3] = curves[2];
    EXPECT_TRUE(curves[3].setReduced(1, KFactor::ReducedValue, 9));
    curves[3].ResetReducedChangeIndex();
    curves[4].Reduce(2);
    EXPECT_TRUE(curves[4].removeReduced(1)); // the index is behind the last one now
    EXPECT_TRUE(curves[5].removeReduced(0) && curves[5].removeReduced(0));
    QDomDocument document;
    for (KFactor &kept : curves)
        for (const KFactor &before : curves) {
            SCOPED_TRACE(std::to_string(&kept - &curves[0]) + " onto " +
                         std::to_string(&before - &curves[0]));
            ValueKFactor value("k", kept), restored("k", before);
            const XmlValueBase &handler = XmlValueFactory::Instance().HandlerFor(value);
            QDomElement element = document.createElement("k");
            handler.ToXml(&value, element, document);
            Recorder recorder(restored, ModeBinary);
            handler.FromXml(&restored, element);
            expectSame(restored.GetCurve(), kept);
            EXPECT_EQ(recorder.codes.size(), before.IsSame(kept) ? 0U : 1U);
        }
    for (const KFactor &kept : curves) {
        KFactorPure value("k", kept), restored("k");
        const XmlValueBase &handler = XmlValueFactory::Instance().HandlerFor(value);
        QDomElement element = document.createElement("k");
        handler.ToXml(&value, element, document);
        handler.FromXml(&restored, element);
        expectSame(restored.GetValue(), kept);
    }
}

TEST(ValueKFactor, RefusesEditsThatNoEditingLeadsTo)
{
    const auto image = [](int changed, const Points &points) {
        std::string bytes = raw(changed) + raw(int(points.size()));
        for (const KF &point : points)
            bytes += raw(point.frequency) + raw(point.value) + raw(point.minimum);
        return bytes;
    };
    const Points two = {{1, 1, kNone}, {2, 2, 0}};
    const std::string good = image(2, two);
    const std::string images[] = {
        "",
        good + ';',
        good.substr(0, good.size() - 1),
        raw(0) + "\xFF\xFF\xFF\xFF"s + good,
        image(-2, two),
        image(3, two),
        image(0, {two[1], two[0]}),
        image(0, {two[0], two[0]}),
        image(0, {{NAN, 1, 1}}),
        image(0, {{1, INFINITY, 1}}),
        image(0, {{1, 1, NAN}}),
    };
    KFactor each = curve();
    each.RestoreEdits(good);
    EXPECT_EQ(each.Reduced(), two);
    EXPECT_EQ(each.GetEditsImage(), good);
    const auto value = makeValue();
    Recorder recorder(*value, ModeBinary);
    const XmlValueBase &handler = XmlValueFactory::Instance().HandlerFor(*value);
    ValueKFactor other("k", each);
    QDomDocument document;
    for (const std::string &bytes : images) {
        QDomElement element = document.createElement("k");
        handler.ToXml(&other, element, document);
        element.firstChildElement("Reduced").firstChild().setNodeValue(
            QByteArray::fromStdString(bytes).toBase64());
        EXPECT_THROW(handler.FromXml(value.get(), element), KRException);
        EXPECT_THROW(each.RestoreEdits(bytes), KRException);
    }
    EXPECT_TRUE(value->GetCurve().IsSame(curve()) && recorder.codes.empty());
    EXPECT_EQ(each.GetEditsImage(), good);
}

TEST(ValueKFactor, IsPostedWhole)
{
    const auto value = makeValue();
    Recorder recorder(*value, ModeBinary);
    const QuietTraces quiet;
    std::thread([&] {
        value->Add(KF{3e6, 1}, nullptr);
        EXPECT_TRUE(value->InsertAt(2.5e6, nullptr));
        EXPECT_THROW(value->Add(NAN, 1, kNone, nullptr), KRException) << "told at once";
        EXPECT_THROW(value->SetMaxOffset(NAN, nullptr), KRException);
    }).join();
    EXPECT_EQ(value->GetList().size(), 2U);
    QCoreApplication::sendPostedEvents();
    EXPECT_EQ(value->GetList().size(), 4U);
}

} // namespace
