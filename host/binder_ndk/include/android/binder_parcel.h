/*
 * Host stand-in for the binder NDK parcel type. Calls stay in the process and never parcel
 * their arguments, so only the opaque type exists (it appears in class callbacks).
 */
#pragma once

#include <sys/cdefs.h>

__BEGIN_DECLS

struct AParcel;
typedef struct AParcel AParcel;

__END_DECLS
