// The routines of the CPU library. Each takes our argument convention (every
// argument a word holding an address, no hidden lengths) and calls the back end's
// Fortran routine, adding the hidden length 1 behind the last argument for each
// single-character argument, as gfortran's ABI expects.
//
//   CPU_ROUTINE(name, word count, positions of the character arguments...)
CPU_ROUTINE(spotrf, 5, 1)
CPU_ROUTINE(dpotrf, 5, 1)
CPU_ROUTINE(dgesvd, 14, 1, 2)
