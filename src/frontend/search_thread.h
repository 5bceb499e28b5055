// A search on a second thread while the main thread keeps reading input. It is stopped by its clock and always joined.
#pragma once

#include <pthread.h>

#include <functional>

namespace varn {

struct SearchThread {
    pthread_t thread = {};
    std::function<void()> work;  // owned by the thread until it is joined
    bool is_active = false;      // started and not yet joined; the work may be finished
};

/// Starts the work on a thread with enough stack for the deepest search. The previous work must have been joined.
/// Returns false if no thread can be created.
bool start_thread(SearchThread& thread, std::function<void()> work);

/// Waits for the work to end, if any was started.
void join_thread(SearchThread& thread);

}  // namespace varn
