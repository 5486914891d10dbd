#pragma once

#include <QObject>

/// The usual Qt way to tell of a number: a signal, and a slot that takes note.
class SignalSource : public QObject {
    Q_OBJECT
public:
    void set(double value)
    {
        if (value == m_value)
            return;
        m_value = value;
        Q_EMIT changed(value);
    }
Q_SIGNALS:
    void changed(double value);

private:
    double m_value = 0.0;
};

class SignalSink : public QObject {
    Q_OBJECT
public Q_SLOTS:
    void take(double) { ++count; }

public:
    int count = 0;
};
