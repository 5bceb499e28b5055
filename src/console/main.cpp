// The process: no arguments, one settings file, then the console until something ends it.
#include "console/console.h"
#include "frontend/startup.h"

int main() {
    varn::set_up_process();
    const auto engine = varn::start_up();
    varn::console_loop(*engine);
}
