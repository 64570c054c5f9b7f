/*
 * RAII holders of the binder NDK: SpAIBinder (one strong binder reference), ScopedAStatus,
 * ScopedFileDescriptor and the weak-binder and death-recipient holders. Each holder owns what it
 * holds; none is thread-safe for concurrent use of one object.
 */
#pragma once

#include <android/binder_ibinder.h>
#include <android/binder_status.h>
#include <android/log.h>
#include <string.h>
#include <unistd.h>

#include <cstddef>
#include <ostream>
#include <string>

namespace ndk {

class SpAIBinder {
public:
    SpAIBinder() : mBinder(nullptr) {}
    SpAIBinder(std::nullptr_t) : SpAIBinder() {}  // NOLINT(google-explicit-constructor)
    // Adopts one strong reference that the caller already holds.
    explicit SpAIBinder(AIBinder* binder) : mBinder(binder) {}
    ~SpAIBinder() { set(nullptr); }

    // No move operations, as on the platform: a moved SpAIBinder is copied.
    SpAIBinder(const SpAIBinder& other) : mBinder(other.mBinder) { AIBinder_incStrong(mBinder); }
    SpAIBinder& operator=(const SpAIBinder& other) {
        if (this == &other) return *this;
        AIBinder_incStrong(other.mBinder);
        set(other.mBinder);
        return *this;
    }

    // Releases the held reference and adopts `binder`'s.
    void set(AIBinder* binder) {
        AIBinder* old = mBinder;
        if (old != nullptr) AIBinder_decStrong(old);
        mBinder = binder;
    }

    AIBinder* get() const { return mBinder; }
    AIBinder** getR() { return &mBinder; }

private:
    AIBinder* mBinder;
};

#define SP_AIBINDER_COMPARE(_op_)                                                    \
    static inline bool operator _op_(const SpAIBinder& lhs, const SpAIBinder& rhs) { \
        return lhs.get() _op_ rhs.get();                                             \
    }                                                                                \
    static inline bool operator _op_(const SpAIBinder& lhs, const AIBinder* rhs) {   \
        return lhs.get() _op_ rhs;                                                   \
    }                                                                                \
    static inline bool operator _op_(const AIBinder* lhs, const SpAIBinder& rhs) {   \
        return lhs _op_ rhs.get();                                                   \
    }
SP_AIBINDER_COMPARE(!=)
SP_AIBINDER_COMPARE(<)
SP_AIBINDER_COMPARE(<=)
SP_AIBINDER_COMPARE(==)
SP_AIBINDER_COMPARE(>)
SP_AIBINDER_COMPARE(>=)
#undef SP_AIBINDER_COMPARE

namespace impl {

// Owns one T, released with Destroy; DEFAULT means "holds nothing".
template <typename T, void (*Destroy)(T), T DEFAULT>
class ScopedAResource {
public:
    explicit ScopedAResource(T t = DEFAULT) : mT(t) {}
    ~ScopedAResource() { set(DEFAULT); }

    ScopedAResource(const ScopedAResource&) = delete;
    ScopedAResource& operator=(const ScopedAResource&) = delete;
    ScopedAResource(ScopedAResource&& other) noexcept : mT(other.release()) {}
    ScopedAResource& operator=(ScopedAResource&& other) noexcept {
        set(other.release());
        return *this;
    }

    // Destroys the held value (without a self check) and takes `t`.
    void set(T t) {
        if (mT != DEFAULT) Destroy(mT);
        mT = t;
    }

    T get() { return mT; }
    const T get() const { return mT; }
    T* getR() { return &mT; }

    [[nodiscard]] T release() {
        T a = mT;
        mT = DEFAULT;
        return a;
    }

private:
    T mT;
};

}  // namespace impl

class ScopedAStatus : public impl::ScopedAResource<AStatus*, AStatus_delete, nullptr> {
public:
    explicit ScopedAStatus(AStatus* a = nullptr) : ScopedAResource(a) {}
    ~ScopedAStatus() {}
    ScopedAStatus(ScopedAStatus&&) = default;
    ScopedAStatus& operator=(ScopedAStatus&&) = default;

    // False for an empty status.
    bool isOk() const { return get() != nullptr && AStatus_isOk(get()); }

    // The getters need a status: an empty one crashes, as on the platform.
    binder_exception_t getExceptionCode() const { return AStatus_getExceptionCode(get()); }
    int32_t getServiceSpecificError() const { return AStatus_getServiceSpecificError(get()); }
    binder_status_t getStatus() const { return AStatus_getStatus(get()); }
    const char* getMessage() const { return AStatus_getMessage(get()); }

