// The process: no arguments, one settings file, then the console until something ends it.
#include "board/output.h"
#include "frontend/console.h"
#include "frontend/startup.h"

int main() {
    varn::set_up_output();
    varn::console_loop(varn::start_up());
}
