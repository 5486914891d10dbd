#include "platform/base/userquestion.h"

#include "platform/base/errorhandler.h"

namespace {

UserQuestion::Handler &handler()
{
    static UserQuestion::Handler installed;
    return installed;
}

} // namespace

void UserQuestion::SetHandler(Handler newHandler) { handler() = std::move(newHandler); }

UserQuestion::Answer UserQuestion::Ask(const QString &question)
{
    if (const Handler ask = handler()) // a copy: the answer may install another one
        return ask(question);
    _Q_Trace(question, __FILE__, __LINE__);
    return Abort;
}
