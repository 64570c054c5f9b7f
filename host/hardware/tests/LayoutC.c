/* The HAL headers compile as C, and C lays the records out as the platform does. */
#include "HalLayout.h"
