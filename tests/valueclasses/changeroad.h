#pragma once

#include "platform/base/krexception.h"
#include "quiettraces.h"
#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/testvalue.h"
#include "valueclasses/undo/undomanager.h"

#include <QCoreApplication>
#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <thread>

/// One harness for the road that every change of a value goes.
namespace values {

/// An undo manager with one open stack.
class UndoOnce : public UndoManager {
public:
    UndoOnce() : UndoManager(1) { OpenNewUndoStack("all"); }
    void undoAll()
    {
        FinishCurrentUndoStack();
        ExecuteUndoStacks(1);
    }
};

/// Collects what a value records, in one mode, and the codes that it notifies.
class Recorder : public IObserver {
public:
    Recorder(ValueBase &value, int mode) : m_value(value), m_mode(unsigned(mode))
    {
        value.CommandRecordingOn();
        value.CommandRecordingOnForTransmission();
        value.AddObserver(this);
    }
    ~Recorder() override { m_value.DeleteObserver(this); }
    void Update(Observable * /*subject*/, TChangeCode code) override
    {
        codes.push_back(code);
        fetch();
    }
    void fetch()
    {
        recorded += m_value.GetCommandStringForRecording(m_mode);
        transmitted += m_value.GetCommandStringForTransmission(m_mode);
    }

    std::vector<int> codes;
    std::string recorded, transmitted;

private:
    ValueBase &m_value;
    unsigned m_mode;
};

/// A change, and what it leaves.
struct RoadCase {
    enum Trait : unsigned {
        Loud = 1,            // an equal one is a change, too
        NoUndo = 2,          // never, or nothing to put back
        LossyText = 4,       // text mode doesn't bring it back
        EndsSuppression = 8, // it calls HasChanged, which a transaction doesn't hold back
        NotCompared = 16,    // Compare doesn't look at it
        NoSource = 32,       // it can't name who makes it
    };
    using Make = std::function<std::unique_ptr<ValueBase>()>;

    std::string name;
    Make make; ///< what stands before the change
    std::function<void(ValueBase &, IObserver *)> set;
    std::vector<int> codes;
    unsigned traits = 0;
    std::string text{}, binary{}, tagged{}; ///< recorded in modes -1, 0, -2; empty: anything
    Make fresh{};                           ///< what gets the object state; \a make when empty

