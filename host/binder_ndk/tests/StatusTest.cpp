#include <android/binder_auto_utils.h>
#include <android/binder_status.h>
#include <gtest/gtest.h>

#include <functional>
#include <sstream>
#include <string>
#include <vector>

using ndk::ScopedAStatus;

namespace {

struct StatusCase {
    const char* name;
    std::function<ScopedAStatus()> make;
    bool ok;
    binder_exception_t exception;
    int32_t serviceSpecific;
    binder_status_t status;
    const char* message;
    const char* description;
};

TEST(StatusTest, EveryKindOfStatusAnswersItsGettersAndDescription) {
    const std::vector<StatusCase> cases = {
            {"ok", [] { return ScopedAStatus::ok(); }, true, EX_NONE, 0, STATUS_OK, "", "No error"},
            {"from STATUS_OK", [] { return ScopedAStatus::fromStatus(STATUS_OK); }, true, EX_NONE,
             0, STATUS_OK, "", "No error"},
            {"EX_NONE", [] { return ScopedAStatus::fromExceptionCode(EX_NONE); }, true, EX_NONE, 0,
             STATUS_OK, "", "No error"},
            {"EX_NONE with message",
             [] { return ScopedAStatus::fromExceptionCodeWithMessage(EX_NONE, "m"); }, true,
             EX_NONE, 0, STATUS_OK, "m", "No error"},
            {"illegal argument",
             [] { return ScopedAStatus::fromExceptionCode(EX_ILLEGAL_ARGUMENT); }, false,
             EX_ILLEGAL_ARGUMENT, 0, STATUS_OK, "", "Status(-3, EX_ILLEGAL_ARGUMENT): ''"},
            {"unsupported with message",
             [] {
                 return ScopedAStatus::fromExceptionCodeWithMessage(EX_UNSUPPORTED_OPERATION, "m");
             },
             false, EX_UNSUPPORTED_OPERATION, 0, STATUS_OK, "m",
             "Status(-7, EX_UNSUPPORTED_OPERATION): 'm'"},
            {"bare service specific",
             [] { return ScopedAStatus::fromExceptionCode(EX_SERVICE_SPECIFIC); }, false,
             EX_SERVICE_SPECIFIC, 0, STATUS_OK, "", "Status(-8, EX_SERVICE_SPECIFIC): '0: '"},
            {"transaction failed",
             [] { return ScopedAStatus::fromExceptionCode(EX_TRANSACTION_FAILED); }, false,
             EX_TRANSACTION_FAILED, 0, STATUS_FAILED_TRANSACTION, "",
             "Status(-129, EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '"},
            {"unknown exception", [] { return ScopedAStatus::fromExceptionCode(42); }, false,
             EX_TRANSACTION_FAILED, 0, STATUS_FAILED_TRANSACTION, "",
             "Status(-129, EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: '"},
            {"service specific 4", [] { return ScopedAStatus::fromServiceSpecificError(4); }, false,
             EX_SERVICE_SPECIFIC, 4, STATUS_OK, "", "Status(-8, EX_SERVICE_SPECIFIC): '4: '"},
            {"service specific 6 with message",
             [] { return ScopedAStatus::fromServiceSpecificErrorWithMessage(6, "m"); }, false,
             EX_SERVICE_SPECIFIC, 6, STATUS_OK, "m", "Status(-8, EX_SERVICE_SPECIFIC): '6: m'"},
            {"service specific 0 is an error",
             [] { return ScopedAStatus::fromServiceSpecificError(0); }, false, EX_SERVICE_SPECIFIC,
             0, STATUS_OK, "", "Status(-8, EX_SERVICE_SPECIFIC): '0: '"},
            {"negative service specific",
             [] { return ScopedAStatus::fromServiceSpecificError(-19); }, false,
             EX_SERVICE_SPECIFIC, -19, STATUS_OK, "", "Status(-8, EX_SERVICE_SPECIFIC): '-19: '"},
            {"bad value", [] { return ScopedAStatus::fromStatus(STATUS_BAD_VALUE); }, false,
             EX_TRANSACTION_FAILED, 0, STATUS_BAD_VALUE, "",
             "Status(-129, EX_TRANSACTION_FAILED): 'BAD_VALUE: '"},
            {"EBUSY is no binder status", [] { return ScopedAStatus::fromStatus(-16); }, false,
             EX_TRANSACTION_FAILED, 0, STATUS_UNKNOWN_ERROR, "",
             "Status(-129, EX_TRANSACTION_FAILED): 'UNKNOWN_ERROR: '"},
    };
    for (const StatusCase& c : cases) {
        SCOPED_TRACE(c.name);
        ScopedAStatus status = c.make();
        EXPECT_EQ(c.ok, status.isOk());
        EXPECT_EQ(c.exception, status.getExceptionCode());
        EXPECT_EQ(c.serviceSpecific, status.getServiceSpecificError());
        EXPECT_EQ(c.status, status.getStatus());
        EXPECT_STREQ(c.message, status.getMessage());
        EXPECT_EQ(c.description, status.getDescription());
        std::ostringstream printed;
        printed << status;
        EXPECT_EQ(c.description, printed.str());
    }
}

TEST(StatusTest, EveryStatusCodeIsNamedInTheDescription) {
    const std::vector<std::pair<binder_status_t, const char*>> names = {
            {STATUS_UNKNOWN_ERROR, "UNKNOWN_ERROR"},
            {STATUS_NO_MEMORY, "NO_MEMORY"},
            {STATUS_INVALID_OPERATION, "INVALID_OPERATION"},
            {STATUS_BAD_VALUE, "BAD_VALUE"},
            {STATUS_BAD_TYPE, "BAD_TYPE"},
            {STATUS_NAME_NOT_FOUND, "NAME_NOT_FOUND"},
            {STATUS_PERMISSION_DENIED, "PERMISSION_DENIED"},
            {STATUS_NO_INIT, "NO_INIT"},
            {STATUS_ALREADY_EXISTS, "ALREADY_EXISTS"},
            {STATUS_DEAD_OBJECT, "DEAD_OBJECT"},
            {STATUS_FAILED_TRANSACTION, "FAILED_TRANSACTION"},
            {STATUS_BAD_INDEX, "BAD_INDEX"},
            {STATUS_NOT_ENOUGH_DATA, "NOT_ENOUGH_DATA"},
            {STATUS_WOULD_BLOCK, "WOULD_BLOCK"},
            {STATUS_TIMED_OUT, "TIMED_OUT"},
            {STATUS_UNKNOWN_TRANSACTION, "UNKNOWN_TRANSACTION"},
            {STATUS_FDS_NOT_ALLOWED, "FDS_NOT_ALLOWED"},
            {STATUS_UNEXPECTED_NULL, "UNEXPECTED_NULL"},
    };
    for (const auto& [value, name] : names) {
        ScopedAStatus status = ScopedAStatus::fromStatus(value);
        EXPECT_EQ(value, status.getStatus()) << name;
        EXPECT_EQ(std::string("Status(-129, EX_TRANSACTION_FAILED): '") + name + ": '",
                  status.getDescription());
    }
}

TEST(StatusTest, EveryExceptionIsNamedInTheDescription) {
    const std::vector<std::pair<binder_exception_t, const char*>> names = {
            {EX_SECURITY, "Status(-1, EX_SECURITY): 'x'"},
            {EX_BAD_PARCELABLE, "Status(-2, EX_BAD_PARCELABLE): 'x'"},
            {EX_ILLEGAL_ARGUMENT, "Status(-3, EX_ILLEGAL_ARGUMENT): 'x'"},
            {EX_NULL_POINTER, "Status(-4, EX_NULL_POINTER): 'x'"},
            {EX_ILLEGAL_STATE, "Status(-5, EX_ILLEGAL_STATE): 'x'"},
            {EX_NETWORK_MAIN_THREAD, "Status(-6, EX_NETWORK_MAIN_THREAD): 'x'"},
            {EX_UNSUPPORTED_OPERATION, "Status(-7, EX_UNSUPPORTED_OPERATION): 'x'"},
            {EX_SERVICE_SPECIFIC, "Status(-8, EX_SERVICE_SPECIFIC): '0: x'"},
            {EX_PARCELABLE, "Status(-9, EX_PARCELABLE): 'x'"},
            {EX_TRANSACTION_FAILED, "Status(-129, EX_TRANSACTION_FAILED): 'FAILED_TRANSACTION: x'"},
    };
    for (const auto& [exception, description] : names) {
        EXPECT_EQ(description,
                  ScopedAStatus::fromExceptionCodeWithMessage(exception, "x").getDescription());
    }
}

TEST(StatusTest, OkIsOneSharedStatusThatDeleteLeavesAlone) {
    AStatus* ok = AStatus_newOk();
    EXPECT_EQ(ok, AStatus_newOk());
    AStatus_delete(ok);
    EXPECT_TRUE(AStatus_isOk(AStatus_newOk()));
    AStatus_delete(nullptr);
}

TEST(StatusTest, EmptyAndMovedFromStatusesAreNotOk) {
    EXPECT_FALSE(ScopedAStatus().isOk());
    ScopedAStatus ok = ScopedAStatus::ok();
    ScopedAStatus moved = std::move(ok);
    EXPECT_TRUE(moved.isOk());
    EXPECT_FALSE(ok.isOk());  // NOLINT(bugprone-use-after-move)
}

}  // namespace
