#ifndef LIBKEL_EXPORT_H
#define LIBKEL_EXPORT_H

#if __cplusplus < 202002L && (!defined(_MSVC_LANG) || _MSVC_LANG < 202002L)
#error "C++20 is required; compile with -std=c++20"
#endif

/// @file
/// Marks what `libKel` exports. Everything else is hidden, so that a missing mark is a link error
/// on Linux, as on Windows.
///
/// `KEL_BUILDING` is defined while the library itself is compiled, and `KEL_STATIC` if it is built
/// or used as a static library.

/// @def KEL_EXPORT
/// Marks what hosts can use from `libKel`.
#if defined(KEL_STATIC)
#define KEL_EXPORT
#elif defined(_WIN32)
#if defined(KEL_BUILDING)
#define KEL_EXPORT __declspec(dllexport)
#else
#define KEL_EXPORT __declspec(dllimport)
#endif
#else
#define KEL_EXPORT __attribute__((visibility("default")))
#endif

#endif
