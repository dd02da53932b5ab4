#ifndef LIBSTENCILOR_EXPORT_H
#define LIBSTENCILOR_EXPORT_H

#if __cplusplus < 202002L && (!defined(_MSVC_LANG) || _MSVC_LANG < 202002L)
#error "C++20 is needed, as by -std=c++20"
#endif

/// @file
/// Marks what `libStencilor` offers to other modules. Everything unmarked stays hidden, so that a
/// forgotten mark fails at link time on Linux as it does on Windows.
///
/// `STENCILOR_BUILDING` is defined while the library itself is compiled, `STENCILOR_STATIC` where
/// it is built or used as a static library.

/// @def STENCILOR_EXPORT
/// Marks what hosts may use of `libStencilor`.
#if defined(STENCILOR_STATIC)
#define STENCILOR_EXPORT
#elif defined(_WIN32)
#if defined(STENCILOR_BUILDING)
#define STENCILOR_EXPORT __declspec(dllexport)
#else
#define STENCILOR_EXPORT __declspec(dllimport)
#endif
#else
#define STENCILOR_EXPORT __attribute__((visibility("default")))
#endif

#endif
