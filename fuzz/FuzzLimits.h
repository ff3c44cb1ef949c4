#pragma once
// Bounds the fuzz targets lower. Under the sanitizers and coverage counters a
// profile evaluation runs some forty times slower than in a release build, so
// a design that uses its whole work budget (a quarter of a second released)
// would read as a hang against libFuzzer's ten-second timeout. The targets
// give each design a sixteenth of it: the same paths run, bounded sooner.
#include "grid/vmiWorkBudget.h"

constexpr long long fuzz_design_work = vmiWorkBudget::max_design_work / 16;
