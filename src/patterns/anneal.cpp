#include "patterns/anneal.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

#include "base/output.h"

namespace varn {

namespace {

using SteadyClock = std::chrono::steady_clock;

double seconds_since(SteadyClock::time_point start) {
    return std::chrono::duration<double>(SteadyClock::now() - start).count();
}

void shuffle(std::vector<Pattern>& patterns, Choices& choices) {
    constexpr int swaps_per_pattern = 10;
    const auto count = static_cast<std::uint32_t>(patterns.size());
    for (std::uint64_t i = 0; i < std::uint64_t{swaps_per_pattern} * count; ++i) {
        Pattern& one = patterns[choices.below(count)];
        std::swap(one, patterns[choices.below(count)]);
    }
}

/// Anneals in chunks and shows the progress on a terminal, about once per second.
void anneal_with_progress(PatternList& list, std::uint64_t moves, Choices& choices, UniformState& acceptance) {
    constexpr std::uint64_t portion = 1 << 24;
    const bool is_watched = isatty(STDERR_FILENO) == 1;
    const auto start = SteadyClock::now();
    auto last_told = start;
    for (std::uint64_t done = 0; done < moves;) {
        const std::uint64_t now = std::min(portion, moves - done);
        anneal(list, now, choices, acceptance);
        done += now;
        if (!is_watched || (seconds_since(last_told) < 1 && done < moves)) continue;
        last_told = SteadyClock::now();
        const auto million = [](double number) { return number / 1e6; };
        static_cast<void>(std::fprintf(stderr, "\r%.0f of %.0f million moves, %u boxes, %.1f million moves/s ",
                                       million(static_cast<double>(done)), million(static_cast<double>(moves)),
                                       list.count(), million(static_cast<double>(done) / seconds_since(start))));
    }
    if (is_watched) static_cast<void>(std::fputc('\n', stderr));
}

/// Returns null, with a message, if there is nothing to anneal.
std::unique_ptr<PatternList> anneal_file(Game& game, const PositionReader& position_read, std::uint64_t moves,
                                         bool& has_room) {
    has_room = true;
    say_text("loading precomputed data in memory...\n");
    auto positions = load_positions(positions_file_name, game, position_read);
    if (!positions) {
        say("error: cannot open %s.\n", positions_file_name);
        return nullptr;
    }
    say("finished loading, %zu patterns in memory.\n", positions->drawn.size());
    if (positions->drawn.empty()) {
        say_text("error: no patterns to anneal.\n");
        return nullptr;
    }

    const auto now = std::chrono::system_clock::now().time_since_epoch();
    Choices choices(static_cast<std::uint64_t>(std::chrono::nanoseconds(now).count()));
    UniformState acceptance = {
        static_cast<std::int32_t>(std::chrono::duration_cast<std::chrono::seconds>(now).count())};
    say_text("shuffling...\n");
    shuffle(positions->drawn, choices);
    auto list = std::make_unique<PatternList>(positions->drawn, positions->lines);
    has_room = can_dump_patterns(patterns_file_name, *list);
    if (!has_room) {
        say_text(cannot_dump_text);
        return nullptr;
    }
    say_text("starting annealing process...\n");
    anneal_with_progress(*list, moves, choices, acceptance);
    return list;
}

}  // namespace

void anneal(PatternList& list, std::uint64_t moves, Choices& choices, UniformState& acceptance) {
    constexpr double accepted_splits = 0.08;
    for (std::uint64_t i = 0; i < moves; ++i) {
        choices.renew();
        const BoxPlace place = choices.below(list.count());
        const bool is_merge = choices.below(2) == 0;
        const auto field = static_cast<Field>(choices.below(field_count));
        if (is_merge) {
            merge_patterns(list, place, field, choices);
        } else if (uniform_random(acceptance) <= accepted_splits) {
            split_pattern(list, place, field, choices);
        }
    }
}

void anneal_kpk(AnnealRun& run, Game& game, const PositionReader& position_read, std::uint64_t moves) {
    if (run.is_written) run.list = anneal_file(game, position_read, moves, run.has_room);
    run.is_written = run.list == nullptr || dump_patterns(patterns_file_name, *run.list);
}

bool settle_patterns(AnnealRun& run) {
    if (run.is_written) return run.has_room;
    if (dump_patterns(patterns_file_name, *run.list)) return true;
    const auto rescued = rescue_patterns(patterns_file_name, *run.list);
    say_text(rescued ? "the patterns are in " + *rescued + ".\n" : "the patterns are lost.\n");
    return false;
}

}  // namespace varn
