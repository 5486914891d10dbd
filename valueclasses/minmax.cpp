#include "valueclasses/minmax.h"
