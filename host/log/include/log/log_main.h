/*
 * The ALOGx macro family of liblog, over the functions of <android/log.h>.
 */
#pragma once

#include <android/log.h>

#ifndef LOG_TAG
#define LOG_TAG NULL
#endif

#ifndef LOG_NDEBUG
#ifdef NDEBUG
#define LOG_NDEBUG 1
#else
#define LOG_NDEBUG 0
#endif
#endif

#define ALOG(priority, tag, ...) __android_log_print(ANDROID_##priority, tag, __VA_ARGS__)

#if LOG_NDEBUG
#define ALOGV(...)                                   \
    do {                                             \
        if (0) {                                     \
            ALOG(LOG_VERBOSE, LOG_TAG, __VA_ARGS__); \
        }                                            \
    } while (0)
#else
#define ALOGV(...) ALOG(LOG_VERBOSE, LOG_TAG, __VA_ARGS__)
#endif
#define ALOGD(...) ALOG(LOG_DEBUG, LOG_TAG, __VA_ARGS__)
#define ALOGI(...) ALOG(LOG_INFO, LOG_TAG, __VA_ARGS__)
#define ALOGW(...) ALOG(LOG_WARN, LOG_TAG, __VA_ARGS__)
#define ALOGE(...) ALOG(LOG_ERROR, LOG_TAG, __VA_ARGS__)

#define LOG_ALWAYS_FATAL(...) __android_log_assert(NULL, LOG_TAG, __VA_ARGS__)

#define LOG_ALWAYS_FATAL_IF(cond, ...)                                                             \
    ((__builtin_expect(!!(cond), 0)) ? ((void)__android_log_assert(#cond, LOG_TAG, ##__VA_ARGS__)) \
                                     : (void)0)

#if LOG_NDEBUG
#define LOG_FATAL_IF(cond, ...) ((void)0)
#else
#define LOG_FATAL_IF(cond, ...) LOG_ALWAYS_FATAL_IF(cond, ##__VA_ARGS__)
#endif
#define ALOG_ASSERT(cond, ...) LOG_FATAL_IF(!(cond), ##__VA_ARGS__)
