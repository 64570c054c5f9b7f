#include <android/binder_auto_utils.h>
#include <android/binder_interface_utils.h>
#include <android/testing/binder_hooks.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>

#include "TestInterface.h"

using binder_test::ITest;
using binder_test::TestImpl;

namespace {

struct Plain : ndk::SharedRefBase {
    explicit Plain(std::atomic<int>* destructions) : mDestructions(destructions) {}
    ~Plain() override { ++*mDestructions; }
    std::atomic<int>* mDestructions;
};

TEST(SharedRefBaseTest, LastReferenceFreesTheObjectOnce) {
    std::atomic<int> destructions = 0;
    std::shared_ptr<Plain> object = ndk::SharedRefBase::make<Plain>(&destructions);
    std::shared_ptr<Plain> again = object->ref<Plain>();
    EXPECT_EQ(object.get(), again.get());
    EXPECT_EQ(2, object.use_count());
    std::weak_ptr<Plain> weak = object;
    object.reset();
    EXPECT_EQ(0, destructions);
    again.reset();
    EXPECT_EQ(1, destructions);
    EXPECT_EQ(nullptr, weak.lock());
}

TEST(SharedRefBaseDeathTest, ObjectThatNoReferenceEverOwnedAborts) {
    std::atomic<int> destructions = 0;
    EXPECT_DEATH({ Plain onStack(&destructions); }, "no ref created during lifetime");
}

TEST(BnCInterfaceTest, AsBinderKeepsOneBinderWhileAnyoneHoldsIt) {
    std::atomic<int> destructions = 0;
    auto impl = ndk::SharedRefBase::make<TestImpl>(&destructions);
    EXPECT_FALSE(impl->isRemote());
    ndk::SpAIBinder first = impl->asBinder();
    ASSERT_NE(nullptr, first.get());
    EXPECT_EQ(first, impl->asBinder());
    EXPECT_EQ(impl, ndk::ICInterface::asInterface(first.get()));
    EXPECT_FALSE(AIBinder_isRemote(first.get()));

    first.set(nullptr);
    ndk::SpAIBinder second = impl->asBinder();
    EXPECT_EQ(1, AIBinder_debugGetRefCount(second.get()));
    EXPECT_EQ(impl, ndk::ICInterface::asInterface(second.get()));
}

TEST(BnCInterfaceTest, BinderKeepsItsImplementationAlive) {
    std::atomic<int> destructions = 0;
    auto impl = ndk::SharedRefBase::make<TestImpl>(&destructions);
    ndk::SpAIBinder binder = impl->asBinder();
    std::weak_ptr<TestImpl> weak = impl;
    impl.reset();
    EXPECT_EQ(0, destructions);
    EXPECT_NE(nullptr, ndk::ICInterface::asInterface(binder.get()));
    binder.set(nullptr);
    EXPECT_EQ(1, destructions);
    EXPECT_EQ(nullptr, weak.lock());
}

TEST(BnCInterfaceTest, ServiceNameIsDescriptorSlashInstance) {
    EXPECT_EQ("tarnic.test.ITest/default", binder_test::BnTest::makeServiceName("default"));
}

// What code under test does with an interface object it was handed: link to its binder's death.
struct Watcher {
    explicit Watcher(const std::shared_ptr<ITest>& object)
        : mRecipient(AIBinder_DeathRecipient_new(
                  [](void* cookie) { static_cast<Watcher*>(cookie)->mDied = true; })),
          mLinkStatus(AIBinder_linkToDeath(object->asBinder().get(), mRecipient.get(), this)) {}

    ndk::ScopedAIBinder_DeathRecipient mRecipient;
    binder_status_t mLinkStatus;
    bool mDied = false;
};

TEST(RemoteBinderTest, WrappedObjectCanDieUnderTheCodeThatHoldsIt) {
    std::atomic<int> destructions = 0;
    std::shared_ptr<ITest> object = ndk::SharedRefBase::make<TestImpl>(&destructions);
    EXPECT_EQ(STATUS_INVALID_OPERATION, Watcher(object).mLinkStatus);

    android::testing::RemoteBinder remote(object);
    Watcher watcher(object);
    ASSERT_EQ(STATUS_OK, watcher.mLinkStatus);
    EXPECT_EQ(remote.get(), object->asBinder().get());
    EXPECT_EQ(1u, remote.deathLinkCount());
    EXPECT_EQ(object, ndk::ICInterface::asInterface(remote.get()));
    remote.kill();
    EXPECT_TRUE(watcher.mDied);
    EXPECT_EQ(0u, remote.deathLinkCount());
}

}  // namespace
