#pragma once

#include "valueclasses/commands/valuecommands.h"
#include "valueclasses/testvalue.h"
#include "valueclasses/undo/undomanager.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <random>

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
        recorded += m_value.GetCommandStringForRecording(m_mode);
        transmitted += m_value.GetCommandStringForTransmission(m_mode);
    }

    std::vector<int> codes;
    std::string recorded, transmitted;

private:
    ValueBase &m_value;
    unsigned m_mode;
};

struct RoadCase {
    enum Again { Quiet, Repeats };
    const char *name;
    std::function<std::unique_ptr<ValueBase>()> make;
    std::function<void(ValueBase &)> set;
    std::vector<int> codes;
    std::string text; ///< recorded in text mode; not compared when empty
    Again again = Quiet;
    bool endsSuppression = false; ///< it calls HasChanged, which a transaction doesn't hold back
};

/// Records, sends, repeats, undoes and replays one change.
inline void checkRoad(const RoadCase &c)
{
    SCOPED_TRACE(c.name);
    const auto before = c.make();
    for (const int mode : {-1, 0, -2, -3}) {
        SCOPED_TRACE(mode);
        const auto value = c.make();
        Recorder recorder(*value, mode);
        c.set(*value);
        EXPECT_EQ(recorder.codes, c.codes);
        EXPECT_EQ(recorder.recorded, recorder.transmitted);
        if (mode == ModeText && !c.text.empty()) {
            EXPECT_EQ(recorder.recorded, c.text);
        }
        EXPECT_FALSE(value->Compare(before.get()));

        const auto replica = c.make();
        replica->SetCommandString(recorder.transmitted, nullptr, mode);
        EXPECT_TRUE(replica->Compare(value.get())) << recorder.transmitted;
        const auto other = c.make();
        other->SetCommandString(value->GetObjectStateStringForTransmission(unsigned(mode)), nullptr,
                                mode);
        EXPECT_TRUE(other->Compare(value.get()));

        recorder.codes.clear();
        c.set(*value);
        EXPECT_EQ(recorder.codes.empty(), c.again == RoadCase::Quiet);
    }

    UndoOnce undo;
    const auto value = c.make();
    const auto replica = c.make();
    value->SetUndoManager(&undo);
    Recorder recorder(*value, ModeBinaryTagged);
    {
        const ValueTransaction transaction(*value, CC_MAPPING, nullptr);
        c.set(*value);
        EXPECT_EQ(recorder.codes.empty(), !c.endsSuppression);
    }
    EXPECT_EQ(recorder.codes.back(), CC_MAPPING);
    undo.undoAll();
    EXPECT_FALSE(value->IsTransactionActive());
    value->SetUndoManager(nullptr);
    EXPECT_TRUE(value->Compare(before.get()));
    replica->SetCommandString(recorder.transmitted, nullptr, ModeBinaryTagged);
    EXPECT_TRUE(replica->Compare(before.get()));
}

/// Changes a value at random, replays what it recorded, undoes all of it and replays that, too.
/// \a change gets the value and a generator.
template <typename Make, typename Change>
void checkRandomLife(unsigned seeds, int changes, const Make &make, const Change &change)
{
    for (unsigned seed = 1; seed <= seeds; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const auto value = make(), first = make(), replica = make();
        UndoOnce undo;
        value->SetUndoManager(&undo);
        Recorder recorder(*value, ModeBinaryTagged);
        for (int i = 0; i < changes; ++i)
            change(*value, random);
        replica->SetCommandString(recorder.transmitted, nullptr, ModeBinaryTagged);
        EXPECT_TRUE(*replica == *value);
        recorder.transmitted.clear();
        undo.undoAll();
        EXPECT_TRUE(*value == *first);
        replica->SetCommandString(recorder.transmitted, nullptr, ModeBinaryTagged);
        EXPECT_TRUE(*replica == *first);
        value->SetUndoManager(nullptr);
    }
}

} // namespace values
