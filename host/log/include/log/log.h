#pragma once

#include <android/log.h>
#include <log/log_main.h>
