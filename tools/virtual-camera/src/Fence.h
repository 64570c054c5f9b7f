/*
 * Fences of the virtual camera. A release fence is an eventfd that the device makes readable
 * (counter 1) once the buffer is written and unmapped; the consumer owns the fd from then on and
 * may poll it for POLLIN. An acquire fence may be any pollable fd (eventfd, pipe read end, sync
 * file): it is ready when it polls readable. Free functions, callable from any thread.
 */
#pragma once

#include "UniqueFd.h"

namespace virtual_camera {

// Waits up to `timeoutMs` for `fence` to become ready; -1 means no fence and is ready at once.
// False on timeout or error (logged).
bool waitFence(int fence, int timeoutMs);

// A new release fence that is already signalled. Invalid on failure (logged).
UniqueFd makeSignalledFence();

}  // namespace virtual_camera
