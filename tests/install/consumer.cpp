// Built against an installed Spectree only: the headers must be complete without the repository.
#include "platform/base/krexception.h"
#include "platform/startup/cfgcenter.h"

#include <cstdio>

int main()
{
    const bool on = CfgCenter::GetAppCfg().GetBool(QStringLiteral("ConsumerKey"), true);
    std::puts(on ? "consumer runs" : "configuration is wrong");
    return on ? 0 : 1;
}
