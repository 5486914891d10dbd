#include "valueclasses/dfspectrumsample.h"
