// The settings file. Tables aren't allocated from it: sizes that can't be are tested elsewhere.
#include "eval/pawns.h"
#include "frame.h"
#include "frontend/configuration.h"
#include "search/settings.h"

void run_input(std::string_view input) {
    varn::write_file("varn.ini", input);
    varn::read_configuration();
    varn::hash_bits = 10;
    varn::qhash_bytes = 40000;
    varn::phash_bytes = 16000;
}
