/*
 * native_handle_t: a small record of file descriptors followed by plain ints that describes a
 * graphics buffer (buffer_handle_t). Whoever created or cloned a handle owns its fds:
 * native_handle_close() closes them, native_handle_delete() frees the record, and neither does
 * the other's job. The functions keep no state and may be called from any thread.
 */
#pragma once

#include <stdalign.h>

#ifdef __cplusplus
extern "C" {
#endif

#define NATIVE_HANDLE_MAX_FDS 1024
#define NATIVE_HANDLE_MAX_INTS 1024

typedef struct native_handle {
    int version; /* sizeof(native_handle_t) */
    int numFds;  /* fds come first in data[] */
    int numInts; /* then this many ints */
    int data[0];
} native_handle_t;

typedef const native_handle_t* buffer_handle_t;

/* Storage for a handle of at most maxFds fds and maxInts ints, for native_handle_init(). */
#define NATIVE_HANDLE_DECLARE_STORAGE(name, maxFds, maxInts) \
    alignas(native_handle_t) char(                           \
            name)[sizeof(native_handle_t) + sizeof(int) * ((maxFds) + (maxInts))]

/* Writes the header into caller-provided storage. NULL with errno EINVAL when misaligned. */
native_handle_t* native_handle_init(char* storage, int numFds, int numInts);

/* Allocates a handle; data[] is left uninitialised. NULL with errno EINVAL for bad counts. */
native_handle_t* native_handle_create(int numFds, int numInts);

/* A new handle with dup()ed fds and copied ints. NULL (errno from dup) if any dup fails. */
native_handle_t* native_handle_clone(const native_handle_t* handle);

/* Closes the fds, keeping errno; does not free. -EINVAL for a bad version, 0 otherwise. */
int native_handle_close(const native_handle_t* h);

/* Frees the record without closing the fds. -EINVAL for a bad version, 0 otherwise. */
int native_handle_delete(native_handle_t* h);

/* fdsan ownership tags exist only on bionic; on this host these act as their untagged forms. */
int native_handle_close_with_tag(const native_handle_t* h);
void native_handle_set_fdsan_tag(const native_handle_t* handle);
void native_handle_unset_fdsan_tag(const native_handle_t* handle);

#ifdef __cplusplus
}
#endif
