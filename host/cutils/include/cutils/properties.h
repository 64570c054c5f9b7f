/*
 * System properties over an in-process store shared by the whole process (one copy in
 * libcutils). Every function is thread-safe. Values are at most PROPERTY_VALUE_MAX - 1
 * characters; a name must be non-empty, of letters, digits and "_-@:.", with no leading,
 * trailing or doubled dot. "ro." properties can be set only once.
 */
#pragma once

#include <stdint.h>
#include <sys/cdefs.h>

__BEGIN_DECLS

#ifndef PROP_NAME_MAX
#define PROP_NAME_MAX 32
#endif
#ifndef PROP_VALUE_MAX
#define PROP_VALUE_MAX 92
#endif

#define PROPERTY_KEY_MAX PROP_NAME_MAX
#define PROPERTY_VALUE_MAX PROP_VALUE_MAX

/*
 * Copies the value into `value` (PROPERTY_VALUE_MAX bytes) and returns its length. A missing or
 * empty property yields `default_value` cut to PROPERTY_VALUE_MAX - 1 characters, or "" and 0
 * when that is NULL.
 */
int property_get(const char* key, char* value, const char* default_value);

/* "1", "y", "yes", "true", "on" are true; "0", "n", "no", "false", "off" are false. */
int8_t property_get_bool(const char* key, int8_t default_value);

/*
 * strtoimax with base 0 (so "010" is 8 and "0x10" is 16); trailing text is ignored. The default
 * comes back for a missing property, no digits, overflow or a value outside the type.
 */
int64_t property_get_int64(const char* key, int64_t default_value);
int32_t property_get_int32(const char* key, int32_t default_value);

/* 0 on success, -1 for a bad name, a too long value or an "ro." property already set. */
int property_set(const char* key, const char* value);

/* Calls `propfn` once per property, outside the store's lock. Returns 0. */
int property_list(void (*propfn)(const char* key, const char* value, void* cookie), void* cookie);

__END_DECLS
