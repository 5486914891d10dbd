#include "apps/common/program.h"
#include "apps/common/terminationsignals.h"
#include "apps/receiver/feeder.h"
#include "apps/receiver/inputs.h"
#include "apps/receiver/serverconfig.h"
#include "platform/base/krexception.h"

#include <QCoreApplication>

namespace {

using namespace receiver;

using apps::Failure;
using apps::note;

struct Service {
    std::unique_ptr<Feeder> feeder;
    QByteArray endpoint;
};

Service makeService(const Options &options)
{
    configureServer(options);
    auto input = openInput(options, note);
    try {
        auto sink = ScanSink::create(options.type, input->grid());
        const QByteArray endpoint = sink->endpoint();
        return {std::make_unique<Feeder>(std::move(input), std::move(sink),
                                         FeedPlan{options.speed, options.loop, options.wait}),
                endpoint};
    } catch (const KRException &error) {
        QString sentence = error.GetReason();
        if (error.GetClassName() == "Server")
            sentence += QStringLiteral(" The address is given with --listen.");
        else if (error.GetClassName() == "ScanBuffer")
            sentence += QStringLiteral(". Take other channels, or less of them with --ranges.");
        throw Failure(Failure::Runtime, sentence);
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
    const apps::TerminationSignals terminationSignals;
    QObject::connect(&terminationSignals, &apps::TerminationSignals::caught, qApp,
                     &QCoreApplication::quit);
    const auto [feeder, endpoint] = makeService(options);
    QObject::connect(feeder.get(), &Feeder::ended, qApp, [] {
        note(QStringLiteral("the input has ended; serving what is there until SIGINT or SIGTERM."));
    });
    QObject::connect(feeder.get(), &Feeder::gapSkipped, qApp, [] {
        note(QStringLiteral("the times of the input jump ahead by more than an hour: such gaps are "
                            "not waited for."));
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
    feeder->start(); // first, for it must see the window of whoever reads the endpoint
    apps::printLine(stdout, QStringLiteral("endpoint ") + QString::fromLatin1(endpoint));
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("spectree-receiver"));
    QCoreApplication::setApplicationVersion(QStringLiteral(SPECTREE_VERSION));
    return apps::runProgram([] {
        const Options options = parseOptions(QCoreApplication::arguments());
        return apps::perform(options.request, [&options] { return serve(options); });
    });
}
