#include <ulog/StandaloneLogger.h>
#include <ulog/ULogger.h>

namespace Strata::Utils::ULog {

namespace {

// Constant-initialised and never destroyed: log sites may run during the static construction
// and destruction of other objects.
union DefaultLogger {
    constexpr DefaultLogger() : logger() {}
    ~DefaultLogger() {}
    StandaloneLogger logger;
};
constinit DefaultLogger sDefaultLogger;

}  // namespace

StandaloneLogger& StandaloneLogger::instance() {
    return sDefaultLogger.logger;
}

uint32_t ULogger::sDetailsLevel = ULogger::kDefaultDetailsLevel;
uint32_t ULogger::sNormalDetailsMask = ULogger::kDefaultNormalDetailsMask;
uint32_t ULogger::sMode = ULogger::kDefaultMode;
constinit ULogger* ULogger::sULogger = &sDefaultLogger.logger;

ULogger::~ULogger() = default;

int32_t ULogger::init() {
    return 0;
}

void ULogger::setDetailsLevel(uint32_t level) {
    sDetailsLevel = level;
}

uint32_t ULogger::getDetailsLevel() const {
    return sDetailsLevel;
}

void ULogger::setNormalDetailsMask(uint32_t mask) {
    sNormalDetailsMask = mask;
}

uint32_t ULogger::getNormalDetailsMask() const {
    return sNormalDetailsMask;
}

void ULogger::setMode(uint32_t mode) {
    sMode = mode;
}

void ULogger::deinit() {}

}  // namespace Strata::Utils::ULog
