#include "uci/go.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>

#include "base/output.h"
#include "board/attacks.h"
#include "board/legality.h"
#include "board/notation.h"
#include "frontend/command_line.h"
#include "frontend/numbers.h"
#include "frontend/perft.h"
#include "uci/info.h"
#include "uci/uci.h"

namespace varn {

namespace {

constexpr std::int32_t no_time_limit = -1;     // compared as unsigned
constexpr std::int32_t short_budget_ms = 200;  // below this the time is read more often
constexpr std::uint32_t short_clock_interval = 0x3ff;
constexpr std::uint32_t quiet_ms = 3000;  // time before `currmove` is sent

// --- The line -------------------------------------------------------------------------------------------------------

/// The parameters of a `go` line.
struct GoWords {
    GoLimits limits;
    std::optional<std::int64_t> time_ms[2], increment_ms[2];  // by side
    std::optional<std::int64_t> moves_to_go;
    bool has_depth = false;
};

std::optional<std::int64_t> take_argument(std::string_view& rest) {
    const auto number = take_number(rest);
    return number ? std::optional<std::int64_t>(*number) : std::nullopt;
}

/// Node counts may exceed 32 bits.
std::optional<std::uint64_t> take_node_count(std::string_view& rest) {
    std::string_view after = rest;
    const std::string_view word = take_word(after);
    const bool is_number = !word.empty() && word.find_first_not_of("0123456789") == std::string_view::npos;
    if (!is_number) return std::nullopt;
    rest = after;
    constexpr std::size_t most_digits = 18;
    return word.size() > most_digits ? std::numeric_limits<std::uint64_t>::max() : std::stoull(std::string(word));
}

/// Legal moves, up to the first word that is no move.
std::vector<Move> take_moves(const Game& game, std::string_view& rest) {
    std::vector<Move> moves;
    for (std::string_view after = rest; !after.empty(); rest = after) {
        const std::string_view word = take_word(after);
        if (!names_two_squares(word)) break;
        if (const auto move = read_move(game, word)) {
            moves.push_back(*move);
        } else {
            say_info("illegal move: " + std::string(word));
        }
    }
    return moves;
}

/// Reads the parameter of one word; unknown words are ignored.
void take_limit(const Uci& uci, std::string_view word, std::string_view& rest, GoWords& words) {
    GoLimits& limits = words.limits;
    const auto take_into = [&rest](int& value) {
        const auto number = take_argument(rest);
        if (number) value = static_cast<int>(*number);
        return number.has_value();
    };
    if (word == "wtime") words.time_ms[0] = take_argument(rest);
    if (word == "btime") words.time_ms[1] = take_argument(rest);
    if (word == "winc") words.increment_ms[0] = take_argument(rest);
    if (word == "binc") words.increment_ms[1] = take_argument(rest);
    if (word == "movestogo") words.moves_to_go = take_argument(rest);
    if (word == "movetime") limits.movetime_ms = take_argument(rest);
    if (word == "depth") words.has_depth = take_into(limits.search.depth);
    if (word == "mate") take_into(limits.search.mate);
    if (word == "nodes") limits.search.nodes = take_node_count(rest).value_or(limits.search.nodes);
    if (word == "searchmoves") limits.search.only = take_moves(*uci.game, rest);
    if (word == "infinite") limits.infinite = true;
    if (word == "ponder") limits.ponder = true;
}

/// Whether the search ends by itself before the maximum depth.
bool is_bounded(const GoWords& words, const GoLimits& limits) {
    return limits.clock || limits.movetime_ms || words.has_depth || limits.search.mate > 0 ||
           limits.search.nodes != SearchLimits{}.nodes;
}

GoLimits read_limits(const Uci& uci, std::string_view arguments) {
    GoWords words;
    for (std::string_view word = take_word(arguments); !word.empty(); word = take_word(arguments)) {
        take_limit(uci, word, arguments, words);
    }
    const auto side = static_cast<std::size_t>(uci.game->turn);
    GoLimits limits = words.limits;
    if (words.time_ms[side]) {
        limits.clock =
            GameClock{*words.time_ms[side], words.increment_ms[side].value_or(0), words.moves_to_go.value_or(0)};
    }
    limits.infinite = limits.infinite || !is_bounded(words, limits);
    limits.search.lines = uci.options.multi_pv;
    limits.search.clock_runs = true;
    // Forced moves are answered without a search only when playing on the clock.
    limits.search.search_forced = !limits.clock;
    return limits;
}

// --- The clock ------------------------------------------------------------------------------------------------------

/// The time limit in milliseconds, or `no_time_limit`.
std::int32_t budget_of(const Uci& uci, const GoLimits& limits) {
    const std::int64_t overhead_ms = uci.options.move_overhead_ms;
    std::int32_t budget_ms = no_time_limit;
    if (limits.clock) {
        budget_ms = allocate_time(*limits.clock, overhead_ms);
        if (uci.debug) {
            say_info("time: " + std::to_string(limits.clock->time_ms) + " ms left, " +
                     std::to_string(limits.clock->increment_ms) + " ms a move, " +
                     std::to_string(limits.clock->moves_to_go) + " moves to go, " + std::to_string(overhead_ms) +
                     " ms overhead: " + std::to_string(budget_ms) + " ms for this move");
        }
    }
    if (limits.movetime_ms) {
        const std::int64_t highest_ms = std::numeric_limits<std::int32_t>::max();
        const std::int64_t asked_ms = std::clamp<std::int64_t>(*limits.movetime_ms, 1, highest_ms);
        const auto movetime_ms = static_cast<std::int32_t>(std::max(asked_ms - overhead_ms, (asked_ms + 1) / 2));
        budget_ms = budget_ms == no_time_limit ? movetime_ms : std::min(budget_ms, movetime_ms);
        if (uci.debug) say_info("time: " + std::to_string(movetime_ms) + " ms of a move's " + std::to_string(asked_ms));
    }
    return budget_ms;
}

// --- The search thread ----------------------------------------------------------------------------------------------

SearchListener listener_of(const Uci& uci) {
    const Search& s = *uci.search;
    const std::uint32_t started_ms = uci.job.started_ms;
    SearchListener listener;
    listener.line_improved = [&s, started_ms](const SearchReport& report) {
        say_text(info_text(report, clock_ms() - started_ms, hash_permille(s.tables.transposition_table)));
    };
    listener.iteration_finished = listener.line_improved;
    listener.root_move_started = [&s, started_ms](Move move, int number) {
        if (clock_ms() - started_ms < quiet_ms) return;
        say_text("info depth " + std::to_string(s.iteration_depth) + " currmove " + move_text(move) +
                 " currmovenumber " + std::to_string(number) + '\n');
    };
    return listener;
}

/// Waits until `bestmove` may be sent: an infinite search waits for `stop`, a pondering one for `stop` or `ponderhit`.
void wait_for_permission(GoJob& job) {
    std::unique_lock lock(job.mutex);
    job.changed.wait(lock, [&job] { return job.may_answer; });
}

void answer(GoJob& job, std::optional<Move> move, std::optional<Move> reply) {
    wait_for_permission(job);
    const std::string ponder = reply ? " ponder " + move_text(*reply) : "";
    say_text("bestmove " + (move ? move_text(*move) : "(none)") + ponder + '\n');
}

void search_and_answer(Uci& uci) {
    GoJob& job = uci.job;
    const auto move = think(*uci.search, job.game, job.limits.search, listener_of(uci));
    if (!move) say_text(in_check(job.game) ? "info depth 0 score mate 0\n" : "info depth 0 score cp 0\n");
    answer(job, move, uci.search->predicted_move);
}

/// The book move, when playing on the clock from the starting position.
std::optional<Move> ask_book(Uci& uci, const GoLimits& limits) {
    const bool is_open = uci.options.own_book && !uci.options.analyse_mode && uci.from_start;
    const bool plays = limits.clock && !limits.ponder && !limits.infinite && limits.search.only.empty();
    return is_open && plays ? book_move(uci.book, *uci.game) : std::nullopt;
}

/// Starts the work. If no thread can be created the first legal move is the answer.
void start_job(Uci& uci, std::function<void()> work) {
    if (start_thread(uci.job.thread, std::move(work))) return;
    say_info("the search thread can't be started");
    const MoveList legal = legal_moves(*uci.game);
    say_text("bestmove " + (legal.count > 0 ? move_text(legal.moves[0]) : "(none)") + '\n');
}

/// Later commands wait for a move count to end, but not forever.
void wait_for_count(GoJob& job) {
    constexpr std::chrono::seconds patience(10);
    std::unique_lock lock(job.mutex);
    job.changed.wait_for(lock, patience, [&job] { return job.is_counted; });
}

/// The number of leaves below the position; incomplete if stopped.
std::uint64_t count_while_running(const Clock& clock, Game& game, int depth) {
    constexpr int counted_at_once = 4;
    if (depth <= counted_at_once) return is_running(clock) ? count_leaves(game, depth) : 0;
    std::uint64_t leaves = 0;
    for (const Move move : legal_moves(game)) {
        UndoRecord undo;
        fill_undo(game, move, undo);
        make_move(game, move);
        leaves += count_while_running(clock, game, depth - 1);
        unmake_move(game, move, undo);
    }
    return leaves;
}

void print_count(Search& s, Game game, int depth) {
    std::uint64_t total = depth == 0 ? 1 : 0;
    const MoveList legal = legal_moves(game);
    for (int i = 0; depth > 0 && i < legal.count && is_running(s.clock); ++i) {
        UndoRecord undo;
        fill_undo(game, legal.moves[i], undo);
        make_move(game, legal.moves[i]);
        const std::uint64_t leaves = count_while_running(s.clock, game, depth - 1);
        unmake_move(game, legal.moves[i], undo);
        if (!is_running(s.clock)) break;
        total += leaves;
        say_text(move_text(legal.moves[i]) + ": " + std::to_string(leaves) + '\n');
    }
    say_text(is_running(s.clock) ? "\nNodes searched: " + std::to_string(total) + '\n'
                                 : std::string("info string the count was stopped\n"));
}

}  // namespace

void go(Uci& uci, std::string_view arguments) {
    std::string_view rest = arguments;
    if (take_word(rest) == "perft") return count_by_move(uci, rest);
    finish_search(uci);
    GoJob& job = uci.job;
    job.limits = read_limits(uci, arguments);
    job.started_ms = clock_ms();
    if (const auto move = ask_book(uci, job.limits)) {
        say_info("from the book");
        say_text("bestmove " + move_text(*move) + '\n');
        return;
    }
    job.game = *uci.game;
    job.limit_ms = budget_of(uci, job.limits);
    if (job.limit_ms != no_time_limit && job.limit_ms < short_budget_ms) {
        job.limits.search.clock_interval = short_clock_interval;
    }
    job.is_pondering = job.limits.ponder;
    job.may_answer = !job.limits.ponder && !job.limits.infinite;
    job.is_count = false;
    uci.search->clock.time_limit_ms = job.limits.ponder ? no_time_limit : job.limit_ms;
    start_clock(uci.search->clock);
    start_job(uci, [&uci] { search_and_answer(uci); });
}

void count_by_move(Uci& uci, std::string_view arguments) {
    const auto depth = take_number(arguments);
    if (!depth || *depth < 0 || *depth > last_ply) return say_info("perft needs a number of plies");
    finish_search(uci);
    uci.job.is_count = true;
    start_clock(uci.search->clock);
    Search& s = *uci.search;
    uci.job.is_counted = false;
    const bool started = start_thread(uci.job.thread, [&s, &job = uci.job, game = *uci.game, depth] {
        print_count(s, game, *depth);
        const std::lock_guard lock(job.mutex);
        job.is_counted = true;
        job.changed.notify_one();
    });
    if (!started) say_info("the search thread can't be started");
}

void stop(Uci& uci) {
    GoJob& job = uci.job;
    stop_clock(uci.search->clock);
    const std::lock_guard lock(job.mutex);
    job.is_pondering = false;
    job.may_answer = true;
    job.changed.notify_one();
}

// The limit is set before the answer is allowed: a search that ends in between can answer at once.
void ponder_hit(Uci& uci) {
    GoJob& job = uci.job;
    const std::lock_guard lock(job.mutex);
    if (!job.is_pondering) return;
    job.is_pondering = false;
    restart_clock(uci.search->clock, job.limit_ms);
    job.may_answer = !job.limits.infinite;
    job.changed.notify_one();
}

void finish_search(Uci& uci) {
    if (!uci.job.thread.is_active) return;
    if (uci.job.is_count) wait_for_count(uci.job);
    stop(uci);
    join_thread(uci.job.thread);
}

}  // namespace varn
