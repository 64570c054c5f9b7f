#include <android/log.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <log/log.h>
#include <log/testing/LogCapture.h>
#include <unistd.h>

#include <string>

using android::testing::LogCapture;
using ::testing::HasSubstr;

namespace {

// Runs `body` with stderr redirected into a pipe and returns what it wrote.
template <typename Body>
std::string captureStderr(Body body) {
    int pipeFds[2];
    EXPECT_EQ(0, pipe(pipeFds));
    int saved = dup(STDERR_FILENO);
    dup2(pipeFds[1], STDERR_FILENO);
    close(pipeFds[1]);
    body();
    dup2(saved, STDERR_FILENO);
    close(saved);
    std::string out;
    char buf[4096];
    ssize_t n;
    while ((n = read(pipeFds[0], buf, sizeof(buf))) > 0) out.append(buf, n);
    close(pipeFds[0]);
    return out;
}

}  // namespace

TEST(LogTest, CaptureRecordsPriorityTagAndFormattedText) {
    LogCapture capture;
    EXPECT_EQ(1, __android_log_print(ANDROID_LOG_INFO, "tag_a", "value=%d", 42));
    EXPECT_EQ(1, __android_log_write(ANDROID_LOG_ERROR, "tag_b", "plain"));
    auto lines = capture.lines();
    ASSERT_EQ(2u, lines.size());
    EXPECT_EQ(ANDROID_LOG_INFO, lines[0].priority);
    EXPECT_EQ("tag_a", lines[0].tag);
    EXPECT_EQ("value=42", lines[0].text);
    EXPECT_EQ(ANDROID_LOG_ERROR, lines[1].priority);
    EXPECT_EQ("plain", lines[1].text);
}

TEST(LogTest, MessagesAreCutAtTheLogBufferSize) {
    LogCapture capture;
    std::string longText(1500, 'x');
    __android_log_print(ANDROID_LOG_WARN, "t", "%s", longText.c_str());
    ASSERT_EQ(1u, capture.lines().size());
    EXPECT_EQ(1023u, capture.lines()[0].text.size());
}

TEST(LogTest, ErrnoIsPreserved) {
    LogCapture capture;
    errno = EAGAIN;
    ALOGE("something %s", "failed");
    EXPECT_EQ(EAGAIN, errno);
}

TEST(LogTest, DefaultSinkWritesOneLogcatLinePerMessage) {
    std::string out = captureStderr([] {
        __android_log_print(ANDROID_LOG_DEBUG, "cam", "hello %s", "world");
        __android_log_print(ANDROID_LOG_ERROR, "cam", "second");
    });
    EXPECT_THAT(out, HasSubstr(" D cam: hello world\n"));
    EXPECT_THAT(out, HasSubstr(" E cam: second\n"));
    EXPECT_EQ(2, std::count(out.begin(), out.end(), '\n'));
}

TEST(LogDeathTest, AssertWritesTheMessageAndAborts) {
    EXPECT_DEATH(__android_log_assert(nullptr, "cam", "broken %d", 7), "broken 7");
    EXPECT_DEATH(__android_log_assert("x > 1", "cam", nullptr), "Assertion failed: x > 1");
    EXPECT_DEATH(__android_log_assert(nullptr, "cam", nullptr), "Unspecified assertion failed");
}

TEST(LogDeathTest, AssertStillReachesStderrWhileCaptured) {
    EXPECT_DEATH(
            {
                LogCapture capture;
                LOG_ALWAYS_FATAL("fatal under capture");
            },
            "fatal under capture");
}
