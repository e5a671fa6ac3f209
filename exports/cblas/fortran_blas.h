// The link library's BLAS routines that the CBLAS functions forward to, in the
// link library's own convention: every argument is the address of the caller's
// variable or array, there are no hidden string lengths, and the complex dot
// results go through word 1. Each routine is declared by its result and word
// count, as the routine list gives them. The complex dots are called by their
// undecorated names: cdotu_ and the like are the gfortran shim's, preloaded in
// front of this library, which return the result in registers.
#pragma once

#include <cstddef>
#include <type_traits>
#include <utility>

namespace cblas {

using Ref = const void*;

template <class Result, class Words>
struct FortranOf;
template <class Result, std::size_t... word>
struct FortranOf<Result, std::index_sequence<word...>> {
    using type = Result(std::conditional_t<true, Ref, std::integral_constant<std::size_t, word>>...);
};
// A routine of `words` words returning `Result`.
template <class Result, std::size_t words>
using Fortran = typename FortranOf<Result, std::make_index_sequence<words>>::type;

}  // namespace cblas

extern "C" {
// Level 1
cblas::Fortran<float, 5> sdot_;
cblas::Fortran<double, 5> ddot_, dsdot_;
cblas::Fortran<float, 6> sdsdot_;
cblas::Fortran<void, 6> cdotu, cdotc, zdotu, zdotc;
cblas::Fortran<float, 3> snrm2_, sasum_, scnrm2_, scasum_;
cblas::Fortran<double, 3> dnrm2_, dasum_, dznrm2_, dzasum_;
cblas::Fortran<int, 3> isamax_, idamax_, icamax_, izamax_;
cblas::Fortran<double, 1> dcabs1_;
cblas::Fortran<void, 5> sswap_, dswap_, cswap_, zswap_, scopy_, dcopy_, ccopy_, zcopy_;
cblas::Fortran<void, 6> saxpy_, daxpy_, caxpy_, zaxpy_;
cblas::Fortran<void, 5> srotmg_, drotmg_;
cblas::Fortran<void, 6> srotm_, drotm_;
cblas::Fortran<void, 4> sscal_, dscal_, cscal_, zscal_, csscal_, zdscal_;
cblas::Fortran<void, 4> srotg_, drotg_, crotg_, zrotg_;
cblas::Fortran<void, 7> srot_, drot_, csrot_, zdrot_;
// Level 2
cblas::Fortran<void, 11> sgemv_, dgemv_, cgemv_, zgemv_;
cblas::Fortran<void, 13> sgbmv_, dgbmv_, cgbmv_, zgbmv_;
cblas::Fortran<void, 8> strmv_, dtrmv_, ctrmv_, ztrmv_, strsv_, dtrsv_, ctrsv_, ztrsv_;
cblas::Fortran<void, 9> stbmv_, dtbmv_, ctbmv_, ztbmv_, stbsv_, dtbsv_, ctbsv_, ztbsv_;
cblas::Fortran<void, 7> stpmv_, dtpmv_, ctpmv_, ztpmv_, stpsv_, dtpsv_, ctpsv_, ztpsv_;
cblas::Fortran<void, 10> ssymv_, dsymv_, chemv_, zhemv_;
cblas::Fortran<void, 11> ssbmv_, dsbmv_, chbmv_, zhbmv_;
cblas::Fortran<void, 9> sspmv_, dspmv_, chpmv_, zhpmv_;
cblas::Fortran<void, 9> sger_, dger_, cgeru_, zgeru_, cgerc_, zgerc_;
cblas::Fortran<void, 7> ssyr_, dsyr_, cher_, zher_;
cblas::Fortran<void, 6> sspr_, dspr_, chpr_, zhpr_;
cblas::Fortran<void, 9> ssyr2_, dsyr2_, cher2_, zher2_;
cblas::Fortran<void, 8> sspr2_, dspr2_, chpr2_, zhpr2_;
// Level 3
cblas::Fortran<void, 13> sgemm_, dgemm_, cgemm_, zgemm_;
cblas::Fortran<void, 12> ssymm_, dsymm_, csymm_, zsymm_, chemm_, zhemm_;
cblas::Fortran<void, 10> ssyrk_, dsyrk_, csyrk_, zsyrk_, cherk_, zherk_;
cblas::Fortran<void, 12> ssyr2k_, dsyr2k_, csyr2k_, zsyr2k_, cher2k_, zher2k_;
cblas::Fortran<void, 11> strmm_, dtrmm_, ctrmm_, ztrmm_, strsm_, dtrsm_, ctrsm_, ztrsm_;
}
