/*
 * Trace sections (atrace). Code brackets work with ATRACE_BEGIN()/ATRACE_END() under its
 * ATRACE_TAG; the body functions run only when that tag is in the enabled-tags word. On this
 * host the word holds ATRACE_TAG_NOT_READY alone (every category off) until a test or tool
 * sets it through cutils/testing/TraceHooks.h; events then go to the installed recorder.
 * Thread-safe.
 */
#pragma once

#include <cutils/compiler.h>
#include <stdbool.h>
#include <stdint.h>
#include <sys/cdefs.h>

__BEGIN_DECLS

#define ATRACE_TAG_NEVER 0
#define ATRACE_TAG_ALWAYS (1 << 0)
#define ATRACE_TAG_GRAPHICS (1 << 1)
#define ATRACE_TAG_INPUT (1 << 2)
#define ATRACE_TAG_VIEW (1 << 3)
#define ATRACE_TAG_WEBVIEW (1 << 4)
#define ATRACE_TAG_WINDOW_MANAGER (1 << 5)
#define ATRACE_TAG_ACTIVITY_MANAGER (1 << 6)
#define ATRACE_TAG_SYNC_MANAGER (1 << 7)
#define ATRACE_TAG_AUDIO (1 << 8)
#define ATRACE_TAG_VIDEO (1 << 9)
#define ATRACE_TAG_CAMERA (1 << 10)
#define ATRACE_TAG_HAL (1 << 11)
#define ATRACE_TAG_APP (1 << 12)
#define ATRACE_TAG_RESOURCES (1 << 13)
#define ATRACE_TAG_DALVIK (1 << 14)
#define ATRACE_TAG_RS (1 << 15)
#define ATRACE_TAG_BIONIC (1 << 16)
#define ATRACE_TAG_POWER (1 << 17)
#define ATRACE_TAG_PACKAGE_MANAGER (1 << 18)
#define ATRACE_TAG_SYSTEM_SERVER (1 << 19)
#define ATRACE_TAG_DATABASE (1 << 20)
#define ATRACE_TAG_NETWORK (1 << 21)
#define ATRACE_TAG_ADB (1 << 22)
#define ATRACE_TAG_VIBRATOR (1 << 23)
#define ATRACE_TAG_AIDL (1 << 24)
#define ATRACE_TAG_NNAPI (1 << 25)
#define ATRACE_TAG_RRO (1 << 26)
#define ATRACE_TAG_THERMAL (1 << 27)
#define ATRACE_TAG_LAST ATRACE_TAG_THERMAL

/* Set until the tags have been read; no category is enabled while it is the only bit. */
#define ATRACE_TAG_NOT_READY (1ULL << 63)

#define ATRACE_TAG_VALID_MASK ((ATRACE_TAG_LAST - 1) | ATRACE_TAG_LAST)

#ifndef ATRACE_TAG
#define ATRACE_TAG ATRACE_TAG_NEVER
#elif ATRACE_TAG > ATRACE_TAG_VALID_MASK
#error ATRACE_TAG must be defined to be one of the tags defined in cutils/trace.h
#endif

void atrace_init(void);
void atrace_setup(void);
void atrace_update_tags(void);
void atrace_set_tracing_enabled(bool enabled);
uint64_t atrace_get_enabled_tags(void);

void atrace_begin_body(const char* name);
void atrace_end_body(void);
void atrace_async_begin_body(const char* name, int32_t cookie);
void atrace_async_end_body(const char* name, int32_t cookie);
void atrace_async_for_track_begin_body(const char* track_name, const char* name, int32_t cookie);
void atrace_async_for_track_end_body(const char* track_name, int32_t cookie);
void atrace_instant_body(const char* name);
void atrace_instant_for_track_body(const char* track_name, const char* name);
void atrace_int_body(const char* name, int32_t value);
void atrace_int64_body(const char* name, int64_t value);

#define ATRACE_ENABLED() atrace_is_tag_enabled(ATRACE_TAG)
static inline uint64_t atrace_is_tag_enabled(uint64_t tag) {
    return atrace_get_enabled_tags() & tag;
}

#define ATRACE_BEGIN(name) atrace_begin(ATRACE_TAG, name)
static inline void atrace_begin(uint64_t tag, const char* name) {
    if (CC_UNLIKELY(atrace_is_tag_enabled(tag))) atrace_begin_body(name);
}

#define ATRACE_END() atrace_end(ATRACE_TAG)
static inline void atrace_end(uint64_t tag) {
    if (CC_UNLIKELY(atrace_is_tag_enabled(tag))) atrace_end_body();
}

/* Sections that may end on another thread; the cookie pairs a begin with its end. */
#define ATRACE_ASYNC_BEGIN(name, cookie) atrace_async_begin(ATRACE_TAG, name, cookie)
static inline void atrace_async_begin(uint64_t tag, const char* name, int32_t cookie) {
    if (CC_UNLIKELY(atrace_is_tag_enabled(tag))) atrace_async_begin_body(name, cookie);
}

#define ATRACE_ASYNC_END(name, cookie) atrace_async_end(ATRACE_TAG, name, cookie)
static inline void atrace_async_end(uint64_t tag, const char* name, int32_t cookie) {
    if (CC_UNLIKELY(atrace_is_tag_enabled(tag))) atrace_async_end_body(name, cookie);
}

#define ATRACE_ASYNC_FOR_TRACK_BEGIN(track_name, name, cookie) \
    atrace_async_for_track_begin(ATRACE_TAG, track_name, name, cookie)
static inline void atrace_async_for_track_begin(uint64_t tag, const char* track_name,
                                                const char* name, int32_t cookie) {
    if (CC_UNLIKELY(atrace_is_tag_enabled(tag))) {
        atrace_async_for_track_begin_body(track_name, name, cookie);
    }
}

#define ATRACE_ASYNC_FOR_TRACK_END(track_name, cookie) \
    atrace_async_for_track_end(ATRACE_TAG, track_name, cookie)
static inline void atrace_async_for_track_end(uint64_t tag, const char* track_name, int32_t cookie) {
    if (CC_UNLIKELY(atrace_is_tag_enabled(tag))) {
        atrace_async_for_track_end_body(track_name, cookie);
    }
}

#define ATRACE_INSTANT(name) atrace_instant(ATRACE_TAG, name)
static inline void atrace_instant(uint64_t tag, const char* name) {
    if (CC_UNLIKELY(atrace_is_tag_enabled(tag))) atrace_instant_body(name);
}

#define ATRACE_INSTANT_FOR_TRACK(track_name, name) \
    atrace_instant_for_track(ATRACE_TAG, track_name, name)
static inline void atrace_instant_for_track(uint64_t tag, const char* track_name, const char* name) {
    if (CC_UNLIKELY(atrace_is_tag_enabled(tag))) atrace_instant_for_track_body(track_name, name);
}

#define ATRACE_INT(name, value) atrace_int(ATRACE_TAG, name, value)
static inline void atrace_int(uint64_t tag, const char* name, int32_t value) {
    if (CC_UNLIKELY(atrace_is_tag_enabled(tag))) atrace_int_body(name, value);
}

#define ATRACE_INT64(name, value) atrace_int64(ATRACE_TAG, name, value)
static inline void atrace_int64(uint64_t tag, const char* name, int64_t value) {
    if (CC_UNLIKELY(atrace_is_tag_enabled(tag))) atrace_int64_body(name, value);
}

__END_DECLS
