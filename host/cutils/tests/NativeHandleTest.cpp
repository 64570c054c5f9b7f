#include <cutils/native_handle.h>
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <utility>
#include <vector>

#include "CHeaders.h"

namespace {

size_t openFdCount() {
    size_t count = 0;
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
        ++count;
    }
    return count;
}

bool isOpen(int fd) {
    return fcntl(fd, F_GETFD) != -1;
}

bool sameFile(int a, int b) {
    struct stat sa, sb;
    return fstat(a, &sa) == 0 && fstat(b, &sb) == 0 && sa.st_dev == sb.st_dev &&
           sa.st_ino == sb.st_ino;
}

// A handle owning both ends of a fresh pipe and three ints.
native_handle_t* makePipeHandle() {
    native_handle_t* handle = native_handle_create(2, 3);
    int fds[2];
    if (handle == nullptr || pipe(fds) != 0) return nullptr;
    handle->data[0] = fds[0];
    handle->data[1] = fds[1];
    handle->data[2] = 7;
    handle->data[3] = -8;
    handle->data[4] = 9;
    return handle;
}

void closeAndDelete(native_handle_t* handle) {
    EXPECT_EQ(0, native_handle_close(handle));
    EXPECT_EQ(0, native_handle_delete(handle));
}

TEST(NativeHandleTest, CreateRejectsNegativeOrOversizedCounts) {
    const std::pair<int, int> kBad[] = {{-1, 0}, {0, -1}, {1025, 0}, {0, 1025}};
    for (auto [numFds, numInts] : kBad) {
        errno = 0;
        EXPECT_EQ(nullptr, native_handle_create(numFds, numInts)) << numFds << "," << numInts;
        EXPECT_EQ(EINVAL, errno) << numFds << "," << numInts;
    }
}

TEST(NativeHandleTest, CreateAcceptsTheLimitsAndEmptyHandles) {
    const std::pair<int, int> kGood[] = {{0, 0}, {1024, 1024}, {1, 0}, {0, 1}};
    for (auto [numFds, numInts] : kGood) {
        native_handle_t* handle = native_handle_create(numFds, numInts);
        ASSERT_NE(nullptr, handle);
        EXPECT_EQ(12, handle->version);
        EXPECT_EQ(numFds, handle->numFds);
        EXPECT_EQ(numInts, handle->numInts);
        EXPECT_EQ(0, native_handle_delete(handle));
    }
}

TEST(NativeHandleTest, InitRejectsMisalignedStorageButNotOddCounts) {
    NATIVE_HANDLE_DECLARE_STORAGE(storage, 1, 2);
    errno = 0;
    EXPECT_EQ(nullptr, native_handle_init(storage + 1, 1, 2));
    EXPECT_EQ(EINVAL, errno);

    native_handle_t* handle = native_handle_init(storage, 2000, -5);
    ASSERT_EQ(reinterpret_cast<native_handle_t*>(storage), handle);
    EXPECT_EQ(12, handle->version);
    EXPECT_EQ(2000, handle->numFds);
    EXPECT_EQ(-5, handle->numInts);
}

TEST(NativeHandleTest, StorageMacroHasRoomForHeaderFdsAndIntsInCAndCpp) {
    NATIVE_HANDLE_DECLARE_STORAGE(storage, 1, 2);
    EXPECT_EQ(24u, sizeof(storage));
    EXPECT_EQ(24u, handleStorageSizeFromC());
    EXPECT_EQ(0u, reinterpret_cast<uintptr_t>(storage) % alignof(native_handle_t));
}

