/*
 * The objects behind the opaque binder handles, shared by the binder, death-link and test-hook
 * sources of this library. Reference counts and flags are atomics; the death state and the
 * link table are guarded by the link lock of death.cpp.
 */
#pragma once

#include <android/binder_ibinder.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

struct AIBinder_Class {
    std::string descriptor;
    AIBinder_Class_onCreate onCreate;
    AIBinder_Class_onDestroy onDestroy;
    AIBinder_Class_onTransact onTransact;
};

namespace binder_ndk {

// Outlives its binder for as long as weak handles refer to it.
struct BinderCore {
    explicit BinderCore(AIBinder* b) : binder(b), address(reinterpret_cast<uintptr_t>(b)) {}

    std::atomic<int32_t> strong{1};
    AIBinder* const binder;
    // The binder's address, kept to order weak handles after the binder is gone.
    const uintptr_t address;
};

// Delivers onBinderUnlinked for every link to `binder` and forgets them.
void dropDeathLinks(AIBinder* binder);

}  // namespace binder_ndk

struct AIBinder {
    AIBinder(const AIBinder_Class* clazz, void* args);
    ~AIBinder();
    AIBinder(const AIBinder&) = delete;
    AIBinder& operator=(const AIBinder&) = delete;

    const AIBinder_Class* const clazz;
    void* const userData;
    const std::shared_ptr<binder_ndk::BinderCore> core;
    std::atomic<bool> inheritRt{false};
    // Set by the test hooks: the binder stands for an object in another process.
    std::atomic<bool> remote{false};
    // Guarded by the link lock.
    bool dead = false;
};
