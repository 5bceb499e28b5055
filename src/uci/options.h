// UCI options: names, ranges and effects.
#pragma once

#include <string>
#include <string_view>

namespace varn {

struct Uci;

struct Options {
    int hash_mb = 64;
    bool ponder = false;  // whether the client may ponder; has no effect
    bool own_book = false;
    std::string book_file = "book.dat";
    int move_overhead_ms = 30;  // time per move lost outside the search
    int multi_pv = 1;
    int threads = 1;
    bool analyse_mode = false;  // no book moves
    std::string about;          // read-only text
};

Options standard_options();

/// The `option` lines for the client.
std::string options_text();

/// Executes a `setoption` line. An unknown option or invalid value changes nothing and is reported by `info string`.
void set_option(Uci& uci, std::string_view arguments);

/// The largest `hash_bits` whose transposition table fits into so many megabytes.
int hash_bits_for(int megabytes);

}  // namespace varn
