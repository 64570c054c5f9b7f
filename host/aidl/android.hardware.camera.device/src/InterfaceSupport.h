// Binder plumbing shared by the camera device interfaces. Host binders never leave the process:
// fromBinder() hands back the local implementation itself, so no transaction ever reaches a
// binder class. Each interface's class is defined once, on first use, from any thread.
#pragma once

#include <android/binder_ibinder.h>
#include <android/binder_interface_utils.h>

#include <memory>

namespace aidl::android::hardware::camera::device::internal {

inline binder_status_t rejectTransaction(AIBinder*, transaction_code_t, const AParcel*, AParcel*) {
    return STATUS_UNKNOWN_TRANSACTION;
}

template <typename I>
AIBinder_Class* interfaceClass() {
    static AIBinder_Class* sClass =
            ::ndk::ICInterface::defineClass(I::descriptor, rejectTransaction);
    return sClass;
}

// Null for a null binder and for a binder of another interface (there are no proxies here).
template <typename I>
std::shared_ptr<I> interfaceFromBinder(const ::ndk::SpAIBinder& binder) {
    if (!AIBinder_associateClass(binder.get(), interfaceClass<I>())) {
        return nullptr;
    }
    return std::static_pointer_cast<I>(::ndk::ICInterface::asInterface(binder.get()));
}

inline ::ndk::ScopedAStatus unknownTransaction() {
    return ::ndk::ScopedAStatus::fromStatus(STATUS_UNKNOWN_TRANSACTION);
}

}  // namespace aidl::android::hardware::camera::device::internal
