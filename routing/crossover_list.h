// The crossover list file: lines "name=value" that change entries of the
// crossover table at start-up. A value is a number of 1 or more, or "never" or any
// beginning of it (the empty value too), which excludes the routine from the GPU.
#pragma once

#include <cstdio>

// Applies the lines of an open list file, writing the log's lines about them.
// The reading stops at the end of the file or at the first empty line.
void linkApplyCrossoverList(FILE* list);
