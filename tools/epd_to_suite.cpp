// Converts EPD test positions to a test suite.
#include <fstream>
#include <iostream>
#include <string_view>

#include "board/zobrist.h"
#include "epd.h"

namespace {

constexpr std::string_view usage =
    "usage: epd_to_suite [file.epd] >file\n"
    "Reads standard input if no file is given. Lines that can't be converted are reported on standard error; the exit\n"
    "status is then 1, and 2 if a file can't be read or written. Blank lines and lines that start with \"#\" are "
    "skipped.\n";

constexpr int some_refused = 1;
constexpr int unusable = 2;

}  // namespace

int main(int argc, char** argv) {
    const std::string_view name = argc > 1 ? argv[1] : "";
    if (argc == 2 && name == "--help") {
        std::cout << usage;
        return 0;
    }
    if (argc > 2 || name.starts_with('-')) {
        std::cerr << "epd_to_suite: expects one file or --help\n";
        return unusable;
    }
    std::ifstream file;
    if (argc == 2) file.open(argv[1]);
    if (argc == 2 && !file) {
        std::cerr << "epd_to_suite: can't open " << name << '\n';
        return unusable;
    }
    varn::draw_hash_numbers(0);
    std::istream& epd = argc == 2 ? file : std::cin;
    const int refused = varn::convert_epd(epd, std::cout, std::cerr);
    if (epd.bad() || !std::cout.flush()) {
        std::cerr << "epd_to_suite: the suite is incomplete: reading or writing failed\n";
        return unusable;
    }
    return refused == 0 ? 0 : some_refused;
}
