#include "tests/apps/programs.h"

#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

namespace programs {

Program::Program(const QString &path, const QStringList &arguments)
{
    m_process.start(path, arguments);
    EXPECT_TRUE(m_process.waitForStarted(10000)) << path.toStdString();
}

Program::~Program()
{
    if (!isRunning())
        return;
    signal(SIGCONT);
    m_process.kill();
    m_process.waitForFinished(10000);
}

int Program::waitForEnd(int seconds)
{
    if (isRunning() && !m_process.waitForFinished(seconds * 1000))
        return -1;
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

void Program::signal(int number)
{
    if (isRunning())
        ::kill(pid_t(m_process.processId()), number);
    if (number == SIGKILL)
        m_process.waitForFinished(10000);
}

QString Program::output()
{
    m_output += m_process.readAllStandardOutput();
    return QString::fromUtf8(m_output);
}

QString Program::errors()
{
    m_errors += m_process.readAllStandardError();
    return QString::fromUtf8(m_errors);
}

QString Program::firstLine(int seconds)
{
    QElapsedTimer clock;
    clock.start();
    while (!output().contains(QLatin1Char('\n')) && clock.elapsed() < seconds * 1000 && isRunning())
        m_process.waitForReadyRead(100);
    return output().section(QLatin1Char('\n'), 0, 0);
}

bool Program::waitForMessage(const QString &pattern, int seconds)
{
    const QRegularExpression text(pattern);
    m_process.setReadChannel(QProcess::StandardError);
    QElapsedTimer clock;
    clock.start();
    while (!errors().contains(text) && clock.elapsed() < seconds * 1000 && isRunning())
        m_process.waitForReadyRead(100);
    return errors().contains(text);
}

Receiver::Receiver(const QStringList &arguments)
    : Program(QStringLiteral(SPECTREE_RECEIVER), arguments)
{
    const QString line = firstLine(20), start = QStringLiteral("endpoint ");
    EXPECT_TRUE(line.startsWith(start + QStringLiteral("tcp://"))) << line.toStdString() << '\n'
                                                                   << errors().toStdString();
    m_endpoint = line.mid(start.size());
}

Monitor::Monitor(const QString &endpoint, const QStringList &arguments)
    : Program(QStringLiteral(SPECTREE_MONITOR),
              QStringList{QStringLiteral("--connect"), endpoint, QStringLiteral("--png"), pngFile(),
                          QStringLiteral("--json"), jsonFile()} +
                  arguments)
{
}

QJsonObject Monitor::report() const
{
    QFile file(jsonFile());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(file.readAll()).object();
}

double resolutionOf(const QJsonObject &report)
{
    const double span = report["f_stop_hz"].toDouble() - report["f_start_hz"].toDouble();
    const double channels = report["channels"].toDouble();
    return span / std::clamp(channels, 1.0, 4000.0);
}

QJsonObject peakIn(const QJsonObject &report, const Band &band)
{
    const double margin = resolutionOf(report);
    for (const QJsonValue &peak : report["peaks"].toArray()) { // strongest first
        const double frequency = peak.toObject()["frequency_hz"].toDouble();
        if (frequency >= band.lowHz - margin && frequency <= band.highHz + margin)
            return peak.toObject();
    }
    return {};
}

} // namespace programs
