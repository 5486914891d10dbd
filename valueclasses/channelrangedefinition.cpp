#include "valueclasses/channelrangedefinition.h"
