#ifndef TESTS_SUPPORT_BUILD_H
#define TESTS_SUPPORT_BUILD_H

namespace support {

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TESTS_ADDRESS_SANITIZER
#endif
#if __has_feature(thread_sanitizer)
#define TESTS_THREAD_SANITIZER
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define TESTS_ADDRESS_SANITIZER
#endif
#if defined(__SANITIZE_THREAD__)
#define TESTS_THREAD_SANITIZER
#endif

/// True if a sanitizer multiplies the required memory.
#if defined(TESTS_ADDRESS_SANITIZER) || defined(TESTS_THREAD_SANITIZER)
inline constexpr bool sanitized = true;
#else
inline constexpr bool sanitized = false;
#endif

#if defined(TESTS_THREAD_SANITIZER)
inline constexpr bool threadSanitized = true;
#else
inline constexpr bool threadSanitized = false;
#endif

/// True if the libraries are several times slower than those that are shipped, which is independent
/// of how the tests themselves are compiled.
#if defined(TESTS_SLOW_BUILD)
inline constexpr bool slow = true;
#else
inline constexpr bool slow = false;
#endif

} // namespace support

#endif
