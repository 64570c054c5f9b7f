#include <gtest/gtest.h>
#include <stdlib.h>
#include <ulog/StandaloneLogger.h>
#include <ulog/ULogger.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>

using Strata::Utils::ULog::StandaloneLogger;
using Strata::Utils::ULog::ULogger;

namespace {

class SlotProbe : public ULogger {
public:
    int32_t writeLog(uint32_t, const char*, int32_t, const char*, int32_t length) override {
        lastWriteLength = length;
        return 0;
    }
    int32_t writeRawLog(const char*, int32_t) override { return 0; }
    int32_t flushLog(int32_t reason) override {
        lastFlushReason = reason;
        return 0;
    }
    int32_t lastWriteLength = -1;
    int32_t lastFlushReason = -1;
};

std::string readFile(const std::string& path) {
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

}  // namespace

// Other binaries call the logger through fixed virtual-table slots (Itanium ABI: the vptr points
// at the first virtual function; the destructor takes two entries).
TEST(ULoggerTest, WriteLogIsTheFourthSlotAndFlushLogTheEleventh) {
    SlotProbe probe;
    void** table = *reinterpret_cast<void***>(&probe);
    using WriteFn = int32_t (*)(ULogger*, uint32_t, const char*, int32_t, const char*, int32_t);
    using FlushFn = int32_t (*)(ULogger*, int32_t);
    reinterpret_cast<WriteFn>(table[3])(&probe, 0x187001, "tag", 1, "text", 1500);
    reinterpret_cast<FlushFn>(table[10])(&probe, 1);
    EXPECT_EQ(1500, probe.lastWriteLength);
    EXPECT_EQ(1, probe.lastFlushReason);
}

TEST(ULoggerTest, DefaultsRouteToTheAndroidLogAndTheStandaloneLogger) {
    EXPECT_EQ(&StandaloneLogger::instance(), ULogger::sULogger);
    EXPECT_EQ(ULogger::kModeAndroidLog, ULogger::sMode);
    EXPECT_EQ(ULogger::kLevelWarning, ULogger::sDetailsLevel);
}

TEST(ULoggerTest, StandaloneLoggerWritesOneLinePerMessageToItsFile) {
    char path[] = "/tmp/ulog_test_XXXXXX";
    int fd = mkstemp(path);
    ASSERT_GE(fd, 0);
    close(fd);

    StandaloneLogger logger;
    ASSERT_EQ(0, logger.openFile(path));
    EXPECT_EQ(0, logger.writeLog(0x101001, "cam", ULogger::kLevelError, "first", 5));
    EXPECT_EQ(0, logger.writeLog(0x187001, "cam", ULogger::kLevelDebug, "second", 6));
    EXPECT_EQ(0, logger.flushLog(1));
    EXPECT_EQ(-EINVAL, logger.writeLog(0x187001, "cam", 1, nullptr, 0));
    logger.deinit();

    std::string text = readFile(path);
    unlink(path);
    EXPECT_NE(std::string::npos, text.find(" E cam [0x101001]: first\n"));
    EXPECT_NE(std::string::npos, text.find(" D cam [0x187001]: second\n"));
    EXPECT_EQ(2, std::count(text.begin(), text.end(), '\n'));
}

TEST(ULoggerTest, OpenFileReportsErrno) {
    StandaloneLogger logger;
    EXPECT_EQ(-ENOENT, logger.openFile("/nonexistent-dir/ulog.txt"));
}
