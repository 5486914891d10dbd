#include "platform/startup/dllinstance.h"

#include <QCoreApplication>

QString IDllInstance::GetApplicationName() { return QCoreApplication::applicationName(); }
