// Cost of an annealing move as the list gets shorter: the same number of moves from the same boxes with the real list
// and with the reference implementation. The argument is the number of preceding moves in thousands; the counter
// `boxes` is the number of boxes left by them. The rate is in moves per second.
#include <benchmark/benchmark.h>

#include <map>
#include <utility>

#include "../tests/plain_patterns.h"
#include "patterns/anneal.h"

namespace varn {
namespace {

constexpr double accepted_splits = 0.08;

std::vector<Pattern> shuffled_draws() {
    std::vector<Pattern> positions = drawn_positions();
    Choices choices(20081019);
    for (std::uint32_t i = 1; i < positions.size(); ++i) std::swap(positions[i], positions[choices.below(i + 1)]);
    return positions;
}

std::map<std::int64_t, PatternList> lists;  // computed so far, by thousand moves

/// The list after so many moves, computed once.
const PatternList& list_after(std::int64_t thousand_moves) {
    const auto found = lists.find(thousand_moves);
    if (found != lists.end()) return found->second;
    const std::vector<Pattern> draws = shuffled_draws();
    PatternList list(draws, draws.size());
    Choices choices(1);
    UniformState acceptance = {1};
    anneal(list, static_cast<std::uint64_t>(thousand_moves) * 1000, choices, acceptance);
    return lists.emplace(thousand_moves, std::move(list)).first->second;
}

void plain_anneal(PlainList& list, std::uint64_t moves, Choices& choices, UniformState& acceptance) {
    for (std::uint64_t i = 0; i < moves; ++i) {
        choices.renew();
        const std::size_t index = choices.below(static_cast<std::uint32_t>(list.patterns.size()));
        const bool is_merge = choices.below(2) == 0;
        const int field = static_cast<int>(choices.below(field_count));
        if (is_merge) {
            plain_merge(list, index, field, choices);
        } else if (uniform_random(acceptance) <= accepted_splits) {
            plain_split(list, index, field, choices);
        }
    }
}

/// Each iteration starts from a fresh copy, so that the list keeps its length.
template <typename List, void (*Anneal)(List&, std::uint64_t, Choices&, UniformState&)>
void run_rounds(benchmark::State& state, const List& start) {
    constexpr std::uint64_t moves_a_round = 10000;
    Choices choices(2);
    UniformState acceptance = {1};
    for (auto _ : state) {
        state.PauseTiming();
        List list = start;
        state.ResumeTiming();
        Anneal(list, moves_a_round, choices, acceptance);
        benchmark::DoNotOptimize(list);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(moves_a_round));
    state.counters["boxes"] = list_after(state.range(0)).count();
}

void by_groups(benchmark::State& state) { run_rounds<PatternList, anneal>(state, list_after(state.range(0))); }
void by_plain_walk(benchmark::State& state) {
    const PatternList& list = list_after(state.range(0));
    run_rounds<PlainList, plain_anneal>(state, {in_order(list), list.capacity});
}

void lengths(benchmark::internal::Benchmark* bench) {
    for (const std::int64_t thousand_moves : {0, 100, 1000, 10000, 100000}) bench->Arg(thousand_moves);
}
BENCHMARK(by_groups)->Apply(lengths);
BENCHMARK(by_plain_walk)->Apply(lengths)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace varn
