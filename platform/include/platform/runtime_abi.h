#pragma once

// The runtime is built with MSVC. For virtual methods that return a structure by value, MSVC hands over `this` first
// and the address of the result second; every other compiler we build with does it the other way round. The interface
// header that those compilers see therefore declares such slots with an explicit result pointer, which is byte for
// byte what MSVC does, and this macro defines such a method the same way for both:
//
//   OMBREL_RETURNS_STRUCT(vr::DriverPose_t, GetPose, CurrentPose())
//   OMBREL_RETURNS_STRUCT(vr::DistortionCoordinates_t, ComputeDistortion, Undistorted(u, v), vr::EVREye eye, float u,
//                         float v)
//
// Overrides `Name(args...)`, whose result is the expression.
#if defined(_MSC_VER)
#define OMBREL_RETURNS_STRUCT(Result, Name, Expression, ...) \
  Result Name(__VA_ARGS__) override { return Expression; }
#else
#define OMBREL_RETURNS_STRUCT(Result, Name, Expression, ...)         \
  Result* Name(Result* result __VA_OPT__(, ) __VA_ARGS__) override { \
    *result = Expression;                                            \
    return result;                                                   \
  }
#endif
