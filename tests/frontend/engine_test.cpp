// The engine interface of the front ends: playing and taking back, setting positions, and choosing between book and
// search. The transcripts cover the rest.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

#include "folder.h"
#include "frontend/engine.h"
#include "positions.h"
#include "small_engine.h"

namespace varn {
namespace {

class EngineTest : public testing::Test {
protected:
    EngineTest() { engine.ply_limit = 1; }

    void play(std::string_view text) { play_move(*engine.game, parse_move(*engine.game, text)); }

    SmallEngine engine;
};

TEST_F(EngineTest, ReportsProblemsInPositionText) {
    const std::string kings = "4k3/8/8/8/8/8/8/4K3 ";
    for (const auto& [rest, said] : {std::pair{"b - -", ""},
                                     {"x - -", "error: unrecognised character in side to move field.\n"},
                                     {"b - e3", "enpassant not supported in EPD format yet.\n"}}) {
        engine.book_enabled = true;
        const std::string text = kings + rest;
        EXPECT_EQ(printed([&] { set_game_position(engine, text); }), said);
        EXPECT_EQ(position_text(*engine.game), kings + "b - -");
        EXPECT_FALSE(engine.book_enabled);
    }
    const auto read = [&] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        set_game_position(engine, "4k3/x");
    };
    EXPECT_EXIT(read(), ::testing::ExitedWithCode(1), "^error: unrecognised character in EPD string\\.\n$");
}

TEST_F(EngineTest, TakesMovesAndPassesBack) {
    std::vector<Game> stood = {*engine.game};
    const auto stand = [&] { stood.push_back(*engine.game); };
    play("e2e4"), stand();
    pass_turn(engine);
    play("g1f3"), stand();
    pass_turn(engine), pass_turn(engine);  // two passes cancel
    play("d7d5"), stand();
    pass_turn(engine);  // taken back with the move before it
    for (int left = 3; left >= 0; --left) {
        take_back_moves(engine, left == 3 ? 0 : 1);
        EXPECT_TRUE(same_game(*engine.game, stood[static_cast<std::size_t>(left)])) << left;
    }
    take_back_moves(engine, 1000);
    EXPECT_TRUE(same_game(*engine.game, stood[0]));
    set_game_position(engine, "4k3/8/8/8/8/8/8/4K2R w K -");
    const Game set = *engine.game;
    play("e1g1");
    take_back_moves(engine, 2);
    EXPECT_TRUE(same_game(*engine.game, set));
}

TEST_F(EngineTest, UsesTheBookUntilItHasNoMove) {
    const Folder folder;
    folder.write("book.dat", "a2a3a7a6\n");
    load_book(engine.book, folder.path_to("book.dat"), 1);
    int searches = 0;
    SearchListener listener;
    listener.search_started = [&] { ++searches; };
    engine.book_enabled = true;
    engine.search->predicted_move = Move{};
    for (const char* expected : {"a2a3", "a7a6"}) {
        const auto move = choose_move(engine, *engine.game, listener);
        EXPECT_EQ(move_text(*move), expected);
        EXPECT_FALSE(engine.search->predicted_move) << "no search expects anything";
        play(expected);
    }
    EXPECT_EQ(searches, 0);
    EXPECT_TRUE(choose_move(engine, *engine.game, listener));
    EXPECT_EQ(searches, 1);
    EXPECT_FALSE(engine.book_enabled);
    EXPECT_FALSE(choose_move(engine, *game_from("k6R/8/1K6/8/8/8/8/8 b - -"), listener));
}

TEST_F(EngineTest, NewGamesAndTakingBackClearTheSearchTables) {
    const auto is_known = [&] {
        return hash_probe(engine.search->tables.transposition_table, *engine.game, 0) != nullptr;
    };
    for (const auto forget : {+[](Engine& e) { start_game(e); }, +[](Engine& e) { take_back_moves(e, 1); },
                              +[](Engine& e) { set_game_position(e, known_positions[0].text); }}) {
        choose_move(engine, *engine.game, {});
        EXPECT_TRUE(is_known());
        forget(engine);
        EXPECT_FALSE(is_known());
    }
}

/// How many pages of the block are in memory.
template <typename Entry> std::uint64_t resident_pages(const HashTable<Entry>& table, std::uint64_t page_bytes) {
    const auto address = reinterpret_cast<std::uintptr_t>(table.slots.get());
    const std::uintptr_t first = (address + page_bytes - 1) / page_bytes * page_bytes;  // of the pages it has alone
    std::vector<unsigned char> pages((address + table.entries.value * sizeof(Entry) - first) / page_bytes);
    EXPECT_EQ(mincore(reinterpret_cast<void*>(first), pages.size() * page_bytes, pages.data()), 0);
    return static_cast<std::uint64_t>(std::ranges::count_if(pages, [](unsigned char page) { return (page & 1) != 0; }));
}

TEST_F(EngineTest, PrefaultsTheTablesBeforeTheFirstSearch) {
    Search& s = *engine.search;
    // Large enough that the memory is always fresh.
    ASSERT_EQ(allocate_tables(s, {.hash_bits = 21}), TableFault::none);
    const auto page_bytes = static_cast<std::uint64_t>(sysconf(_SC_PAGE_SIZE));
    const std::uint64_t pages = s.tables.transposition_table.entries.value * sizeof(HashEntry) / page_bytes;
    EXPECT_LT(resident_pages(s.tables.transposition_table, page_bytes), pages / 2);
    ASSERT_TRUE(choose_move(engine, *engine.game, {}));
    EXPECT_GE(resident_pages(s.tables.transposition_table, page_bytes), pages - 2);
}

}  // namespace
}  // namespace varn
