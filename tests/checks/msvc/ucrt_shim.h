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
template <typename T>
inline bool isfinite(T x) {
  return __builtin_isfinite(x);
}
template <typename T>
inline bool isinf(T x) {
  return __builtin_isinf(x);
}
template <typename T>
inline bool isnan(T x) {
  return __builtin_isnan(x);
}
template <typename T>
inline bool isnormal(T x) {
  return __builtin_isnormal(x);
}
template <typename T>
inline bool signbit(T x) {
  return __builtin_signbit(x);
}

// Wine's wchar.h hides libc++'s, which looks for its own guard.
#include <wchar.h>
#define _LIBCPP_WCHAR_H
