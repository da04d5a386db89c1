#pragma once

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VELHLS_TESTS_ARE_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer) || __has_feature(memory_sanitizer)
#define VELHLS_TESTS_ARE_SANITIZED 1
#endif
#endif
#ifndef VELHLS_TESTS_ARE_SANITIZED
#define VELHLS_TESTS_ARE_SANITIZED 0
#endif

/// Of a sanitized program nothing is told by the memory that it takes: it keeps what is freed.
inline constexpr bool isSanitized = VELHLS_TESTS_ARE_SANITIZED != 0;
