/*
 * Base classes of the objects behind AIDL interfaces.
 * - SharedRefBase: objects are made only with SharedRefBase::make and held by std::shared_ptr.
 * - ICInterface: an AIDL interface object; a local binder keeps its implementation alive, while
 *   the implementation keeps only a weak reference to its binder.
 * - BnCInterface: server side; asBinder() hands out the same binder while anyone holds it.
 * - BpCInterface: client side around a binder of another object.
 * asBinder() is thread-safe; everything else follows std::shared_ptr's rules.
 */
#pragma once

#include <android/binder_auto_utils.h>
#include <android/binder_ibinder.h>
#include <android/log.h>
#include <stdint.h>
#include <stdlib.h>

#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <type_traits>

namespace ndk {

class SharedRefBase {
public:
    SharedRefBase() {}
    virtual ~SharedRefBase() {
        std::call_once(mFlagThis, [] {
            __android_log_assert(nullptr, "libbinder_ndk",
                                 "SharedRefBase: no ref created during lifetime");
        });
        if (ref() != nullptr) {
            __android_log_assert(nullptr, "libbinder_ndk",
                                 "SharedRefBase: destructed but still able to lock weak_ptr. Is "
                                 "this object double-owned?");
        }
    }

    // The first call creates the owning shared_ptr; later calls share it (empty once it is gone).
    std::shared_ptr<SharedRefBase> ref() {
        std::shared_ptr<SharedRefBase> thiz = mThis.lock();
        std::call_once(mFlagThis, [&] { mThis = thiz = std::shared_ptr<SharedRefBase>(this); });
        return thiz;
    }

    template <typename CHILD>
    std::shared_ptr<CHILD> ref() {
        return std::static_pointer_cast<CHILD>(ref());
    }

    template <class T, class... Args>
    static std::shared_ptr<T> make(Args&&... args) {
        T* t = new T(std::forward<Args>(args)...);
        return t->template ref<T>();
    }

    static void operator delete(void* p) { std::free(p); }

private:
    // Objects come from make() only, so that a shared_ptr owns every one of them.
    static void* operator new(size_t s) { return std::malloc(s); }

    std::once_flag mFlagThis;
    std::weak_ptr<SharedRefBase> mThis;
};

class ICInterface : public SharedRefBase {
public:
    ICInterface() {}
    virtual ~ICInterface() {}

    virtual SpAIBinder asBinder() = 0;
    virtual bool isRemote() = 0;
    virtual binder_status_t dump(int /*fd*/, const char** /*args*/, uint32_t /*numArgs*/) {
        return STATUS_OK;
    }
    virtual binder_status_t handleShellCommand(int /*in*/, int /*out*/, int /*err*/,
                                               const char** /*argv*/, uint32_t /*argc*/) {
        return STATUS_OK;
    }

    // The implementation a local binder of a class made by defineClass() serves, else null.
    static std::shared_ptr<ICInterface> asInterface(AIBinder* binder);

    // A class whose binders hold a strong reference to the ICInterface given to AIBinder_new.
    static AIBinder_Class* defineClass(const char* interfaceDescriptor,
                                       AIBinder_Class_onTransact onTransact);

private:
    struct ICInterfaceData {
        std::shared_ptr<ICInterface> interface;

        static void* onCreate(void* args) {
            std::shared_ptr<ICInterface> interface =
                    static_cast<ICInterface*>(args)->ref<ICInterface>();
            return new ICInterfaceData{interface};
        }
        static void onDestroy(void* userData) { delete static_cast<ICInterfaceData*>(userData); }
    };
};

template <typename INTERFACE>
class BnCInterface : public INTERFACE {
public:
    BnCInterface() {}
    virtual ~BnCInterface() {}

    SpAIBinder asBinder() override final;
    bool isRemote() override final { return false; }

    static std::string makeServiceName(std::string_view instance) {
        return INTERFACE::descriptor + ("/" + std::string(instance));
    }

protected:
    // Makes a new binder for this object (AIBinder_new with the interface's class).
    virtual SpAIBinder createBinder() = 0;

private:
    std::mutex mMutex;
    ScopedAIBinder_Weak mWeakBinder;
};

template <typename INTERFACE>
class BpCInterface : public INTERFACE {
public:
    explicit BpCInterface(const SpAIBinder& binder) : mBinder(binder) {}
    virtual ~BpCInterface() {}

    SpAIBinder asBinder() override final { return mBinder; }
    bool isRemote() override final { return AIBinder_isRemote(mBinder.get()); }

private:
    const SpAIBinder mBinder;
};

inline std::shared_ptr<ICInterface> ICInterface::asInterface(AIBinder* binder) {
    if (binder == nullptr) return nullptr;
    void* userData = AIBinder_getUserData(binder);
    if (userData == nullptr) return nullptr;
    return static_cast<ICInterfaceData*>(userData)->interface;
}

inline AIBinder_Class* ICInterface::defineClass(const char* interfaceDescriptor,
                                                AIBinder_Class_onTransact onTransact) {
    return AIBinder_Class_define(interfaceDescriptor, ICInterfaceData::onCreate,
                                 ICInterfaceData::onDestroy, onTransact);
}

template <typename INTERFACE>
SpAIBinder BnCInterface<INTERFACE>::asBinder() {
    std::lock_guard<std::mutex> guard(mMutex);
    SpAIBinder binder;
    if (mWeakBinder.get() != nullptr) binder.set(AIBinder_Weak_promote(mWeakBinder.get()));
    if (binder.get() == nullptr) {
        binder = createBinder();
        mWeakBinder.set(AIBinder_Weak_new(binder.get()));
    }
    return binder;
}

namespace internal {

template <typename T>
using IfSharedRefBase = std::enable_if_t<std::is_base_of_v<SharedRefBase, T>>;

}  // namespace internal

}  // namespace ndk

// Objects derived from SharedRefBase come only from SharedRefBase::make: these overloads make
// the standard factories ambiguous or deleted for them, so a mistake fails to compile.
namespace std {

template <typename T, typename... Args, typename = ::ndk::internal::IfSharedRefBase<T>>
shared_ptr<T> make_shared(Args&&...) = delete;

template <typename T, typename... Args, typename = ::ndk::internal::IfSharedRefBase<T>>
unique_ptr<T> make_unique(Args&&...) = delete;

}  // namespace std
