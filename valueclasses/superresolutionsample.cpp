#include "valueclasses/superresolutionsample.h"
