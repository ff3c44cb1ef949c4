#pragma once
// utStringcoSet: a set of strings (file extensions), in the order first added.
#include "host/coSet.h"
#include "host/utString.h"

using utStringcoSet = coSet<utString>;
