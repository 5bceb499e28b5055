// Turns test positions in EPD into a test suite of the engine's.
//
// Usage: epd_to_suite [file.epd] >file
//
// Reads standard input where no file is named. Lines that can't be turned are named on the error stream; the exit
// status is then 1, and 2 where the files themselves fail.
#include <fstream>
#include <iostream>

#include "board/zobrist.h"
#include "epd.h"

int main(int argc, char** argv) {
    constexpr int some_refused = 1;
    constexpr int unusable = 2;
    if (argc > 2) {
        std::cerr << "usage: epd_to_suite [file.epd] >file\n";
        return unusable;
    }
    std::ifstream file;
    if (argc == 2) file.open(argv[1]);
    if (argc == 2 && !file) {
        std::cerr << argv[1] << " can't be opened\n";
        return unusable;
    }
    varn::draw_hash_numbers(0);
    std::istream& epd = argc == 2 ? file : std::cin;
    const int refused = varn::convert_epd(epd, std::cout, std::cerr);
    if (epd.bad() || !std::cout.flush()) {
        std::cerr << "the suite is incomplete: reading or writing failed\n";
        return unusable;
    }
    return refused == 0 ? 0 : some_refused;
}
