#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

/// The two programs as real processes, for tests of what crosses a process.
namespace programs {

/// One started program. Destroying it kills the process.
class Program {
public:
    Program(const QString &path, const QStringList &arguments);
    ~Program();
    Program(const Program &) = delete;
    Program &operator=(const Program &) = delete;

    /// The exit code, or -1 when it hasn't ended after \a seconds or was killed.
    int waitForEnd(int seconds);
    /// SIGSTOP, SIGCONT, SIGKILL ...
    void signal(int number);
    bool isRunning() const { return m_process.state() == QProcess::Running; }
    /// The first line of standard output, waited for. Empty when none came.
    QString firstLine(int seconds);
    /// Waits until standard error matches \a pattern. False when it never does.
    bool waitForMessage(const QString &pattern, int seconds);
    /// All of standard error so far.
    QString errors();
    QString output();

private:
    QProcess m_process;
    QByteArray m_output, m_errors;
};

/// A running spectree-receiver.
class Receiver : public Program {
public:
    explicit Receiver(const QStringList &arguments);
    /// As its first line tells it; empty, after a failed test, when it told none.
    const QString &endpoint() const { return m_endpoint; }

private:
    QString m_endpoint;
};

/// A base of Monitor, so that the folder is there before the process starts.
struct Folder {
    QTemporaryDir folder;
};

/// A spectree-monitor that writes a picture and a report into a folder of its own.
class Monitor : private Folder, public Program {
public:
    Monitor(const QString &endpoint, const QStringList &arguments);
    QString pngFile() const { return folder.filePath(QStringLiteral("picture.png")); }
    QString jsonFile() const { return folder.filePath(QStringLiteral("report.json")); }
    /// An empty object when there is none.
    QJsonObject report() const;
};

struct Band {
    double lowHz, highHz;
};

/// Hz of one pixel or channel of a report, the larger.
double resolutionOf(const QJsonObject &report);
/// The strongest peak of a report in a band, widened by one channel or pixel, the larger; null
/// (an empty object) when there is none.
QJsonObject peakIn(const QJsonObject &report, const Band &band);

} // namespace programs