    bool is(Trait trait) const { return (traits & trait) != 0; }
    const std::string &form(int mode) const
    {
        return isTextMode(mode) ? text : isTaggedMode(mode) ? tagged : binary;
    }
};

inline void expectSame(const RoadCase &c, ValueBase &value, ValueBase &wanted)
{
    EXPECT_TRUE(value.Compare(&wanted));
    if (c.is(RoadCase::NotCompared)) {
        EXPECT_EQ(value.GetObjectStateStringForTransmission(0),
                  wanted.GetObjectStateStringForTransmission(0));
    }
}

/// Recorded commands (text mode), and what is left of them when the value reduces them.
inline void expectOptimized(ValueBase &value,
                            std::initializer_list<std::pair<const char *, const char *>> rows)
{
    for (const auto &[recorded, left] : rows) {
        std::vector<std::unique_ptr<KELM::ICommand>> parsed;
        value.SetCommandString(recorded, parsed, nullptr, ModeText);
        CommandList list;
        for (auto &command : parsed)
            list.emplace_back(dynamic_cast<Command *>(command.release()));
        value.OptimizeCommandList(list);
        EXPECT_EQ(ValueBase::CreateCommandString(list, unsigned(ModeText)), left) << recorded;
    }
}

/// A string that ends early is refused, unless it ends between two commands; one with another last
/// byte always is.
inline void expectEarlyEndsRefused(ValueBase &value, const std::string &whole, int mode)
{
    for (std::size_t size = 1; size < whole.size(); ++size) {
        std::string prefix = whole.substr(0, size);
        prefix.shrink_to_fit(); // the address sanitizer sees a byte read behind the end
        std::vector<std::unique_ptr<KELM::ICommand>> parsed;
        try {
            value.SetCommandString(prefix, parsed, nullptr, mode);
        } catch (const KRException &) {
            EXPECT_TRUE(parsed.empty());
            continue;
        }
        std::string again;
        for (const auto &command : parsed)
            dynamic_cast<Command &>(*command).AddCommandString(again, mode);
        EXPECT_EQ(again, prefix);
    }
    std::vector<std::unique_ptr<KELM::ICommand>> parsed;
    EXPECT_THROW(
        value.SetCommandString(whole.substr(0, whole.size() - 1) + '.', parsed, nullptr, mode),
        KRException);
}

/// Where it has to be recorded, a change on another thread waits for this one, whole.
inline void checkForeignRoad(const RoadCase &c)
{
    const auto before = c.make(), value = c.make(), wanted = c.make();
    Recorder recorder(*value, ModeBinary);
    const QuietTraces quiet;
    std::thread([&] { c.set(*value, nullptr); }).join();
    EXPECT_TRUE(recorder.codes.empty());
    expectSame(c, *value, *before);
    QCoreApplication::processEvents();
    c.set(*wanted, nullptr);
    expectSame(c, *value, *wanted);
    EXPECT_EQ(recorder.codes, c.codes);
    EXPECT_FALSE(recorder.recorded.empty() && !c.codes.empty());
}

/// Records, sends, replays and repeats the change in one mode.
inline void checkRoad(const RoadCase &c, int mode)
{
    SCOPED_TRACE(mode);
    const auto before = c.make(), value = c.make(), replica = c.make();
    const auto restored = c.fresh ? c.fresh() : c.make();
    Recorder recorder(*value, mode);
    c.set(*value, nullptr);
    if (c.codes.empty())
        recorder.fetch();
    else
        EXPECT_TRUE(value->GetCommandList().empty() &&
                    value->GetCommandListForTransmission().empty());
    EXPECT_EQ(recorder.codes, c.codes);
    EXPECT_EQ(recorder.recorded, recorder.transmitted);
    if (!c.form(mode).empty()) {
        EXPECT_EQ(recorder.recorded, c.form(mode));
    }
    EXPECT_EQ(value->Compare(before.get()), c.is(RoadCase::NotCompared));
    if (!isTextMode(mode) || !c.is(RoadCase::LossyText)) {
        replica->SetCommandString(recorder.transmitted, nullptr, mode);
        expectSame(c, *replica, *value);
        restored->SetCommandString(value->GetObjectStateStringForTransmission(unsigned(mode)),
                                   nullptr, mode);
        expectSame(c, *restored, *value);
    }
    expectEarlyEndsRefused(*before, recorder.recorded, mode);
    recorder.codes.clear();
    c.set(*value, nullptr);
    EXPECT_EQ(recorder.codes.empty(), !c.is(RoadCase::Loud) || c.codes.empty());
}

/// Who makes a change isn't told of it.
inline void checkSource(const RoadCase &c)
{
    CodeLog source; // outlives the value, whose end it is told
    const auto value = c.make();
    value->AddObserver(&source);
    c.set(*value, &source);
    EXPECT_EQ(source.codes.empty(), !c.is(RoadCase::NoSource));
}

/// The change in every mode, on another thread, in a transaction, its source and its undo.
inline void checkRoad(const RoadCase &c)
{
    SCOPED_TRACE(c.name);
    for (const int mode : {-1, 0, 1, -2, -3})
        checkRoad(c, mode);
    checkForeignRoad(c);
    checkSource(c);
    UndoOnce undo;
    const auto before = c.make(), value = c.make(), replica = c.make(), other = c.make();
    Recorder recorder(*value, ModeBinaryTagged);
    (c.is(RoadCase::NoUndo) ? other : value)->SetUndoManager(&undo);
    {
        const ValueTransaction transaction(*value, CC_MAPPING, nullptr);
        c.set(*value, nullptr);
        EXPECT_EQ(recorder.codes.empty(), !c.is(RoadCase::EndsSuppression));
    }
    EXPECT_EQ(recorder.codes.back(), CC_MAPPING);
    if (!c.tagged.empty()) {
        EXPECT_EQ(recorder.transmitted, "3;" + c.tagged + "4;10;");
    }
    if (c.is(RoadCase::NoUndo)) {
        c.set(*other, nullptr);
        undo.FinishCurrentUndoStack();
        EXPECT_TRUE(undo.GetUndoStackDescriptions().empty());
        return other->SetUndoManager(nullptr);
    }
    undo.undoAll();
    EXPECT_FALSE(value->IsTransactionActive());
    value->SetUndoManager(nullptr);
    expectSame(c, *value, *before);
    replica->SetCommandString(recorder.transmitted, nullptr, ModeBinaryTagged);
    expectSame(c, *replica, *before);
}

/// A change of a \a V, in a table.
template <typename V>
struct RoadRow {
    std::string name;
    std::function<void(V &, IObserver *)> set;
    std::vector<int> codes;
    std::string text{};
    unsigned traits = 0;
};

template <typename V>
void checkRoad(const RoadRow<V> &row, const RoadCase::Make &make)
{
    checkRoad(
        {.name = row.name,
         .make = make,
         .set = [&row](ValueBase &value, IObserver *on) { row.set(dynamic_cast<V &>(value), on); },
         .codes = row.codes,
         .traits = row.traits,
         .text = row.text});
}

} // namespace values
