// The options of the UCI front end: what they are, what they may be, and what a change does.
#pragma once

#include <string>
#include <string_view>

namespace varn {

struct Uci;

struct Options {
    int hash_mb = 64;
    bool ponder = false;  // the client says whether it will ask for pondering; nothing hangs on it
    bool own_book = false;
    std::string book_file = "book.dat";
    int move_overhead_ms = 30;  // of every move, for what isn't search
    int multi_pv = 1;
    int threads = 1;
    bool analyse_mode = false;  // the book stays closed
    std::string about;          // for people to read; a client can't change it
};

Options standard_options();

/// The lines that tell a client of every option.
std::string options_text();

/// Carries out what stands behind `setoption`. An option that isn't there or a value that can't be leaves everything as
/// it was, with an `info string` that says so.
void set_option(Uci& uci, std::string_view arguments);

/// The settings of the transposition table that take no more than so many megabytes.
int hash_bits_for(int megabytes);

}  // namespace varn
