// The process: no arguments, one settings file, then the console until something ends it.
#include "board/output.h"
#include "frontend/console.h"
#include "frontend/startup.h"

int main() {
    varn::unbuffer_output();
    varn::end_when_unheard();
    varn::console_loop(varn::start_up());
}
