#define LOG_TAG "libbinder_ndk"

#include <android/binder_status.h>
#include <log/log.h>
#include <string.h>

#include <string>

struct AStatus {
    binder_exception_t exception = EX_NONE;
    // Service-specific code under EX_SERVICE_SPECIFIC, binder status under
    // EX_TRANSACTION_FAILED, 0 otherwise.
    int32_t errorCode = 0;
    std::string message;
};

namespace {

struct NamedValue {
    int32_t value;
    const char* name;
};

constexpr NamedValue kStatusNames[] = {
        {STATUS_OK, "OK"},
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

constexpr NamedValue kExceptionNames[] = {
        {EX_NONE, "EX_NONE"},
        {EX_SECURITY, "EX_SECURITY"},
        {EX_BAD_PARCELABLE, "EX_BAD_PARCELABLE"},
        {EX_ILLEGAL_ARGUMENT, "EX_ILLEGAL_ARGUMENT"},
        {EX_NULL_POINTER, "EX_NULL_POINTER"},
        {EX_ILLEGAL_STATE, "EX_ILLEGAL_STATE"},
        {EX_NETWORK_MAIN_THREAD, "EX_NETWORK_MAIN_THREAD"},
        {EX_UNSUPPORTED_OPERATION, "EX_UNSUPPORTED_OPERATION"},
        {EX_SERVICE_SPECIFIC, "EX_SERVICE_SPECIFIC"},
        {EX_PARCELABLE, "EX_PARCELABLE"},
        {EX_TRANSACTION_FAILED, "EX_TRANSACTION_FAILED"},
};

template <size_t N>
const char* findName(const NamedValue (&table)[N], int32_t value) {
    for (const NamedValue& entry : table) {
        if (entry.value == value) return entry.name;
    }
    return nullptr;
}

binder_status_t pruneStatus(binder_status_t status) {
    if (findName(kStatusNames, status) != nullptr) return status;
    ALOGW("Unknown binder status %d (%s), using UNKNOWN_ERROR", status, strerror(-status));
    return STATUS_UNKNOWN_ERROR;
}

binder_exception_t pruneException(binder_exception_t exception) {
    if (findName(kExceptionNames, exception) != nullptr) return exception;
    ALOGW("Unknown binder exception %d, using EX_TRANSACTION_FAILED", exception);
    return EX_TRANSACTION_FAILED;
}

std::string statusName(binder_status_t status) {
    const char* name = findName(kStatusNames, status);
    if (name != nullptr) return name;
    return std::to_string(status) + " (" + strerror(-status) + ")";
}

std::string exceptionName(binder_exception_t exception) {
    const char* name = findName(kExceptionNames, exception);
    return name != nullptr ? name : std::to_string(exception);
}

AStatus* newException(binder_exception_t exception, const char* message) {
    exception = pruneException(exception);
    int32_t errorCode = exception == EX_TRANSACTION_FAILED ? STATUS_FAILED_TRANSACTION : 0;
    return new AStatus{exception, errorCode, message};
}

AStatus* newServiceSpecific(int32_t serviceSpecific, const char* message) {
    return new AStatus{EX_SERVICE_SPECIFIC, serviceSpecific, message};
}

AStatus sOk;

}  // namespace

AStatus* AStatus_newOk() {
    return &sOk;
}

AStatus* AStatus_fromExceptionCode(binder_exception_t exception) {
    return newException(exception, "");
}

AStatus* AStatus_fromExceptionCodeWithMessage(binder_exception_t exception, const char* message) {
    return newException(exception, message);
}

AStatus* AStatus_fromServiceSpecificError(int32_t serviceSpecific) {
    return newServiceSpecific(serviceSpecific, "");
}

AStatus* AStatus_fromServiceSpecificErrorWithMessage(int32_t serviceSpecific, const char* message) {
    return newServiceSpecific(serviceSpecific, message);
}

AStatus* AStatus_fromStatus(binder_status_t status) {
    status = pruneStatus(status);
    if (status == STATUS_OK) return new AStatus{};
    return new AStatus{EX_TRANSACTION_FAILED, status, ""};
}

bool AStatus_isOk(const AStatus* status) {
    return status->exception == EX_NONE;
}

binder_exception_t AStatus_getExceptionCode(const AStatus* status) {
    return status->exception;
}

int32_t AStatus_getServiceSpecificError(const AStatus* status) {
    return status->exception == EX_SERVICE_SPECIFIC ? status->errorCode : 0;
}

binder_status_t AStatus_getStatus(const AStatus* status) {
    return status->exception == EX_TRANSACTION_FAILED ? status->errorCode : STATUS_OK;
}

const char* AStatus_getMessage(const AStatus* status) {
    return status->message.c_str();
}

const char* AStatus_getDescription(const AStatus* status) {
    std::string text;
    if (status->exception == EX_NONE) {
        text = "No error";
    } else {
        text = "Status(" + std::to_string(status->exception) + ", " +
               exceptionName(status->exception) + "): '";
        if (status->exception == EX_SERVICE_SPECIFIC) {
            text += std::to_string(status->errorCode) + ": ";
        } else if (status->exception == EX_TRANSACTION_FAILED) {
            text += statusName(status->errorCode) + ": ";
        }
        text += status->message + "'";
    }
    char* description = new char[text.size() + 1];
    memcpy(description, text.c_str(), text.size() + 1);
    return description;
}

void AStatus_deleteDescription(const char* description) {
    delete[] description;
}

void AStatus_delete(AStatus* status) {
    if (status != &sOk) delete status;
}
