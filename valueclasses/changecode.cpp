#include "valueclasses/changecode.h"

QString Vt::getStateString(values::TValueState state)
{
    switch (state) {
    case values::VS_NORMAL:
        return QStringLiteral("NORMAL");
    case values::VS_DELETED:
        return QStringLiteral("DELETE");
    case values::VS_DISABLED:
        return QStringLiteral("DISABLED");
    }
    return QStringLiteral("CLEAR");
}
