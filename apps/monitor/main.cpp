#include "apps/common/program.h"
#include "apps/common/terminationsignals.h"
#include "apps/monitor/axisticks.h"
#include "apps/monitor/options.h"
#include "apps/monitor/report.h"
#include "apps/monitor/session.h"

#include <QBuffer>
#include <QFileInfo>
#include <QGuiApplication>

#include <memory>

using namespace monitor;
using apps::Failure;
using apps::printLine;

namespace {

/// A long run whose end can't be written is noticed before it begins.
void checkPath(const QString &path)
{
    const QFileInfo file(path), folder(file.absolutePath());
    if (path.isEmpty() || path == QLatin1String("-"))
        return;
    if (file.isDir())
        throw Failure(
            Failure::Runtime,
            QStringLiteral("Cannot write \"%1\": it is a folder; name a file.").arg(path));
    if (folder.isDir() && folder.isWritable())
        return;
    throw Failure(Failure::Runtime, QStringLiteral("Cannot write \"%1\": its folder does not exist "
                                                   "or may not be written to.")
                                        .arg(path));
}

/// What went wrong, or an empty text.
QString writePicture(const Session &session, const Options &options)
{
    const QImage image = paintPicture(session.display(), session.caption(), options.size);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    if (image.isNull() || !image.save(&buffer, "PNG"))
        return QStringLiteral("A picture of %1 x %2 pixels cannot be made; ask for a smaller one.")
            .arg(options.size.width())
            .arg(options.size.height());
    return writeFile(options.pngFile, png);
}

/// Writes each file, whatever becomes of the other; what went wrong. The report goes first: a large
/// picture takes long.
QStringList writeFiles(const Session &session, const Report &report, const Options &options)
{
    QStringList errors;
    if (!options.jsonFile.isEmpty())
        errors << writeFile(options.jsonFile, toJson(report));
    if (!options.pngFile.isEmpty())
        errors << writePicture(session, options);
    errors.removeAll(QString());
    return errors;
}

void tellResults(const Report &report)
{
    QString text = QStringLiteral("%1 of %2, %3 lost")
                       .arg(countText(report.lines, "line"), countText(report.channels, "channel"),
                            countText(report.lostMessages, "message"));
    if (!report.peaks.empty())
        text += QStringLiteral("; strongest: %1 at %2 dBuV")
                    .arg(frequencyText(report.peaks[0].frequencyHz, 100.0))
                    .arg(report.peaks[0].levelDbuv, 0, 'f', 1);
    printLine(stderr, text);
}

int run(const Options &options)
{
    checkPath(options.pngFile);
    checkPath(options.jsonFile);
    const apps::TerminationSignals terminationSignals;
    Session session(options);
    QObject::connect(&terminationSignals, &apps::TerminationSignals::caught, &session,
                     &Session::stop);
    if (!options.quiet)
        QObject::connect(&session, &Session::progress, &session,
                         [](const QString &sentence) { printLine(stderr, sentence); });
    QObject::connect(&session, &Session::finished, qApp, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    session.start();
    QCoreApplication::exec();
    QStringList errors;
    if (session.hasData()) {
        const Report report = session.report();
        errors = writeFiles(session, report, options);
        if (!options.quiet)
            tellResults(report);
    }
    if (session.failure())
        errors << session.failure()->sentence();
    if (!errors.isEmpty())
        throw Failure(Failure::Runtime, errors.join(QLatin1Char(' ')));
    return 0;
}

/// Qt warns those without a login session, such as cron, of the folder for sockets that they lack;
/// a program without a screen needs none.
std::unique_ptr<QGuiApplication> makeApplication(int &argc, char **argv)
{
    const auto keepErrors = [](QtMsgType type, const QMessageLogContext &, const QString &text) {
        if (type != QtDebugMsg && type != QtInfoMsg && type != QtWarningMsg)
            printLine(stderr, text);
    };
    const QtMessageHandler usual = qInstallMessageHandler(keepErrors);
    auto application = std::make_unique<QGuiApplication>(argc, argv);
    qInstallMessageHandler(usual);
    return application;
}

} // namespace

int main(int argc, char **argv)
{
    // Pictures are painted without a screen, whatever the machine has.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const auto application = makeApplication(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("spectree-monitor"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SPECTREE_VERSION));
    return apps::runProgram([] {
        const Options options = parseOptions(QCoreApplication::arguments());
        return apps::perform(options.request, [&options] { return run(options); });
    });
}
