#define LOG_TAG "libbinder_ndk"

#include <android/binder_ibinder.h>
#include <android/testing/binder_hooks.h>
#include <log/log.h>

#include <algorithm>
#include <mutex>
#include <vector>

#include "ibinder_internal.h"

struct AIBinder_DeathRecipient {
    const AIBinder_DeathRecipient_onBinderDied onDied;
    std::atomic<AIBinder_DeathRecipient_onBinderUnlinked> onUnlinked{nullptr};
};

namespace {

// The callbacks are copied at link time: a link never reads its recipient afterwards.
struct DeathLink {
    AIBinder* binder;
    AIBinder_DeathRecipient* recipient;
    void* cookie;
    AIBinder_DeathRecipient_onBinderDied onDied;
    AIBinder_DeathRecipient_onBinderUnlinked onUnlinked;
};

// Every death link of the process in link order, and the binders' death state. Callbacks run
// without this lock, so they may link and unlink.
std::mutex sLinkLock;
std::vector<DeathLink> sLinks;

template <typename Predicate>
std::vector<DeathLink> extractLinks(Predicate matches) {
    std::vector<DeathLink> removed;
    auto kept = std::stable_partition(sLinks.begin(), sLinks.end(),
                                      [&](const DeathLink& link) { return !matches(link); });
    removed.assign(kept, sLinks.end());
    sLinks.erase(kept, sLinks.end());
    return removed;
}

void notifyUnlinked(const std::vector<DeathLink>& links) {
    for (const DeathLink& link : links) {
        if (link.onUnlinked != nullptr) link.onUnlinked(link.cookie);
    }
}

}  // namespace

namespace binder_ndk {

void dropDeathLinks(AIBinder* binder) {
    std::vector<DeathLink> dropped;
    {
        std::lock_guard<std::mutex> guard(sLinkLock);
        dropped = extractLinks([binder](const DeathLink& link) { return link.binder == binder; });
    }
    notifyUnlinked(dropped);
}

}  // namespace binder_ndk

bool AIBinder_isAlive(const AIBinder* binder) {
    if (binder == nullptr) return false;
    std::lock_guard<std::mutex> guard(sLinkLock);
    return !binder->dead;
}

binder_status_t AIBinder_ping(AIBinder* binder) {
    if (binder == nullptr) return STATUS_UNEXPECTED_NULL;
    return AIBinder_isAlive(binder) ? STATUS_OK : STATUS_DEAD_OBJECT;
}

AIBinder_DeathRecipient* AIBinder_DeathRecipient_new(
        AIBinder_DeathRecipient_onBinderDied onBinderDied) {
    if (onBinderDied == nullptr) {
        ALOGE("AIBinder_DeathRecipient_new: requires non-null onBinderDied parameter.");
        return nullptr;
    }
    return new AIBinder_DeathRecipient{onBinderDied};
}

void AIBinder_DeathRecipient_setOnUnlinked(AIBinder_DeathRecipient* recipient,
                                           AIBinder_DeathRecipient_onBinderUnlinked onUnlinked) {
    if (recipient == nullptr) return;
    recipient->onUnlinked = onUnlinked;
}

void AIBinder_DeathRecipient_delete(AIBinder_DeathRecipient* recipient) {
    if (recipient == nullptr) return;
    std::vector<DeathLink> dropped;
    {
        std::lock_guard<std::mutex> guard(sLinkLock);
        dropped = extractLinks(
                [recipient](const DeathLink& link) { return link.recipient == recipient; });
    }
    delete recipient;
    notifyUnlinked(dropped);
}

binder_status_t AIBinder_linkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                     void* cookie) {
    if (binder == nullptr || recipient == nullptr) {
        ALOGE("AIBinder_linkToDeath: Must provide binder (%p) and recipient (%p)", binder,
              recipient);
        return STATUS_UNEXPECTED_NULL;
    }
    DeathLink link{binder, recipient, cookie, recipient->onDied, recipient->onUnlinked.load()};
    binder_status_t status = STATUS_INVALID_OPERATION;  // a local binder never dies apart
    if (binder->remote.load()) {
        std::lock_guard<std::mutex> guard(sLinkLock);
        if (!binder->dead) {
            sLinks.push_back(link);
            return STATUS_OK;
        }
        status = STATUS_DEAD_OBJECT;
    }
    notifyUnlinked({link});
    return status;
}

binder_status_t AIBinder_unlinkToDeath(AIBinder* binder, AIBinder_DeathRecipient* recipient,
                                       void* cookie) {
    if (binder == nullptr || recipient == nullptr) {
        ALOGE("AIBinder_unlinkToDeath: Must provide binder (%p) and recipient (%p)", binder,
              recipient);
        return STATUS_UNEXPECTED_NULL;
    }
    DeathLink removed;
    {
        std::lock_guard<std::mutex> guard(sLinkLock);
        auto found = std::find_if(sLinks.rbegin(), sLinks.rend(), [&](const DeathLink& link) {
            return link.binder == binder && link.recipient == recipient && link.cookie == cookie;
        });
        if (found == sLinks.rend()) return STATUS_NAME_NOT_FOUND;
        removed = *found;
        sLinks.erase(std::next(found).base());
    }
    notifyUnlinked({removed});
    return STATUS_OK;
}

namespace android::testing {

void killBinder(AIBinder* binder) {
    std::vector<DeathLink> links;
    {
        std::lock_guard<std::mutex> guard(sLinkLock);
        LOG_ALWAYS_FATAL_IF(!binder->remote.load(), "killBinder: %p is a local binder", binder);
        if (binder->dead) return;
        binder->dead = true;
        links = extractLinks([binder](const DeathLink& link) { return link.binder == binder; });
    }
    for (const DeathLink& link : links) {
        link.onDied(link.cookie);
        if (link.onUnlinked != nullptr) link.onUnlinked(link.cookie);
    }
}

size_t deathLinkCount(const AIBinder* binder) {
    std::lock_guard<std::mutex> guard(sLinkLock);
    return std::count_if(sLinks.begin(), sLinks.end(),
                         [binder](const DeathLink& link) { return link.binder == binder; });
}

}  // namespace android::testing
