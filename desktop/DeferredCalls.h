#pragma once

#include <functional>

// Work scheduled on the main event loop for a little later, such as putting
// the clipboard back after a paste. A command-line run waits for it before
// it exits, so the work is never lost.
namespace DeferredCalls {

void after(int milliseconds, std::function<void()> work);
int pending();
// Runs the event loop until nothing is pending or `timeoutMs` has passed.
void waitForPending(int timeoutMs);

} // namespace DeferredCalls
