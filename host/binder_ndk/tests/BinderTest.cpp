#include <android/binder_auto_utils.h>
#include <android/binder_ibinder.h>
#include <android/binder_ibinder_platform.h>
#include <android/testing/binder_hooks.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

using android::testing::deathLinkCount;
using android::testing::killBinder;
using android::testing::makeBinderRemote;

namespace {

int sDestroyed = 0;
void* sDestroyedUserData = nullptr;

AIBinder_Class* plainClass() {
    static AIBinder_Class* clazz = AIBinder_Class_define(
            "tarnic.test.IPlain", [](void* args) { return args; },
            [](void* userData) {
                ++sDestroyed;
                sDestroyedUserData = userData;
            },
            [](AIBinder*, transaction_code_t, const AParcel*, AParcel*) -> binder_status_t {
                return STATUS_OK;
            });
    return clazz;
}

// What the death callbacks saw, in order; the cookie of each link is one of these.
struct Link {
    std::vector<std::string>* events;
    std::string name;
};

void onDied(void* cookie) {
    auto* link = static_cast<Link*>(cookie);
    link->events->push_back(link->name + " died");
}

void onUnlinked(void* cookie) {
    auto* link = static_cast<Link*>(cookie);
    link->events->push_back(link->name + " unlinked");
}

class DeathLinkTest : public ::testing::Test {
protected:
    DeathLinkTest() {
        AIBinder_DeathRecipient_setOnUnlinked(mRecipient.get(), onUnlinked);
        makeBinderRemote(mRemote.get());
    }

