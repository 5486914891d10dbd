#pragma once

/// The sample types of spectra without a file of their own, and their handlers.
#include "valueclasses/samples/bearing.h"
#include "valueclasses/samples/minmax.h"
#include "valueclasses/samples/simplehandlers.h"
