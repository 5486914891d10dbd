#include "platform/axis/axisdefinition.h"
