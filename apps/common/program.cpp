#include "apps/common/program.h"

#include "apps/common/keyfiles.h"

#include <QCoreApplication>

namespace apps {

void printLine(std::FILE *stream, const QString &text)
{
    std::fprintf(stream, "%s\n", text.toLocal8Bit().constData());
    std::fflush(stream);
}

void note(const QString &sentence)
{
    printLine(stderr, QCoreApplication::applicationName() + QStringLiteral(": ") + sentence);
}

int perform(const Request &request, const std::function<int()> &run)
{
    switch (request.action) {
    case Action::showHelp:
        printLine(stdout, request.help.trimmed());
        return 0;
    case Action::showVersion:
        printLine(stdout, QCoreApplication::applicationName() + QLatin1Char(' ') +
                              QCoreApplication::applicationVersion());
        return 0;
    case Action::makeKey:
        makeKeyFiles(request.keyFile);
        note(QStringLiteral("%1 holds the secret key, %1.pub the public one, which the other side "
                            "is given.")
                 .arg(request.keyFile));
        return 0;
    case Action::run:
        break;
    }
    return run();
}

int runProgram(const std::function<int()> &program)
{
    try {
        return program();
    } catch (const Failure &failure) {
        note(failure.sentence());
        return failure.code();
    } catch (const std::exception &error) {
        note(QString::fromUtf8(error.what()));
        return Failure::Runtime;
    }
}

} // namespace apps
