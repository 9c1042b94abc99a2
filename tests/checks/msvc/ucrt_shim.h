// What libc++ asks of Microsoft's C library and Wine's C headers leave out, have as macros, or have in some versions
// only: included before everything else.
#pragma once
#pragma clang system_header

#include <locale.h>
#include <stddef.h>
#include <stdlib.h>

typedef double max_align_t;
#ifndef MB_CUR_MAX
#define MB_CUR_MAX 2
#endif
extern "C" {
float _strtof_l(const char*, char**, _locale_t);
double _strtod_l(const char*, char**, _locale_t);
int _islower_l(int, _locale_t);
int _isupper_l(int, _locale_t);
}

// Newer versions have it.
#define timespec wine_timespec
#include <time.h>
#undef timespec
struct timespec {
  time_t tv_sec;
  long tv_nsec;
};

// Macros in older ones, some of them templates in newer ones.
#define isfinite wine_isfinite
#define isinf wine_isinf
#define isnan wine_isnan
#include <math.h>
#undef isfinite
#undef isinf
#undef isnan
#undef isnormal
#undef signbit
#define ASKED_OF_A_NUMBER(name) \
  template <typename T>         \
  inline bool name(T x) {       \
    return __builtin_##name(x); \
  }
ASKED_OF_A_NUMBER(isfinite)
ASKED_OF_A_NUMBER(isinf)
ASKED_OF_A_NUMBER(isnan)
ASKED_OF_A_NUMBER(isnormal)
ASKED_OF_A_NUMBER(signbit)
#undef ASKED_OF_A_NUMBER

// Wine's wchar.h hides libc++'s, which looks for its own guard.
#include <wchar.h>
#define _LIBCPP_WCHAR_H
