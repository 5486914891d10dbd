#include "apps/receiver/failure.h"
#include "apps/receiver/feeder.h"
#include "apps/receiver/inputs.h"
#include "apps/receiver/serverconfig.h"
#include "apps/receiver/terminationsignals.h"
#include "platform/base/krexception.h"
#include "platform/transmission/curvekeys.h"

#include <QCoreApplication>

#include <cstdio>

namespace {

using namespace receiver;

void printLine(FILE *stream, const QString &text)
{
    std::fprintf(stream, "%s\n", text.toLocal8Bit().constData());
    std::fflush(stream);
}

void note(const QString &sentence)
{
    printLine(stderr, QStringLiteral("spectree-receiver: ") + sentence);
}

std::unique_ptr<Feeder> makeFeeder(const Options &options)
{
    configureServer(options);
    auto input = openInput(options, note);
    try {
        auto sink = ScanSink::create(options.type, input->grid());
        printLine(stdout, QStringLiteral("endpoint ") + QString::fromLatin1(sink->endpoint()));
        return std::make_unique<Feeder>(std::move(input), std::move(sink),
                                        FeedPlan{options.speed, options.loop, options.wait});
    } catch (const KRException &error) {
        throw Failure(Failure::Runtime,
                      QStringLiteral("Serving at %1 failed: %2. Another --listen may help.")
                          .arg(options.listen, error.GetReason()));
    }
}

/// Writes the progress of each second to standard error.
void reportProgress(QTimer &timer, const Feeder &feeder)
{
    QObject::connect(
        &timer, &QTimer::timeout, &feeder, [&feeder, last = std::uint64_t(0)]() mutable {
            const std::uint64_t scans = feeder.scans();
            note(feeder.isWaiting()
                     ? QStringLiteral("waiting for a window")
                     : QStringLiteral("%1 scans, %2 a second").arg(scans).arg(scans - last));
            last = scans;
        });
    timer.start(1000);
}

int serve(const Options &options)
{
    const TerminationSignals terminationSignals;
    QObject::connect(&terminationSignals, &TerminationSignals::caught, qApp,
                     &QCoreApplication::quit);
    const auto feeder = makeFeeder(options);
    QObject::connect(feeder.get(), &Feeder::ended, qApp, [] {
        note(QStringLiteral("the input has ended; serving what is there until SIGINT or SIGTERM."));
    });
    QObject::connect(feeder.get(), &Feeder::failed, qApp, [](const QString &sentence) {
        note(sentence);
        QCoreApplication::exit(Failure::Runtime);
    });
    QTimer progress;
    if (options.stats)
        reportProgress(progress, *feeder);
    if (options.wait)
        note(QStringLiteral("waiting for a window to connect (--wait no begins at once)."));
    feeder->start();
    return QCoreApplication::exec();
}

int runAction(const Options &options)
{
    switch (options.action) {
    case Options::Action::showHelp:
        printLine(stdout, helpText().trimmed());
        return 0;
    case Options::Action::showVersion:
        printLine(stdout,
                  QStringLiteral("spectree-receiver ") + QCoreApplication::applicationVersion());
        return 0;
    case Options::Action::makeKey: {
        const sbs::CurveKeys keys = sbs::CurveKeys::generate();
        printLine(stdout, QStringLiteral("# public key: %1\n%2")
                              .arg(QString::fromLatin1(keys.publicKey),
                                   QString::fromLatin1(keys.secretKey)));
        return 0;
    }
    case Options::Action::run:
        break;
    }
    return serve(options);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("spectree-receiver"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SPECTREE_VERSION));
    try {
        return runAction(parseOptions(QCoreApplication::arguments()));
    } catch (const Failure &failure) {
        note(failure.sentence());
        return failure.code();
    } catch (const std::exception &error) {
        note(QString::fromUtf8(error.what()));
        return Failure::Runtime;
    }
}