    std::vector<std::string> mEvents;
    Link mFirst{&mEvents, "first"};
    Link mSecond{&mEvents, "second"};
    ndk::ScopedAIBinder_DeathRecipient mRecipient{AIBinder_DeathRecipient_new(onDied)};
    ndk::SpAIBinder mLocal{AIBinder_new(plainClass(), nullptr)};
    ndk::SpAIBinder mRemote{AIBinder_new(plainClass(), nullptr)};
};

TEST(BinderTest, LastStrongReferenceDestroysTheBinderOnce) {
    int userData = 0;
    sDestroyed = 0;
    AIBinder* binder = AIBinder_new(plainClass(), &userData);
    ASSERT_NE(nullptr, binder);
    EXPECT_EQ(&userData, AIBinder_getUserData(binder));
    EXPECT_EQ(1, AIBinder_debugGetRefCount(binder));
    AIBinder_incStrong(binder);
    EXPECT_EQ(2, AIBinder_debugGetRefCount(binder));
    AIBinder_decStrong(binder);
    EXPECT_EQ(0, sDestroyed);
    AIBinder_decStrong(binder);
    EXPECT_EQ(1, sDestroyed);
    EXPECT_EQ(&userData, sDestroyedUserData);
    EXPECT_EQ(nullptr, AIBinder_new(nullptr, nullptr));
    EXPECT_EQ(-1, AIBinder_debugGetRefCount(nullptr));
}

TEST(BinderTest, SpAIBinderCopiesShareOneReference) {
    sDestroyed = 0;
    ndk::SpAIBinder first(AIBinder_new(plainClass(), nullptr));
    {
        ndk::SpAIBinder copy = first;
        ndk::SpAIBinder moved = std::move(copy);  // copies: there is no move
        EXPECT_EQ(3, AIBinder_debugGetRefCount(first.get()));
        ndk::SpAIBinder& alias = copy;
        copy = alias;
        EXPECT_EQ(first, moved);
    }
    EXPECT_EQ(1, AIBinder_debugGetRefCount(first.get()));
    first.set(nullptr);
    EXPECT_EQ(1, sDestroyed);
}

TEST(BinderTest, WeakReferencesPromoteOnlyWhileTheBinderLives) {
    AIBinder* binder = AIBinder_new(plainClass(), nullptr);
    ndk::ScopedAIBinder_Weak weak(AIBinder_Weak_new(binder));
    ndk::ScopedAIBinder_Weak clone(AIBinder_Weak_clone(weak.get()));
    ndk::SpAIBinder otherBinder(AIBinder_new(plainClass(), nullptr));
    ndk::ScopedAIBinder_Weak other(AIBinder_Weak_new(otherBinder.get()));
    const bool weakFirst = AIBinder_Weak_lt(weak.get(), other.get());
    EXPECT_EQ(AIBinder_lt(binder, otherBinder.get()), weakFirst);
    EXPECT_NE(weakFirst, AIBinder_Weak_lt(other.get(), weak.get()));
    {
        ndk::SpAIBinder promoted = clone.promote();
        EXPECT_EQ(binder, promoted.get());
        EXPECT_EQ(2, AIBinder_debugGetRefCount(binder));
    }
    AIBinder_decStrong(binder);
    otherBinder.set(nullptr);
    EXPECT_EQ(nullptr, weak.promote().get());
    EXPECT_EQ(nullptr, clone.promote().get());
    EXPECT_EQ(weakFirst, AIBinder_Weak_lt(weak.get(), other.get()));
    EXPECT_EQ(nullptr, AIBinder_Weak_new(nullptr));
    EXPECT_EQ(nullptr, AIBinder_Weak_promote(nullptr));
}

TEST(BinderTest, LocalBinderAnswersAsALiveLocalObject) {
    ndk::SpAIBinder binder(AIBinder_new(plainClass(), nullptr));
    EXPECT_FALSE(AIBinder_isRemote(binder.get()));
    EXPECT_TRUE(AIBinder_isAlive(binder.get()));
    EXPECT_EQ(STATUS_OK, AIBinder_ping(binder.get()));
    EXPECT_TRUE(AIBinder_associateClass(binder.get(), plainClass()));
    EXPECT_STREQ("tarnic.test.IPlain",
                 AIBinder_Class_getDescriptor(AIBinder_getClass(binder.get())));
    EXPECT_EQ(getpid(), AIBinder_getCallingPid());
    EXPECT_EQ(getuid(), AIBinder_getCallingUid());

    EXPECT_FALSE(AIBinder_isAlive(nullptr));
    EXPECT_EQ(STATUS_UNEXPECTED_NULL, AIBinder_ping(nullptr));
    EXPECT_FALSE(AIBinder_associateClass(nullptr, plainClass()));
}

TEST(BinderTest, InheritRtIsRecordedOnTheBinder) {
    ndk::SpAIBinder binder(AIBinder_new(plainClass(), nullptr));
    EXPECT_FALSE(android::testing::binderInheritsRt(binder.get()));
    AIBinder_setInheritRt(binder.get(), true);
    EXPECT_TRUE(android::testing::binderInheritsRt(binder.get()));
    AIBinder_setInheritRt(binder.get(), false);
    EXPECT_FALSE(android::testing::binderInheritsRt(binder.get()));
}

TEST(BinderDeathTest, InheritRtOnARemoteBinderAborts) {
    ndk::SpAIBinder binder(AIBinder_new(plainClass(), nullptr));
    makeBinderRemote(binder.get());
    EXPECT_DEATH(AIBinder_setInheritRt(binder.get(), true), "local binder");
}

TEST_F(DeathLinkTest, NullArgumentsAndLocalBindersRefuseLinks) {
    EXPECT_EQ(STATUS_UNEXPECTED_NULL, AIBinder_linkToDeath(nullptr, mRecipient.get(), &mFirst));
    EXPECT_EQ(STATUS_UNEXPECTED_NULL, AIBinder_linkToDeath(mRemote.get(), nullptr, &mFirst));
    EXPECT_EQ(STATUS_UNEXPECTED_NULL, AIBinder_unlinkToDeath(nullptr, mRecipient.get(), &mFirst));
    EXPECT_EQ(STATUS_UNEXPECTED_NULL, AIBinder_unlinkToDeath(mRemote.get(), nullptr, &mFirst));
    EXPECT_TRUE(mEvents.empty());

    // A local binder refuses, and the link's cleanup runs before the call returns.
    EXPECT_EQ(STATUS_INVALID_OPERATION,
              AIBinder_linkToDeath(mLocal.get(), mRecipient.get(), &mFirst));
    EXPECT_EQ(std::vector<std::string>{"first unlinked"}, mEvents);
    EXPECT_EQ(STATUS_NAME_NOT_FOUND,
              AIBinder_unlinkToDeath(mLocal.get(), mRecipient.get(), &mFirst));
    EXPECT_EQ(nullptr, AIBinder_DeathRecipient_new(nullptr));
}

TEST_F(DeathLinkTest, UnlinkRemovesOneLinkAtATime) {
    ASSERT_EQ(STATUS_OK, AIBinder_linkToDeath(mRemote.get(), mRecipient.get(), &mFirst));
    ASSERT_EQ(STATUS_OK, AIBinder_linkToDeath(mRemote.get(), mRecipient.get(), &mFirst));
    EXPECT_EQ(2u, deathLinkCount(mRemote.get()));
    EXPECT_EQ(STATUS_NAME_NOT_FOUND,
              AIBinder_unlinkToDeath(mRemote.get(), mRecipient.get(), &mSecond));
    EXPECT_EQ(STATUS_OK, AIBinder_unlinkToDeath(mRemote.get(), mRecipient.get(), &mFirst));
    EXPECT_EQ(STATUS_OK, AIBinder_unlinkToDeath(mRemote.get(), mRecipient.get(), &mFirst));
    EXPECT_EQ(STATUS_NAME_NOT_FOUND,
              AIBinder_unlinkToDeath(mRemote.get(), mRecipient.get(), &mFirst));
    EXPECT_EQ((std::vector<std::string>{"first unlinked", "first unlinked"}), mEvents);
}

TEST_F(DeathLinkTest, DeathNotifiesEveryLinkInOrderThenForgetsThem) {
    ASSERT_EQ(STATUS_OK, AIBinder_linkToDeath(mRemote.get(), mRecipient.get(), &mFirst));
    ASSERT_EQ(STATUS_OK, AIBinder_linkToDeath(mRemote.get(), mRecipient.get(), &mSecond));
    ASSERT_EQ(STATUS_OK, AIBinder_linkToDeath(mRemote.get(), mRecipient.get(), &mFirst));
    ASSERT_EQ(STATUS_OK, AIBinder_unlinkToDeath(mRemote.get(), mRecipient.get(), &mFirst));
    mEvents.clear();

    killBinder(mRemote.get());
    EXPECT_EQ((std::vector<std::string>{"first died", "first unlinked", "second died",
                                        "second unlinked"}),
              mEvents);
    EXPECT_FALSE(AIBinder_isAlive(mRemote.get()));
    EXPECT_EQ(STATUS_DEAD_OBJECT, AIBinder_ping(mRemote.get()));
    EXPECT_EQ(STATUS_NAME_NOT_FOUND,
              AIBinder_unlinkToDeath(mRemote.get(), mRecipient.get(), &mFirst));

    mEvents.clear();
    EXPECT_EQ(STATUS_DEAD_OBJECT, AIBinder_linkToDeath(mRemote.get(), mRecipient.get(), &mFirst));
    EXPECT_EQ(std::vector<std::string>{"first unlinked"}, mEvents);
    killBinder(mRemote.get());
    EXPECT_EQ(1u, mEvents.size());
}

TEST_F(DeathLinkTest, DeletingTheRecipientOrTheBinderUnlinks) {
    ndk::SpAIBinder other(AIBinder_new(plainClass(), nullptr));
    makeBinderRemote(other.get());
    ASSERT_EQ(STATUS_OK, AIBinder_linkToDeath(mRemote.get(), mRecipient.get(), &mFirst));
    ASSERT_EQ(STATUS_OK, AIBinder_linkToDeath(other.get(), mRecipient.get(), &mSecond));
    other.set(nullptr);
    EXPECT_EQ(std::vector<std::string>{"second unlinked"}, mEvents);

    mRecipient.set(nullptr);
    EXPECT_EQ((std::vector<std::string>{"second unlinked", "first unlinked"}), mEvents);
    EXPECT_EQ(0u, deathLinkCount(mRemote.get()));
    killBinder(mRemote.get());
    EXPECT_EQ(2u, mEvents.size());
}

TEST_F(DeathLinkTest, CallbacksMayUnlinkOtherLinks) {
    struct Unlinker {
        AIBinder* binder;
        AIBinder_DeathRecipient* recipient;
        int died = 0;
    } unlinker{mRemote.get(), mRecipient.get()};
    ndk::ScopedAIBinder_DeathRecipient recipient(AIBinder_DeathRecipient_new([](void* cookie) {
        auto* self = static_cast<Unlinker*>(cookie);
        ++self->died;
        AIBinder_unlinkToDeath(self->binder, self->recipient, nullptr);
    }));
    ASSERT_EQ(STATUS_OK, AIBinder_linkToDeath(mRemote.get(), recipient.get(), &unlinker));
    ASSERT_EQ(STATUS_OK, AIBinder_linkToDeath(mRemote.get(), mRecipient.get(), &mFirst));
    killBinder(mRemote.get());
    EXPECT_EQ(1, unlinker.died);
    EXPECT_EQ((std::vector<std::string>{"first died", "first unlinked"}), mEvents);
}

}  // namespace
