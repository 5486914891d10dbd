#include "valueclasses/channelrange.h"