    std::string getDescription() const {
        const char* cStr = AStatus_getDescription(get());
        std::string ret = cStr;
        AStatus_deleteDescription(cStr);
        return ret;
    }

    static ScopedAStatus ok() { return ScopedAStatus(AStatus_newOk()); }
    static ScopedAStatus fromExceptionCode(binder_exception_t exception) {
        return ScopedAStatus(AStatus_fromExceptionCode(exception));
    }
    static ScopedAStatus fromExceptionCodeWithMessage(binder_exception_t exception,
                                                      const char* message) {
        return ScopedAStatus(AStatus_fromExceptionCodeWithMessage(exception, message));
    }
    static ScopedAStatus fromServiceSpecificError(int32_t serviceSpecific) {
        return ScopedAStatus(AStatus_fromServiceSpecificError(serviceSpecific));
    }
    static ScopedAStatus fromServiceSpecificErrorWithMessage(int32_t serviceSpecific,
                                                             const char* message) {
        return ScopedAStatus(AStatus_fromServiceSpecificErrorWithMessage(serviceSpecific, message));
    }
    static ScopedAStatus fromStatus(binder_status_t status) {
        return ScopedAStatus(AStatus_fromStatus(status));
    }
};

static inline std::ostream& operator<<(std::ostream& os, const ScopedAStatus& status) {
    return os << status.getDescription();
}

class ScopedAIBinder_Weak
    : public impl::ScopedAResource<AIBinder_Weak*, AIBinder_Weak_delete, nullptr> {
public:
    explicit ScopedAIBinder_Weak(AIBinder_Weak* a = nullptr) : ScopedAResource(a) {}
    ~ScopedAIBinder_Weak() {}
    ScopedAIBinder_Weak(ScopedAIBinder_Weak&&) = default;
    ScopedAIBinder_Weak& operator=(ScopedAIBinder_Weak&&) = default;

    // A strong reference, or null once the binder is gone.
    SpAIBinder promote() const { return SpAIBinder(AIBinder_Weak_promote(get())); }
};

class ScopedAIBinder_DeathRecipient
    : public impl::ScopedAResource<AIBinder_DeathRecipient*, AIBinder_DeathRecipient_delete, nullptr> {
public:
    explicit ScopedAIBinder_DeathRecipient(AIBinder_DeathRecipient* a = nullptr)
        : ScopedAResource(a) {}
    ~ScopedAIBinder_DeathRecipient() {}
    ScopedAIBinder_DeathRecipient(ScopedAIBinder_DeathRecipient&&) = default;
    ScopedAIBinder_DeathRecipient& operator=(ScopedAIBinder_DeathRecipient&&) = default;
};

namespace internal {

// A failed close means the fd was not ours (closed twice, or never opened): worth a log line.
inline void closeWithError(int fd) {
    if (fd == -1) return;
    int savedErrno = errno;
    if (::close(fd) != 0) {
        __android_log_print(ANDROID_LOG_ERROR, "libbinder_ndk",
                            "Could not close file descriptor %d: %s", fd, strerror(errno));
    }
    errno = savedErrno;
}

}  // namespace internal

class ScopedFileDescriptor : public impl::ScopedAResource<int, internal::closeWithError, -1> {
public:
    ScopedFileDescriptor() : ScopedFileDescriptor(-1) {}
    explicit ScopedFileDescriptor(int a) : ScopedAResource(a) {}
    ~ScopedFileDescriptor() {}
    ScopedFileDescriptor(ScopedFileDescriptor&&) = default;
    ScopedFileDescriptor& operator=(ScopedFileDescriptor&&) = default;

    // A new descriptor of the same file; holds -1 if there is none or dup fails.
    ScopedFileDescriptor dup() const { return ScopedFileDescriptor(get() < 0 ? -1 : ::dup(get())); }

    bool operator!=(const ScopedFileDescriptor& rhs) const { return get() != rhs.get(); }
    bool operator<(const ScopedFileDescriptor& rhs) const { return get() < rhs.get(); }
    bool operator<=(const ScopedFileDescriptor& rhs) const { return get() <= rhs.get(); }
    bool operator==(const ScopedFileDescriptor& rhs) const { return get() == rhs.get(); }
    bool operator>(const ScopedFileDescriptor& rhs) const { return get() > rhs.get(); }
    bool operator>=(const ScopedFileDescriptor& rhs) const { return get() >= rhs.get(); }
};

}  // namespace ndk
