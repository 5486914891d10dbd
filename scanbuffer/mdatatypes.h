#pragma once

/// All scan buffer messages: what an adapter and its display send each other.
#include "scanbuffer/mdataazimuth.h"
#include "scanbuffer/mdatabytearray.h"
#include "scanbuffer/mdatachannelrange.h"
#include "scanbuffer/mdatacontainer.h"
#include "scanbuffer/mdatakfactor.h"
#include "scanbuffer/mdatarequests.h"
#include "scanbuffer/mdatascalar.h"
#include "scanbuffer/mdatawaterfall.h"
