#include "uci/options.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "base/memory.h"
#include "base/number.h"
#include "base/output.h"
#include "frontend/command_line.h"
#include "frontend/startup.h"
#include "frontend/version.h"
#include "uci/info.h"
#include "uci/uci.h"

namespace varn {

namespace {

constexpr int megabyte_bits = 20;
constexpr int most_moves = 256;  // no position has more

/// Maximum of the option Hash: what the engine can address, or three quarters of the machine's memory if less.
int largest_hash_mb() {
    constexpr std::uint64_t largest_table_mb = std::uint64_t{sizeof(HashEntry)} << (30 - megabyte_bits);
    const std::uint64_t memory_mb = physical_memory_bytes() / 4 * 3 >> megabyte_bits;
    return static_cast<int>(std::clamp<std::uint64_t>(memory_mb, 1, largest_table_mb));
}

// --- Effects of a change: each returns an error text, empty on success ---------------------------------------------

std::string resize_hash(Uci& uci) {
    finish_search(uci);
    if (hash_allocate(uci.search->tables.transposition_table, hash_bits_for(uci.options.hash_mb))) return "";
    return "there isn't memory enough";
}

std::string clear_hash(Uci& uci) {
    finish_search(uci);
    clear_tables(*uci.search);
    return "";
}

/// On failure the open book is kept.
std::string open_book(Uci& uci) {
    const std::string& name = uci.options.book_file;
    if (!uci.options.own_book) return "";
    Book opened;
    switch (load_book(opened, name, clock_seed())) {
        case BookFault::none: break;
        case BookFault::no_file: return "there is no book " + name;
        case BookFault::too_long:
            say_info("the book " + name + " has more than " + std::to_string(book_capacity) +
                     " rows: the rest is left out");
            break;
    }
    uci.book = std::move(opened);
    return "";
}

std::string do_nothing(Uci&) { return ""; }

// --- The table ------------------------------------------------------------------------------------------------------

/// An option: its name, where its value is stored, its range, and the effect of a change. One of the three pointers is
/// set; a row without any is a button.
struct Option {
    std::string_view name;
    int Options::*number = nullptr;
    int lowest = 0;
    int (*highest)() = nullptr;
    bool Options::*flag = nullptr;
    std::string Options::*text = nullptr;
    std::string (*changed)(Uci& uci) = do_nothing;
};

constexpr Option spin(std::string_view name, int Options::*number, int lowest, int (*highest)(),
                      std::string (*changed)(Uci& uci) = do_nothing) {
    return {name, number, lowest, highest, nullptr, nullptr, changed};
}
constexpr Option check(std::string_view name, bool Options::*flag, std::string (*changed)(Uci& uci) = do_nothing) {
    return {name, nullptr, 0, nullptr, flag, nullptr, changed};
}
constexpr Option string(std::string_view name, std::string Options::*text,
                        std::string (*changed)(Uci& uci) = do_nothing) {
    return {name, nullptr, 0, nullptr, nullptr, text, changed};
}
constexpr Option button(std::string_view name, std::string (*pressed)(Uci& uci)) {
    return {name, nullptr, 0, nullptr, nullptr, nullptr, pressed};
}

constexpr Option options[] = {
    spin("Hash", &Options::hash_mb, 1, largest_hash_mb, resize_hash),
    button("Clear Hash", clear_hash),
    check("Ponder", &Options::ponder),
    check("OwnBook", &Options::own_book, open_book),
    string("Book File", &Options::book_file, open_book),
    spin("Move Overhead", &Options::move_overhead_ms, 0, [] { return 5000; }),
    spin("MultiPV", &Options::multi_pv, 1, [] { return most_moves; }),
    spin("Threads", &Options::threads, 1, [] { return 1; }),
    check("UCI_AnalyseMode", &Options::analyse_mode),
    string("UCI_EngineAbout", &Options::about, [](Uci&) { return std::string("it can't be changed"); }),
};

std::string option_line(const Option& option, const Options& values) {
    std::string line = "option name " + std::string(option.name) + " type ";
    if (option.number != nullptr) {
        line += "spin default " + std::to_string(values.*option.number) + " min " + std::to_string(option.lowest) +
                " max " + std::to_string(option.highest());
    } else if (option.flag != nullptr) {
        line += values.*option.flag ? "check default true" : "check default false";
    } else if (option.text != nullptr) {
        line += "string default " + values.*option.text;
    } else {
        line += "button";
    }
    return line + '\n';
}

char lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

/// Option names are case-insensitive.
bool is_same_name(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char one, char other) { return lower(one) == lower(other); });
}

const Option* option_of(std::string_view name) {
    const auto* found = std::ranges::find_if(options, [=](const Option& o) { return is_same_name(o.name, name); });
    return found != std::end(options) ? found : nullptr;
}

std::string_view without_blanks_around(std::string_view text) {
    text = without_leading_blanks(text);
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

/// Stores the value; returns an error text, empty on success.
std::string take_value(const Option& option, Options& values, std::string_view text) {
    if (option.number != nullptr) {
        const int highest = option.highest();
        const auto number = read_number(text, option.lowest, highest);
        if (!number) {
            return "not a number from " + std::to_string(option.lowest) + " to " + std::to_string(highest);
        }
        values.*option.number = *number;
    } else if (option.flag != nullptr) {
        if (text != "true" && text != "false") return "neither true nor false";
        values.*option.flag = text == "true";
    } else if (option.text != nullptr) {
        values.*option.text = text == "<empty>" ? "" : text;  // UCI's empty string
    }
    return "";
}

/// The name and value of a `setoption` line.
struct NameAndValue {
    std::string_view name, value;
};

NameAndValue split_arguments(std::string_view arguments) {
    if (take_word(arguments) != "name") return {};
    const std::string_view name = take_before(arguments, "value");
    return {without_blanks_around(name), without_blanks_around(arguments)};
}

}  // namespace

Options standard_options() {
    Options standard;
    standard.hash_mb = std::min(standard.hash_mb, largest_hash_mb());
    standard.about = std::string(program_name) + ", a classical chess engine";
    return standard;
}

std::string options_text() {
    const Options standard = standard_options();
    std::string text;
    for (const Option& option : options) text += option_line(option, standard);
    return text;
}

void set_option(Uci& uci, std::string_view arguments) {
    const auto [name, value] = split_arguments(arguments);
    const Option* option = option_of(name);
    if (option == nullptr) return say_info("there is no option " + std::string(name));
    const Options before = uci.options;
    std::string fault = take_value(*option, uci.options, value);
    if (fault.empty()) fault = option->changed(uci);
    if (fault.empty()) return;
    uci.options = before;
    if (option->changed == resize_hash) resize_hash(uci);  // back to the old size
    say_info("option " + std::string(option->name) + " stays as it is: " + fault);
}

int hash_bits_for(int megabytes) {
    const std::uint64_t bytes = static_cast<std::uint64_t>(megabytes) << megabyte_bits;
    int bits = 1;
    while (bits < 30 && (std::uint64_t{2} << bits) * sizeof(HashEntry) <= bytes) ++bits;
    return bits;
}

}  // namespace varn
