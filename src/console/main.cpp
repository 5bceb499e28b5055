// The console engine: no arguments, one settings file.
#include "console/console.h"
#include "frontend/startup.h"

int main() {
    varn::set_up_process();
    const auto engine = varn::start_up();
    varn::console_loop(*engine);
}
