/*
 * Compiler helpers of libcutils: branch hints and the export attribute that platform headers
 * put on their public functions.
 */
#pragma once

#ifndef __has_builtin
#define __has_builtin(x) 0
#endif

#if __has_builtin(__builtin_expect)
#define CC_LIKELY(exp) (__builtin_expect(!!(exp), 1))
#define CC_UNLIKELY(exp) (__builtin_expect(!!(exp), 0))
#else
#define CC_LIKELY(exp) (exp)
#define CC_UNLIKELY(exp) (exp)
#endif

#ifndef ANDROID_API
#define ANDROID_API __attribute__((visibility("default")))
#endif
