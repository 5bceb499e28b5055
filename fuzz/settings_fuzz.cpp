// The settings file. No tables are allocated: invalid sizes are tested elsewhere.
#include "frame.h"
#include "frontend/configuration.h"

void run_input(std::string_view input) {
    varn::write_file("varn.ini", input);
    varn::read_configuration();
}
