#pragma once

/// The sample types of spectra without a file of their own, and their handlers.
#include "valueclasses/bearing.h"
#include "valueclasses/minmax.h"
#include "valueclasses/simplehandlers.h"
