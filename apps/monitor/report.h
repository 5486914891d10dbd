#pragma once

#include "apps/monitor/peaks.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace monitor {

/// The figures of one run, as the JSON report tells them.
struct Report {
    QString endpoint;
    quint64 channels = 0;
    double startHz = 0.0; ///< of the frequency axis that was shown
    double stopHz = 0.0;
    double scansPerSecond = 0.0; ///< as the server tells it, else measured; 0 when not known
    quint64 lines = 0;           ///< waterfall rows received
    quint64 lostMessages = 0;
    quint64 bytes = 0; ///< payload received
    std::vector<Peak> peaks;
};

/// UTF-8 JSON with a closing newline. Numbers that aren't finite are written as null.
QByteArray toJson(const Report &report);

/// Writes \a content to \a path through a temporary file, so that a reader never sees half of it;
/// "-" is standard output.
/// Returns what went wrong, or an empty text.
QString writeFile(const QString &path, const QByteArray &content);

} // namespace monitor
