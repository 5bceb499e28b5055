#include "frontend/search_thread.h"

#include <cassert>
#include <utility>

namespace varn {

namespace {

// A search ply needs some hundred bytes of stack, and there are up to 500 plies; sanitizers need more.
constexpr std::size_t search_stack_bytes = 8U << 20U;

void* run_work(void* thread) {
    static_cast<const SearchThread*>(thread)->work();
    return nullptr;
}

}  // namespace

bool start_thread(SearchThread& thread, std::function<void()> work) {
    assert(!thread.is_active);
    thread.work = std::move(work);
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return false;
    thread.is_active = pthread_attr_setstacksize(&attributes, search_stack_bytes) == 0 &&
                       pthread_create(&thread.thread, &attributes, run_work, &thread) == 0;
    pthread_attr_destroy(&attributes);
    return thread.is_active;
}

void join_thread(SearchThread& thread) {
    if (!thread.is_active) return;
    pthread_join(thread.thread, nullptr);
    thread.is_active = false;
}

}  // namespace varn
