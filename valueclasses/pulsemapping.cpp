#include "valueclasses/pulsemapping.h"
