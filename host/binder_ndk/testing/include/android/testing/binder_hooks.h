/*
 * Test-only hooks of the libbinder_ndk stand-in.
 *
 * A binder made remote stands for an object in another process: AIBinder_isRemote is true,
 * death links to it succeed, and killBinder declares its process dead. Its user data stays
 * reachable, so the object behind it still serves in-process calls. To let the code under test
 * link to the death of an interface object a test hands it, wrap the object in a RemoteBinder
 * before handing it over; RemoteBinder keeps the binder (and so the object) alive, so the
 * object's asBinder() keeps returning that same binder.
 *
 * Death notifications run on the thread that calls killBinder, without any library lock held.
 */
#pragma once

#include <android/binder_auto_utils.h>
#include <android/binder_ibinder.h>
#include <android/binder_interface_utils.h>

#include <cstddef>
#include <memory>

namespace android::testing {

// The flag set by AIBinder_setInheritRt (false by default).
bool binderInheritsRt(const AIBinder* binder);

// From now on `binder` behaves as a binder of another process.
void makeBinderRemote(AIBinder* binder);

// Declares the process of a remote binder dead: for each link, in link order, onBinderDied then
// onBinderUnlinked (if set) run with the link's cookie; the links are gone afterwards. Aborts on
// a local binder; a second call does nothing.
void killBinder(AIBinder* binder);

// Number of live death links to `binder`, over all recipients.
size_t deathLinkCount(const AIBinder* binder);

class RemoteBinder {
public:
    explicit RemoteBinder(const std::shared_ptr<ndk::ICInterface>& object)
        : mBinder(object->asBinder()) {
        makeBinderRemote(mBinder.get());
    }

    AIBinder* get() const { return mBinder.get(); }
    size_t deathLinkCount() const { return testing::deathLinkCount(mBinder.get()); }
    void kill() { killBinder(mBinder.get()); }

private:
    ndk::SpAIBinder mBinder;
};

}  // namespace android::testing
