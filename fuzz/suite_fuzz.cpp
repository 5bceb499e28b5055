// A test suite's lines.
#include "frame.h"
#include "frontend/suite.h"
#include "search/clock.h"
#include "search/settings.h"

void run_input(std::string_view input) {
    varn::write_file("suite", input);
    varn::ply_limit = 1;
    varn::time_limit_ms = 1;
    varn::run_suite("suite", "log");
}
