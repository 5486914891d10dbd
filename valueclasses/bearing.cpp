#include "valueclasses/bearing.h"
