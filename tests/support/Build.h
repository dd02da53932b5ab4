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

/// True where a sanitizer multiplies the memory that is needed.
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

/// True where the libraries take several times as long as those that are shipped. How the tests
/// themselves are compiled says nothing about that.
#if defined(TESTS_SLOW_BUILD)
inline constexpr bool slow = true;
#else
inline constexpr bool slow = false;
#endif

} // namespace support

#endif
