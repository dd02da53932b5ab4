#ifndef LIBSTENCILOR_EXPORT_H
#define LIBSTENCILOR_EXPORT_H

#if __cplusplus < 202002L && (!defined(_MSVC_LANG) || _MSVC_LANG < 202002L)
#error "C++20 is required; compile with -std=c++20"
#endif

/// @file
/// Marks what `libStencilor` exports. Everything else is hidden, so that a missing mark is a link
/// error on Linux, as on Windows.
///
/// `STENCILOR_BUILDING` is defined while the library itself is compiled, and `STENCILOR_STATIC` if
/// it is built or used as a static library.

/// @def STENCILOR_EXPORT
/// Marks what hosts can use from `libStencilor`.
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
