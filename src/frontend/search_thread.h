// A search on a second thread, while the main thread goes on reading. It is stopped by its clock, never by a message,
// and always joined.
#pragma once

#include <pthread.h>

#include <functional>

namespace varn {

struct SearchThread {
    pthread_t thread = {};
    std::function<void()> work;  // the thread's own from its start until it is joined
    bool is_active = false;      // started and not yet joined; the work itself may have ended
};

/// Starts the work on a thread with a stack large enough for the deepest search. The last work must have been joined.
/// False where no thread can be had.
bool start_thread(SearchThread& thread, std::function<void()> work);

/// Waits for the work to end; nothing where none was started.
void join_thread(SearchThread& thread);

}  // namespace varn
