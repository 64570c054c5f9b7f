#define LOG_TAG "libbinder_ndk"

#include <android/binder_ibinder.h>
#include <android/binder_ibinder_platform.h>
#include <android/testing/binder_hooks.h>
#include <log/log.h>
#include <unistd.h>

#include <functional>

#include "ibinder_internal.h"

struct AIBinder_Weak {
    std::shared_ptr<binder_ndk::BinderCore> core;
};

AIBinder::AIBinder(const AIBinder_Class* clazz, void* args)
    : clazz(clazz),
      userData(clazz->onCreate(args)),
      core(std::make_shared<binder_ndk::BinderCore>(this)) {}

AIBinder::~AIBinder() {
    binder_ndk::dropDeathLinks(this);
    clazz->onDestroy(userData);
}

AIBinder_Class* AIBinder_Class_define(const char* interfaceDescriptor,
                                      AIBinder_Class_onCreate onCreate,
                                      AIBinder_Class_onDestroy onDestroy,
                                      AIBinder_Class_onTransact onTransact) {
    LOG_ALWAYS_FATAL_IF(interfaceDescriptor == nullptr || onCreate == nullptr ||
                                onDestroy == nullptr || onTransact == nullptr,
                        "AIBinder_Class_define needs a descriptor and all three callbacks");
    return new AIBinder_Class{interfaceDescriptor, onCreate, onDestroy, onTransact};
}

const char* AIBinder_Class_getDescriptor(const AIBinder_Class* clazz) {
    LOG_ALWAYS_FATAL_IF(clazz == nullptr, "AIBinder_Class_getDescriptor called on a null class");
    return clazz->descriptor.c_str();
}

AIBinder* AIBinder_new(const AIBinder_Class* clazz, void* args) {
    if (clazz == nullptr) {
        ALOGE("AIBinder_new: must provide a class to construct an AIBinder");
        return nullptr;
    }
    return new AIBinder(clazz, args);
}

bool AIBinder_isRemote(const AIBinder* binder) {
    return binder != nullptr && binder->remote.load();
}

uid_t AIBinder_getCallingUid() {
    return getuid();
}

pid_t AIBinder_getCallingPid() {
    return getpid();
}

bool AIBinder_isHandlingTransaction() {
    return false;
}

void AIBinder_incStrong(AIBinder* binder) {
    if (binder == nullptr) return;
    binder->core->strong.fetch_add(1, std::memory_order_relaxed);
}

void AIBinder_decStrong(AIBinder* binder) {
    if (binder == nullptr) {
        ALOGE("AIBinder_decStrong: on null binder");
        return;
    }
    if (binder->core->strong.fetch_sub(1, std::memory_order_acq_rel) == 1) delete binder;
}

int32_t AIBinder_debugGetRefCount(AIBinder* binder) {
    if (binder == nullptr) return -1;
    return binder->core->strong.load(std::memory_order_relaxed);
}

bool AIBinder_associateClass(AIBinder* binder, const AIBinder_Class* clazz) {
    return binder != nullptr && clazz != nullptr && binder->clazz == clazz;
}

const AIBinder_Class* AIBinder_getClass(AIBinder* binder) {
    return binder != nullptr ? binder->clazz : nullptr;
}

void* AIBinder_getUserData(AIBinder* binder) {
    return binder != nullptr ? binder->userData : nullptr;
}

bool AIBinder_lt(const AIBinder* lhs, const AIBinder* rhs) {
    return std::less<const AIBinder*>()(lhs, rhs);
}

void AIBinder_setInheritRt(AIBinder* binder, bool inheritRt) {
    LOG_ALWAYS_FATAL_IF(binder == nullptr || binder->remote.load(),
                        "AIBinder_setInheritRt must be called on a local binder");
    binder->inheritRt = inheritRt;
}

AIBinder_Weak* AIBinder_Weak_new(AIBinder* binder) {
    if (binder == nullptr) return nullptr;
    return new AIBinder_Weak{binder->core};
}

void AIBinder_Weak_delete(AIBinder_Weak* weakBinder) {
    delete weakBinder;
}

AIBinder* AIBinder_Weak_promote(AIBinder_Weak* weakBinder) {
    if (weakBinder == nullptr) return nullptr;
    binder_ndk::BinderCore& core = *weakBinder->core;
    int32_t count = core.strong.load(std::memory_order_relaxed);
    // Never revive a binder whose last strong reference is gone.
    while (count > 0) {
        if (core.strong.compare_exchange_weak(count, count + 1, std::memory_order_acq_rel)) {
            return core.binder;
        }
    }
    return nullptr;
}

AIBinder_Weak* AIBinder_Weak_clone(const AIBinder_Weak* weak) {
    if (weak == nullptr) return nullptr;
    return new AIBinder_Weak{weak->core};
}

bool AIBinder_Weak_lt(const AIBinder_Weak* lhs, const AIBinder_Weak* rhs) {
    if (lhs == nullptr || rhs == nullptr) return lhs == nullptr && rhs != nullptr;
    return lhs->core->address < rhs->core->address;
}

namespace android::testing {

bool binderInheritsRt(const AIBinder* binder) {
    return binder->inheritRt.load();
}

void makeBinderRemote(AIBinder* binder) {
    binder->remote = true;
}

}  // namespace android::testing
