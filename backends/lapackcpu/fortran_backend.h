// The Fortran-ABI BLAS/LAPACK behind the CPU library, loaded in a link-map
// namespace of its own so that its internal calls (dgesvd_ calling dgemm_, say)
// never resolve to the link library's exports of the same names, also in a
// process that already has that BLAS loaded.
#pragma once

// Gives the back end's function for a Fortran symbol ("spotrf_"), or null. The
// back end is loaded on first use; a failure to load is reported once on stderr,
// a symbol the loaded back end lacks on each look-up of it.
void* fortranSymbol(const char* name);
