#include <aidl2legacy/common/IBufferHandleCacheMgr.h>
#include <gtest/gtest.h>

namespace kovo::aidl2legacy {
namespace {

// Each operation answers with the virtual-table slot it must occupy.
class SlotProbe : public IBufferHandleCacheMgr {
public:
    int32_t closeCacheMgr() override { return 2; }
    int32_t configureStreams(const StreamConfiguration&) override { return 3; }
    int32_t removeBufferCaches(const std::vector<BufferCache>&) override { return 4; }
    int32_t importRequestBuffers(const std::vector<CaptureRequest>&,
                                 std::vector<RequestBufferCache>*) override {
        return 5;
    }
    int32_t importStreamBuffers(const std::vector<StreamBuffer>&,
                                std::map<int64_t, BufferHandle>&) override {
        return 6;
    }
    int32_t getBufferHandle(int32_t, int64_t, BufferHandle*) override { return 7; }
    int32_t getCachedBufferCount(size_t*) override { return 8; }
    int32_t dump(int) override { return 9; }
    int32_t resetCacheMgr() override { return 10; }
};

// Other binaries call the cache manager through fixed virtual-table slots (Itanium ABI: the vptr
// points at the first virtual function and the destructor takes two entries). Every operation
// takes at most three pointer-sized arguments, references included.
TEST(CacheMgrSlotsTest, OperationsSitInTheirFixedSlots) {
    SlotProbe probe;
    IBufferHandleCacheMgr* self = &probe;
    void** table = *reinterpret_cast<void***>(self);
    using Operation = int32_t (*)(IBufferHandleCacheMgr*, intptr_t, intptr_t, intptr_t);
    for (int slot = 2; slot <= 10; ++slot) {
        EXPECT_EQ(slot, reinterpret_cast<Operation>(table[slot])(self, 0, 0, 0));
    }
}

}  // namespace
}  // namespace kovo::aidl2legacy
