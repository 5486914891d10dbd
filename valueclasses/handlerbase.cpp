#include "valueclasses/handlerbase.h"
