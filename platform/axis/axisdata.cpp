#include "platform/axis/axisdata.h"
