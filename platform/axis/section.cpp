#include "platform/axis/section.h"
