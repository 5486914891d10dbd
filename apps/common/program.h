#pragma once

#include "apps/common/commandline.h"

#include <cstdio>
#include <functional>

namespace apps {

/// One line, at once.
void printLine(std::FILE *stream, const QString &text);

/// A sentence to standard error, behind the program's name.
void note(const QString &sentence);

/// What every program is asked for: the action, the file of --make-key, the text of --help.
struct Request {
    Action action = Action::run;
    QString keyFile;
    QString help;
};

/// Does what \a request asks for; \a run is the program itself. The exit code.
int perform(const Request &request, const std::function<int()> &run);

/// Runs \a program and gives its exit code; a failure becomes its sentence on standard error.
int runProgram(const std::function<int()> &program);

} // namespace apps
