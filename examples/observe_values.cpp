// Values and observers: a frequency with limits, somebody who watches it, and a copy elsewhere that
// follows by command strings.
//
//   observe_values
#include "valueclasses/valuenumeric.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

using namespace values;
using Frequency = ValueNumeric<double>;

/// Prints each change. As the source of a change it isn't told of it.
class Display final : public IObserver {
public:
    explicit Display(const Frequency &frequency) : m_frequency(frequency) {}
    void Update(Observable *, TChangeCode code) override
    {
        if (code == CC_VALUE)
            std::printf("%.1f MHz\n", m_frequency.GetValue() / 1e6);
        else if (code == CC_LIMITS)
            std::printf("%.1f to %.1f MHz\n", m_frequency.GetMin() / 1e6,
                        m_frequency.GetMax() / 1e6);
    }

private:
    const Frequency &m_frequency;
};

/// Carries what one value records to another: the strings could go through any connection.
class Replicator final : public IObserver {
public:
    Replicator(Frequency &from, Frequency &to) : m_from(from), m_to(to)
    {
        m_to.SetCommandString(m_from.GetObjectStateStringForTransmission(ModeBinaryTagged), this,
                              ModeBinaryTagged);
        m_from.CommandRecordingOnForTransmission();
        m_from.AddObserver(this);
    }
    ~Replicator() override
    {
        m_from.DeleteObserver(this);
        m_from.CommandRecordingOffForTransmission();
    }
    void Update(Observable *, TChangeCode) override
    {
        m_to.SetCommandString(m_from.GetCommandStringForTransmission(ModeBinaryTagged), this,
                              ModeBinaryTagged);
    }

private:
    Frequency &m_from, &m_to;
};

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication app(argc, argv);
    Frequency frequency("FREQUENCY", 100e6, 20e6, 3000e6, 25e3), copy("FREQUENCY");
    Display display(frequency);
    frequency.AddObserver(&display);
    {
        const Replicator replicator(frequency, copy);
        frequency.SetValue(144.8e6, nullptr);
        frequency.StepUp(4, nullptr);
        frequency.SetValue(9e9, nullptr);     // clipped to the limit
        frequency.SetValue(98.5e6, &display); // the display made this change: it isn't told
    }
    std::printf("the copy has %.1f MHz\n", copy.GetValue() / 1e6);
    frequency.DeleteObserver(&display);
    return copy.Compare(&frequency) ? 0 : 1;
}
