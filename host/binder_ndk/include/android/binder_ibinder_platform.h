/*
 * Host stand-in for the platform-only binder NDK additions. The scheduling flag is recorded on
 * the binder (tests read it back through android/testing/binder_hooks.h); it changes nothing
 * else in this process.
 */
#pragma once

#include <android/binder_ibinder.h>
#include <stdbool.h>
#include <sys/cdefs.h>

__BEGIN_DECLS

// Must be called on a local binder before it is shared; aborts on a remote binder.
void AIBinder_setInheritRt(AIBinder* binder, bool inheritRt);

__END_DECLS
