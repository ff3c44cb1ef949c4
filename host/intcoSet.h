#pragma once
// intcoSet: a set of ints (file-type ids), in the order first added.
#include "host/coSet.h"

using intcoSet = coSet<int>;
