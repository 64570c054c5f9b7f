/*
 * Host stand-in for the binder NDK object API. Binders live in this process only: a binder made
 * by AIBinder_new is local and is kept alive by its strong count; AIBinder_Weak handles do not
 * keep it alive. Death links succeed only on binders that stand for another process (made so by
 * the test hooks of android/testing/binder_hooks.h). All functions are thread-safe except
 * AIBinder_setInheritRt, which must run before the binder is shared.
 */
#pragma once

#include <android/binder_parcel.h>
#include <android/binder_status.h>
#include <stdbool.h>
#include <stdint.h>
#include <sys/cdefs.h>
#include <sys/types.h>

__BEGIN_DECLS

typedef uint32_t transaction_code_t;
typedef uint32_t binder_flags_t;

enum {
    FIRST_CALL_TRANSACTION = 0x00000001,
    LAST_CALL_TRANSACTION = 0x00ffffff,
};

enum {
    FLAG_ONEWAY = 0x01,
};

struct AIBinder_Class;
typedef struct AIBinder_Class AIBinder_Class;

struct AIBinder;
typedef struct AIBinder AIBinder;

struct AIBinder_Weak;
typedef struct AIBinder_Weak AIBinder_Weak;

struct AIBinder_DeathRecipient;
typedef struct AIBinder_DeathRecipient AIBinder_DeathRecipient;

typedef void* (*AIBinder_Class_onCreate)(void* args);
typedef void (*AIBinder_Class_onDestroy)(void* userData);
typedef binder_status_t (*AIBinder_Class_onTransact)(AIBinder* binder, transaction_code_t code,
                                                     const AParcel* in, AParcel* out);

// Classes live for the whole process.
__attribute__((warn_unused_result)) AIBinder_Class* AIBinder_Class_define(
        const char* interfaceDescriptor, AIBinder_Class_onCreate onCreate,
        AIBinder_Class_onDestroy onDestroy, AIBinder_Class_onTransact onTransact);
const char* AIBinder_Class_getDescriptor(const AIBinder_Class* clazz);

// A local binder holding onCreate(args) as its user data, with one strong reference.
__attribute__((warn_unused_result)) AIBinder* AIBinder_new(const AIBinder_Class* clazz, void* args);

bool AIBinder_isRemote(const AIBinder* binder);
bool AIBinder_isAlive(const AIBinder* binder);
binder_status_t AIBinder_ping(AIBinder* binder);

binder_status_t AIBinder_linkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                     void* cookie);
binder_status_t AIBinder_unlinkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                       void* cookie);

uid_t AIBinder_getCallingUid(void);
pid_t AIBinder_getCallingPid(void);
bool AIBinder_isHandlingTransaction(void);

void AIBinder_incStrong(AIBinder* binder);
void AIBinder_decStrong(AIBinder* binder);
int32_t AIBinder_debugGetRefCount(AIBinder* binder);

bool AIBinder_associateClass(AIBinder* binder, const AIBinder_Class* clazz);
const AIBinder_Class* AIBinder_getClass(AIBinder* binder);
void* AIBinder_getUserData(AIBinder* binder);
bool AIBinder_lt(const AIBinder* lhs, const AIBinder* rhs);

__attribute__((warn_unused_result)) AIBinder_Weak* AIBinder_Weak_new(AIBinder* binder);
void AIBinder_Weak_delete(AIBinder_Weak* weakBinder);
__attribute__((warn_unused_result)) AIBinder* AIBinder_Weak_promote(AIBinder_Weak* weakBinder);
__attribute__((warn_unused_result)) AIBinder_Weak* AIBinder_Weak_clone(const AIBinder_Weak* weak);
bool AIBinder_Weak_lt(const AIBinder_Weak* lhs, const AIBinder_Weak* rhs);

typedef void (*AIBinder_DeathRecipient_onBinderDied)(void* cookie);
typedef void (*AIBinder_DeathRecipient_onBinderUnlinked)(void* cookie);

__attribute__((warn_unused_result)) AIBinder_DeathRecipient* AIBinder_DeathRecipient_new(
        AIBinder_DeathRecipient_onBinderDied onBinderDied);
void AIBinder_DeathRecipient_setOnUnlinked(AIBinder_DeathRecipient* recipient,
                                           AIBinder_DeathRecipient_onBinderUnlinked onUnlinked);
// Unlinks every link of the recipient, then frees it.
void AIBinder_DeathRecipient_delete(AIBinder_DeathRecipient* recipient);

__END_DECLS
