// Lines of test suites.
#include "frame.h"
#include "frontend/suite.h"

void run_input(std::string_view input) {
    varn::write_file("suite", input);
    varn::Engine& engine = varn::fresh_engine();
    engine.ply_limit = 1;
    engine.search->clock.time_limit_ms = 1;
    varn::run_suite(engine, "suite", "log", {});
}
