#include "apps/monitor/report.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

#include <cmath>
#include <cstdio>

namespace monitor {
namespace {

QJsonValue number(double value)
{
    return std::isfinite(value) ? QJsonValue(value) : QJsonValue(QJsonValue::Null);
}

/// Levels are known to a hundredth of a dB at best.
double toHundredths(double level) { return std::round(level * 100.0) / 100.0; }

QJsonArray peakList(const std::vector<Peak> &peaks)
{
    QJsonArray list;
    for (const Peak &peak : peaks)
        list.append(
            QJsonObject{{QStringLiteral("frequency_hz"), number(peak.frequencyHz)},
                        {QStringLiteral("level_dbuv"), number(toHundredths(peak.levelDbuv))}});
    return list;
}

} // namespace

QByteArray toJson(const Report &report)
{
    return QJsonDocument(QJsonObject{
                             {QStringLiteral("endpoint"), report.endpoint},
                             {QStringLiteral("channels"), number(double(report.channels))},
                             {QStringLiteral("f_start_hz"), number(report.startHz)},
                             {QStringLiteral("f_stop_hz"), number(report.stopHz)},
                             {QStringLiteral("scans_per_second"), number(report.scansPerSecond)},
                             {QStringLiteral("lines"), number(double(report.lines))},
                             {QStringLiteral("lost_messages"), number(double(report.lostMessages))},
                             {QStringLiteral("bytes"), number(double(report.bytes))},
                             {QStringLiteral("peaks"), peakList(report.peaks)},
                         })
        .toJson(QJsonDocument::Indented);
}

QString writeFile(const QString &path, const QByteArray &content)
{
    if (path == QLatin1String("-")) {
        const auto written =
            std::fwrite(content.constData(), 1, std::size_t(content.size()), stdout);
        const bool complete = written == std::size_t(content.size()) && std::fflush(stdout) == 0;
        return complete ? QString() : QStringLiteral("Cannot write to standard output.");
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
        return QStringLiteral("Cannot write \"%1\": %2. Check that its folder exists and may be "
                              "written to.")
            .arg(path, file.errorString());
    return QString();
}

} // namespace monitor
