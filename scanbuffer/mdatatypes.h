#pragma once

/// All scan buffer messages: what an adapter and its display send each other.
#include "scanbuffer/messages/mdataazimuth.h"
#include "scanbuffer/messages/mdatabytearray.h"
#include "scanbuffer/messages/mdatachannelrange.h"
#include "scanbuffer/messages/mdatacontainer.h"
#include "scanbuffer/messages/mdatakfactor.h"
#include "scanbuffer/messages/mdatarequests.h"
#include "scanbuffer/messages/mdatascalar.h"
#include "scanbuffer/messages/mdatawaterfall.h"
