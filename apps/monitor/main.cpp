#include "apps/common/program.h"
#include "apps/monitor/axisticks.h"
#include "apps/monitor/options.h"
#include "apps/monitor/report.h"
#include "apps/monitor/session.h"

#include <QBuffer>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSocketNotifier>

#include <csignal>
#include <cstdio>
#include <memory>
#include <sys/signalfd.h>
#include <unistd.h>

using namespace monitor;
using apps::Failure;
using apps::printLine;

namespace {

/// A long run whose end can't be written is noticed before it begins.
void checkFolder(const QString &path)
{
    const QFileInfo folder(QFileInfo(path).absolutePath());
    if (path.isEmpty() || path == QLatin1String("-") || (folder.isDir() && folder.isWritable()))
        return;
    throw Failure(Failure::Runtime, QStringLiteral("Cannot write \"%1\": its folder does not exist "
                                                   "or may not be written to.")
                                        .arg(path));
}

/// SIGINT and SIGTERM end the run early; what was seen is written.
sigset_t endSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    return signals;
}

void stopOnSignals(Session &session)
{
    const sigset_t signals = endSignals();
    const int descriptor = signalfd(-1, &signals, SFD_CLOEXEC);
    if (descriptor < 0)
        return;
    auto *notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, &session);
    QObject::connect(notifier, &QSocketNotifier::activated, &session, [&session, notifier] {
        notifier->setEnabled(false);
        session.stop();
    });
}

void writePicture(const Session &session, const Options &options)
{
    const QImage image = paintPicture(session.display(), session.caption(), options.size);
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    if (image.isNull() || !image.save(&buffer, "PNG"))
        throw Failure(Failure::Runtime,
                      QStringLiteral("A picture of %1 x %2 pixels cannot be made; ask for a "
                                     "smaller one.")
                          .arg(options.size.width())
                          .arg(options.size.height()));
    if (const QString error = writeFile(options.pngFile, png); !error.isEmpty())
        throw Failure(Failure::Runtime, error);
}

void writeResults(const Session &session, const Options &options)
{
    if (!options.pngFile.isEmpty())
        writePicture(session, options);
    const Report report = session.report();
    if (!options.jsonFile.isEmpty())
        if (const QString error = writeFile(options.jsonFile, toJson(report)); !error.isEmpty())
            throw Failure(Failure::Runtime, error);
    if (options.quiet)
        return;
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
    checkFolder(options.pngFile);
    checkFolder(options.jsonFile);
    Session session(options);
    stopOnSignals(session);
    if (!options.quiet)
        QObject::connect(&session, &Session::progress, &session,
                         [](const QString &sentence) { printLine(stderr, sentence); });
    QObject::connect(&session, &Session::finished, qApp, &QCoreApplication::quit,
                     Qt::QueuedConnection);
    session.start();
    QCoreApplication::exec();
    if (session.hasData())
        writeResults(session, options);
    if (session.failure())
        throw *session.failure();
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
    // Threads inherit the mask: one that ZeroMQ starts must not take the signals instead.
    const sigset_t signals = endSignals();
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
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
