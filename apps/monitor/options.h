#pragma once

#include "apps/common/program.h"

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

namespace monitor {

/// What the command line asks for.
struct Options {
    apps::Request request; ///< where it isn't to run, what follows is not filled

    QString endpoint;
    QString pngFile, jsonFile; ///< empty: not asked for; the report's "-" is standard output
    std::optional<double> seconds;
    std::optional<quint64> scans;
    double timeoutSeconds = 10.0; ///< how long the server, or its next scan, may stay away
    QSize size{1600, 1000};       ///< of the picture
    std::optional<double> fromHz, toHz;

    QString windowGuid;    ///< without braces; made anew when not given
    QString serverKeyFile; ///< holds the server's public key; empty for none
    QString clientKeyFile; ///< holds this client's secret key
    bool quiet = false;
};

/// Reads the command line, of which the first entry is the program. Needs a QCoreApplication.
/// \throws Failure (usage) with a sentence that names the option
Options parseOptions(const QStringList &arguments);

} // namespace monitor
