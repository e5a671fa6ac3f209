// Machine words: every exported routine takes its arguments as pointer-sized
// words, the addresses of the caller's variables, and passes exactly its own
// word count on. These macros spell the parameter and argument lists of a given
// count, so that the per-routine tables give a count, not a hand-written list.
#pragma once

using Word = void*;

// Marks a symbol that the library exports; the export list decides the rest.
#if defined(_WIN32)
#define VORN_EXPORT
#else
#define VORN_EXPORT __attribute__((visibility("default")))
#endif

#define VORN_WORDS_1 Word w1
#define VORN_WORDS_2 VORN_WORDS_1, Word w2
#define VORN_WORDS_3 VORN_WORDS_2, Word w3
#define VORN_WORDS_4 VORN_WORDS_3, Word w4
#define VORN_WORDS_5 VORN_WORDS_4, Word w5
#define VORN_WORDS_6 VORN_WORDS_5, Word w6
#define VORN_WORDS_7 VORN_WORDS_6, Word w7
#define VORN_WORDS_8 VORN_WORDS_7, Word w8
#define VORN_WORDS_9 VORN_WORDS_8, Word w9
#define VORN_WORDS_10 VORN_WORDS_9, Word w10
#define VORN_WORDS_11 VORN_WORDS_10, Word w11
#define VORN_WORDS_12 VORN_WORDS_11, Word w12
#define VORN_WORDS_13 VORN_WORDS_12, Word w13
#define VORN_WORDS_14 VORN_WORDS_13, Word w14
#define VORN_WORDS_15 VORN_WORDS_14, Word w15
#define VORN_WORDS_16 VORN_WORDS_15, Word w16
#define VORN_WORDS_17 VORN_WORDS_16, Word w17
#define VORN_WORDS_18 VORN_WORDS_17, Word w18
#define VORN_WORDS_19 VORN_WORDS_18, Word w19
#define VORN_WORDS_20 VORN_WORDS_19, Word w20
#define VORN_WORDS_21 VORN_WORDS_20, Word w21
#define VORN_WORDS_22 VORN_WORDS_21, Word w22
#define VORN_WORDS_23 VORN_WORDS_22, Word w23
#define VORN_WORDS_24 VORN_WORDS_23, Word w24
#define VORN_WORDS_25 VORN_WORDS_24, Word w25
#define VORN_WORDS_26 VORN_WORDS_25, Word w26
#define VORN_WORDS_27 VORN_WORDS_26, Word w27
#define VORN_WORDS_28 VORN_WORDS_27, Word w28
#define VORN_WORDS_29 VORN_WORDS_28, Word w29
#define VORN_WORDS_30 VORN_WORDS_29, Word w30
#define VORN_WORDS_31 VORN_WORDS_30, Word w31
#define VORN_WORDS_32 VORN_WORDS_31, Word w32

#define VORN_ARGS_1 w1
#define VORN_ARGS_2 VORN_ARGS_1, w2
#define VORN_ARGS_3 VORN_ARGS_2, w3
#define VORN_ARGS_4 VORN_ARGS_3, w4
#define VORN_ARGS_5 VORN_ARGS_4, w5
#define VORN_ARGS_6 VORN_ARGS_5, w6
#define VORN_ARGS_7 VORN_ARGS_6, w7
#define VORN_ARGS_8 VORN_ARGS_7, w8
#define VORN_ARGS_9 VORN_ARGS_8, w9
#define VORN_ARGS_10 VORN_ARGS_9, w10
#define VORN_ARGS_11 VORN_ARGS_10, w11
#define VORN_ARGS_12 VORN_ARGS_11, w12
#define VORN_ARGS_13 VORN_ARGS_12, w13
#define VORN_ARGS_14 VORN_ARGS_13, w14
#define VORN_ARGS_15 VORN_ARGS_14, w15
#define VORN_ARGS_16 VORN_ARGS_15, w16
#define VORN_ARGS_17 VORN_ARGS_16, w17
#define VORN_ARGS_18 VORN_ARGS_17, w18
#define VORN_ARGS_19 VORN_ARGS_18, w19
#define VORN_ARGS_20 VORN_ARGS_19, w20
#define VORN_ARGS_21 VORN_ARGS_20, w21
#define VORN_ARGS_22 VORN_ARGS_21, w22
#define VORN_ARGS_23 VORN_ARGS_22, w23
#define VORN_ARGS_24 VORN_ARGS_23, w24
#define VORN_ARGS_25 VORN_ARGS_24, w25
#define VORN_ARGS_26 VORN_ARGS_25, w26
#define VORN_ARGS_27 VORN_ARGS_26, w27
#define VORN_ARGS_28 VORN_ARGS_27, w28
#define VORN_ARGS_29 VORN_ARGS_28, w29
#define VORN_ARGS_30 VORN_ARGS_29, w30
#define VORN_ARGS_31 VORN_ARGS_30, w31
#define VORN_ARGS_32 VORN_ARGS_31, w32
