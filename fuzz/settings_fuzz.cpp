// The settings file. Tables aren't allocated from it: sizes that can't be are tested elsewhere.
#include "frame.h"
#include "frontend/configuration.h"

void run_input(std::string_view input) {
    varn::write_file("varn.ini", input);
    varn::read_configuration();
}
