#include "platform/base/observable.h"

#include <gmock/gmock.h>

#include <functional>
#include <memory>
#include <string>

namespace {

using ::testing::ElementsAre;

constexpr TChangeCode kCode = TChangeCode(3);

/// Writes its name into a common log, then does what a test wants.
class Watcher : public IObserver {
public:
    Watcher(std::string name, std::vector<std::string> &log) : m_name(std::move(name)), m_log(log)
    {
    }
    void Update(Observable *subject, TChangeCode) override
    {
        m_log.push_back(m_name);
        if (then)
            then(subject);
    }
    std::function<void(Observable *)> then;

private:
    std::string m_name;
    std::vector<std::string> &m_log;
};

class CountsEnds : public Observable {
public:
    int ends = 0;

protected:
    void NotificationEnded() override { ++ends; }
};

class ObservableTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        subject = std::make_unique<CountsEnds>();
        for (Watcher *watcher : {&a, &b, &c})
            subject->AddObserver(watcher);
    }
    std::vector<std::string> notify(IObserver *source = nullptr)
    {
        log.clear();
        subject->NotifyObservers(kCode, source);
        return log;
    }

    std::vector<std::string> log;
    Watcher a{"a", log}, b{"b", log}, c{"c", log};
    std::unique_ptr<CountsEnds> subject;
};

TEST_F(ObservableTest, CallsInTheOrderOfAddingAndAddsOnce)
{
    subject->AddObserver(&a);
    subject->AddObserver(nullptr);
    EXPECT_THAT(notify(), ElementsAre("a", "b", "c"));
    subject->MakeFirstObserver(&c);
    EXPECT_THAT(notify(), ElementsAre("c", "a", "b"));
    subject->DeleteObserver(&a);
    EXPECT_THAT(subject->GetObservers(), ElementsAre(&c, &b));
}

TEST_F(ObservableTest, SkipsTheSourceUnderBothItsNames)
{
    struct Alias : Watcher {
        using Watcher::Watcher;
        const IObserver *KnownAs() const override { return stands; }
        const IObserver *stands = nullptr;
    } alias("alias", log);
    alias.stands = &a;
    subject->AddObserver(&alias);
    EXPECT_THAT(notify(&a), ElementsAre("b", "c"));
    EXPECT_THAT(notify(&alias), ElementsAre("a", "b", "c"));
}

TEST_F(ObservableTest, SurvivesWhatObserversDoToTheList)
{
    Watcher late("late", log);
    struct Case {
        const char *name;
        std::function<void(Observable *)> byA;
        std::vector<std::string> during, after;
    } const cases[] = {
        {"itself", [&](Observable *s) { s->DeleteObserver(&a); }, {"a", "b", "c"}, {"b", "c"}},
        {"the next", [&](Observable *s) { s->DeleteObserver(&b); }, {"a", "c"}, {"a", "c"}},
        {"all", [](Observable *s) { s->DeleteObservers(); }, {"a"}, {}},
        {"adds",
         [&](Observable *s) { s->AddObserver(&late); },
         {"a", "b", "c"},
         {"a", "b", "c", "late"}},
        {"removes and adds again",
         [&](Observable *s) {
             s->DeleteObserver(&b);
             s->AddObserver(&b);
         },
         {"a", "c"},
         {"a", "c", "b"}},
        {"moves to the front",
         [&](Observable *s) { s->MakeFirstObserver(&c); },
         {"a", "b", "c"},
         {"c", "a", "b"}},
    };
    for (const Case &row : cases) {
        SCOPED_TRACE(row.name);
        SetUp();
        a.then = row.byA;
        EXPECT_EQ(notify(), row.during);
        a.then = nullptr;
        EXPECT_EQ(notify(), row.after);
    }
}

TEST_F(ObservableTest, EndsQuietlyWhenAnObserverDestroysTheSubject)
{
    b.then = [this](Observable *) { subject.reset(); };
    EXPECT_THAT(notify(), ElementsAre("a", "b"));

    SetUp();
    b.then = [this](Observable *s) {
        b.then = [this](Observable *) { subject.reset(); };
        s->NotifyObservers(kCode, nullptr); // the inner call ends the outer one, too
    };
    EXPECT_THAT(notify(), ElementsAre("a", "b", "a", "b"));
}

TEST_F(ObservableTest, TellsTheEndOfTheOutermostCallOnce)
{
    b.then = [this](Observable *s) {
        b.then = nullptr;
        s->NotifyObservers(kCode, nullptr);
        EXPECT_EQ(subject->ends, 0);
    };
    notify();
    EXPECT_EQ(subject->ends, 1);
    b.then = [](Observable *) { throw 1; };
    EXPECT_THROW(notify(), int);
    EXPECT_EQ(subject->ends, 2) << "also when an observer throws";
}

} // namespace