TEST(NativeHandleTest, CloneOwnsDuplicatedFdsAndCopiesInts) {
    native_handle_t* original = makePipeHandle();
    ASSERT_NE(nullptr, original);
    size_t before = openFdCount();

    native_handle_t* clone = native_handle_clone(original);
    ASSERT_NE(nullptr, clone);
    EXPECT_EQ(before + 2, openFdCount());
    EXPECT_EQ(2, clone->numFds);
    EXPECT_EQ(3, clone->numInts);
    for (int i = 0; i < 2; ++i) {
        EXPECT_NE(original->data[i], clone->data[i]);
        EXPECT_TRUE(sameFile(original->data[i], clone->data[i]));
    }
    EXPECT_EQ(std::vector<int>(original->data + 2, original->data + 5),
              std::vector<int>(clone->data + 2, clone->data + 5));

    closeAndDelete(clone);
    EXPECT_EQ(before, openFdCount());
    EXPECT_TRUE(isOpen(original->data[0]) && isOpen(original->data[1]));
    closeAndDelete(original);
}

TEST(NativeHandleTest, FailedCloneClosesWhatItDuplicatedAndReportsTheDupError) {
    native_handle_t* original = makePipeHandle();
    ASSERT_NE(nullptr, original);
    // The first fd is duplicated before the second one fails.
    int savedWriteEnd = original->data[1];
    original->data[1] = -1;
    size_t before = openFdCount();

    errno = 0;
    EXPECT_EQ(nullptr, native_handle_clone(original));
    EXPECT_EQ(EBADF, errno);
    EXPECT_EQ(before, openFdCount());

    original->data[1] = savedWriteEnd;
    closeAndDelete(original);
}

TEST(NativeHandleTest, CloseClosesFdsKeepsTheRecordAndErrno) {
    native_handle_t* handle = makePipeHandle();
    ASSERT_NE(nullptr, handle);
    int readEnd = handle->data[0];
    int writeEnd = handle->data[1];

    errno = EAGAIN;
    EXPECT_EQ(0, native_handle_close(handle));
    EXPECT_EQ(EAGAIN, errno);
    EXPECT_FALSE(isOpen(readEnd));
    EXPECT_FALSE(isOpen(writeEnd));
    // The record is untouched and still needs its delete.
    EXPECT_EQ(12, handle->version);
    EXPECT_EQ(2, handle->numFds);
    EXPECT_EQ(readEnd, handle->data[0]);
    EXPECT_EQ(0, native_handle_delete(handle));
}

TEST(NativeHandleTest, CloseWithTagClosesLikeClose) {
    native_handle_t* handle = makePipeHandle();
    ASSERT_NE(nullptr, handle);
    native_handle_set_fdsan_tag(handle);
    size_t before = openFdCount();
    EXPECT_EQ(0, native_handle_close_with_tag(handle));
    EXPECT_EQ(before - 2, openFdCount());
    EXPECT_EQ(0, native_handle_delete(handle));
}

TEST(NativeHandleTest, DeleteFreesWithoutClosingFds) {
    native_handle_t* handle = makePipeHandle();
    ASSERT_NE(nullptr, handle);
    int readEnd = handle->data[0];
    int writeEnd = handle->data[1];
    size_t before = openFdCount();

    EXPECT_EQ(0, native_handle_delete(handle));
    EXPECT_EQ(before, openFdCount());
    EXPECT_TRUE(isOpen(readEnd) && isOpen(writeEnd));
    close(readEnd);
    close(writeEnd);
}

TEST(NativeHandleTest, WrongVersionIsRejectedWithoutClosingOrFreeing) {
    native_handle_t* handle = makePipeHandle();
    ASSERT_NE(nullptr, handle);
    handle->version = 16;
    size_t before = openFdCount();

    EXPECT_EQ(-EINVAL, native_handle_close(handle));
    EXPECT_EQ(-EINVAL, native_handle_close_with_tag(handle));
    EXPECT_EQ(-EINVAL, native_handle_delete(handle));
    EXPECT_EQ(before, openFdCount());

    handle->version = sizeof(native_handle_t);
    closeAndDelete(handle);
}

TEST(NativeHandleTest, NullHandleIsANoOp) {
    EXPECT_EQ(0, native_handle_close(nullptr));
    EXPECT_EQ(0, native_handle_close_with_tag(nullptr));
    EXPECT_EQ(0, native_handle_delete(nullptr));
}

}  // namespace
