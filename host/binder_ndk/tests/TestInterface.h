/*
 * A generated-style interface for the binder tests: ITest, its server base BnTest, and an
 * implementation that counts its destructions.
 */
#pragma once

#include <android/binder_ibinder.h>
#include <android/binder_interface_utils.h>

#include <atomic>

namespace binder_test {

class ITest : public ndk::ICInterface {
public:
    static inline const char* descriptor = "tarnic.test.ITest";
};

class BnTest : public ndk::BnCInterface<ITest> {
protected:
    ndk::SpAIBinder createBinder() override {
        static AIBinder_Class* clazz = ndk::ICInterface::defineClass(
                ITest::descriptor,
                [](AIBinder*, transaction_code_t, const AParcel*, AParcel*) -> binder_status_t {
                    return STATUS_UNKNOWN_TRANSACTION;
                });
        return ndk::SpAIBinder(AIBinder_new(clazz, static_cast<void*>(this)));
    }
};

class TestImpl : public BnTest {
public:
    explicit TestImpl(std::atomic<int>* destructions) : mDestructions(destructions) {}
    ~TestImpl() override { ++*mDestructions; }

private:
    std::atomic<int>* mDestructions;
};

}  // namespace binder_test
