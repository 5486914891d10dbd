#include "valueclasses/simplehandlers.h"
