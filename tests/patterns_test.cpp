// King-and-pawn patterns: the positions solved, the list of boxes against the plain walk, and the files.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>

#include "board/attacks.h"
#include "patterns/anneal.h"
#include "patterns/kpk_solver.h"
#include "patterns/pattern_files.h"
#include "plain_patterns.h"
#include "positions.h"
#include "process.h"

namespace varn {
namespace {

constexpr std::string_view prompt = "Varn> ";

// --- Solved positions
// -------------------------------------------------------------------------------------------------

Placement placement_of(const Game& game) {
    return {static_cast<std::uint8_t>(game.wking_sqr), static_cast<std::uint8_t>(first_one(game.w_pawns)),
            static_cast<std::uint8_t>(game.bking_sqr)};
}

bool is_won(const KpkWins& wins, const Game& game) {
    return (game.turn == 0 ? wins.white_to_move : wins.black_to_move)[kpk_index(placement_of(game))];
}

TEST(Kpk, TheSumsOfTheSolvedPositionsAreThePublishedOnes) {
    const auto wins = solve_kpk();
    EXPECT_EQ(kpk_placements().size(), 2U * 81664);
    EXPECT_EQ(wins->white_to_move.count(), 2U * 62480);
    EXPECT_EQ(wins->black_to_move.count(), 2U * 48802);
}

TEST(Kpk, KnowsTheEndingsOfTheTextbooks) {
    constexpr std::pair<const char*, bool> known[] = {
        {"4k3/8/4K3/4P3/8/8/8/8 w - -", true},  // the king on the sixth rank before his pawn, whoever moves
        {"4k3/8/4K3/4P3/8/8/8/8 b - -", true},
        {"4k3/4P3/4K3/8/8/8/8/8 w - -", true},   // the pawn stands on the seventh rank and gave no check there
        {"4k3/4P3/4K3/8/8/8/8/8 b - -", false},  // stalemate
        {"4k3/4P3/3K4/8/8/8/8/8 w - -", false},  // it gave check
        {"8/8/8/4k3/8/4K3/4P3/8 w - -", false},  // opposition: who moves gives way
        {"8/8/8/4k3/8/4K3/4P3/8 b - -", true},
        {"k7/8/1K6/8/P7/8/8/8 w - -", false},  // a rook's pawn and the right corner
        {"7k/8/6K1/8/7P/8/8/8 b - -", false},
        {"8/8/8/P3k3/8/8/8/7K w - -", true},  // outside the pawn's square and inside it
        {"8/8/8/P3k3/8/8/8/7K b - -", false},
        {"8/8/8/P2k4/8/8/8/7K w - -", false},
        {"8/8/8/8/k7/8/P7/7K w - -", false},
        {"8/8/8/8/6k1/8/P7/7K w - -", true},   // thanks to the double step
        {"8/5P1k/5K2/8/8/8/8/8 w - -", true},  // a queen would stalemate, a rook mates
        {"8/8/8/8/8/1k6/P7/7K w - -", false},  // the pawn falls
    };
    const auto wins = solve_kpk();
    for (const auto& [text, won] : known) EXPECT_EQ(is_won(*wins, *game_from(text)), won) << text;
}

/// Whether white wins after a legal move, by what is known of the positions behind it.
bool wins_after(const KpkWins& wins, Game game, Move move) {
    play_move(move, &game);
    if (game.turn == 0) return game.w_pawns != 0 && is_won(wins, game);
    if (!is_promotion(move.kind)) return is_won(wins, game);
    const std::vector<Move> replies = legal_moves(game);
    const bool loses_man = std::ranges::find(replies, kind_capture, &Move::kind) != replies.end();
    const bool is_major = move.kind == queen || move.kind == plain_rook;
    return is_major && !loses_man && (!replies.empty() || in_check(&game));
}

TEST(Kpk, EveryResultFollowsFromThoseOfTheMoves) {
    const auto wins = solve_kpk();
    const std::vector<Placement> placements = kpk_placements();
    for (std::size_t i = 0; i < placements.size(); i += 23) {
        auto game = game_from(placement_text(placements[i]));
        const auto wins_by = [&](Move move) { return wins_after(*wins, *game, move); };
        EXPECT_EQ(is_won(*wins, *game), std::ranges::any_of(legal_moves(*game), wins_by)) << position_text(game.get());
        game->turn = 1;
        const std::vector<Move> moves = legal_moves(*game);
        const bool lost = moves.empty() ? black_in_check(game.get()) : std::ranges::all_of(moves, wins_by);
        EXPECT_EQ(is_won(*wins, *game), lost) << position_text(game.get());
    }
}

// --- Chance
// -----------------------------------------------------------------------------------------------------------

TEST(Kpk, AcceptanceHasThePublishedSequence) {
    UniformState first = {1}, late = {1764000000}, other = {-2};
    // The shuffle gives each number of the generator once, out of a table's length of them.
    constexpr int warm_up = 8, table = 32;
    constexpr double modulus = 2147483647, largest = 0.99999988;
    long number = 1;
    const auto next = [&] { return number = number * 16807 % 2147483647; };
    for (int i = 0; i < warm_up; ++i) next();
    std::set<long> in_table;
    for (int i = 0; i < table; ++i) in_table.insert(next());
    int cut = 0;
    for (int i = 0; i < 10000; ++i) {
        const double value = uniform_random(first);
        EXPECT_EQ(value, uniform_random(late)) << i;
        EXPECT_NE(value, uniform_random(other)) << i;
        if (i == 0) {
            EXPECT_NEAR(value, 0.4159994, 5e-8);
        }
        const bool is_cut = value == largest;
        cut += is_cut;
        const long drawn = is_cut ? *in_table.rbegin() : std::lround(value * modulus);
        EXPECT_GE(static_cast<double>(drawn) / modulus, value - 1e-12) << i;
        EXPECT_EQ(in_table.erase(drawn), 1U) << i;
        in_table.insert(next());
    }
    EXPECT_EQ(cut, 1);  // the sequence has such a number early on
}

// --- Boxes
// ------------------------------------------------------------------------------------------------------------

std::vector<Pattern> drawn_positions(std::size_t every) {
    const auto wins = solve_kpk();
    std::vector<Pattern> positions;
    std::size_t number = 0;
    for (const auto& [white_king, pawn, black_king] : kpk_placements()) {
        if (wins->white_to_move[kpk_index({white_king, pawn, black_king})] || number++ % every != 0) continue;
        positions.push_back({{bit_mask(white_king), bit_mask(pawn), bit_mask(black_king)}});
    }
    return positions;
}

/// Every square with every other on three edges: all of it can become one box.
std::vector<Pattern> full_block(int edge) {
    std::vector<Pattern> block;
    block.reserve(static_cast<std::size_t>(edge * edge * edge));
    for (int i = 0; i < edge * edge * edge; ++i) {
        block.push_back({{bit_mask(i % edge), bit_mask(i / edge % edge), bit_mask(i / edge / edge)}});
    }
    return block;
}

/// The single positions of all boxes, sorted, as often as they occur.
std::vector<std::array<int, 3>> positions_in(const std::vector<Pattern>& boxes) {
    std::vector<std::array<int, 3>> positions;
    for (const Pattern& box : boxes) {
        for (Bitboard a = box.squares[0]; a != 0; a &= a - 1) {
            for (Bitboard b = box.squares[1]; b != 0; b &= b - 1) {
                for (Bitboard c = box.squares[2]; c != 0; c &= c - 1) {
                    positions.push_back({first_one(a), first_one(b), first_one(c)});
                }
            }
        }
    }
    std::ranges::sort(positions);
    return positions;
}

/// Where in memory the box at an index of the list lies.
BoxPlace place_of(const PatternList& list, std::size_t index) {
    std::vector<std::uint64_t> stamps = list.stamps;
    const auto nth = stamps.begin() + static_cast<std::ptrdiff_t>(index);
    std::ranges::nth_element(stamps, nth);
    return static_cast<BoxPlace>(std::ranges::find(list.stamps, *nth) - list.stamps.begin());
}

struct Work {
    std::vector<Pattern> positions;
    std::size_t capacity;
    int moves;
};

TEST(Patterns, TheListChangesAsThePlainWalkChangesIt) {
    std::vector<Pattern> odd = full_block(4);  // positions more than once, or without a man, or with two
    odd.insert(odd.end(), odd.begin(), odd.begin() + 20);
    for (Bitboard i = 0; i < 20; ++i) odd.push_back({{0, i & 1, i}});
    const Work works[] = {
        {full_block(6), 300, 30000},         // large groups
        {drawn_positions(200), 250, 20000},  // small groups
        {{{{255, 255, 255}}}, 40, 20000},    // no room
        {{{{1, 1, 1}}}, 3, 100},
        {odd, 200, 20000},
    };
    for (const Work& work : works) {
        PatternList list(work.positions, work.capacity);
        PlainList plain = {work.positions, work.capacity};
        Choices choices(work.positions.size());
        for (int i = 0; i < work.moves; ++i) {
            choices.renew();
            const std::uint32_t index = choices.below(list.count());
            // More merges at first, so that there are large boxes to split.
            const bool is_merge = choices.below(i % 5000 < 2500 ? 4 : 2) != 0;
            const auto field = static_cast<Field>(choices.below(field_count));
            Choices same = choices;
            (is_merge ? merge_patterns : split_pattern)(list, place_of(list, index), field, choices);
            (is_merge ? plain_merge : plain_split)(plain, index, field, same);
            ASSERT_EQ(in_order(list), plain.patterns) << work.positions.size() << ", move " << i;
            ASSERT_EQ(choices.below(1U << 30), same.below(1U << 30)) << i;
        }
    }
}

TEST(Patterns, AnnealingKeepsThePositionsAndMakesTheBoxesFewer) {
    const std::vector<Pattern> positions = drawn_positions(1);
    PatternList list(positions, positions.size());
    Choices choices(1);
    UniformState acceptance = {1};
    EXPECT_EQ(in_order(list), positions);
    for (const std::uint32_t boxes : {7000U, 5000U}) {
        anneal(list, 1'000'000, choices, acceptance);
        EXPECT_LT(list.count(), boxes);
        EXPECT_EQ(positions_in(in_order(list)), positions_in(positions));
    }
}

TEST(Patterns, EveryMoveHasItsShareOfChance) {
    // White's king tells the first three boxes apart, the first two can be merged, the last can be split.
    const std::vector<Pattern> start = {{{1, 1, 1}}, {{2, 1, 1}}, {{4, 4, 12}}};
    using Boxes = std::vector<std::pair<Bitboard, Bitboard>>;  // of either king
    const auto mean = [](double two, double three, double four) { return (two + three + four) / 3; };
    const double taken = mean(1. / 2, 1. / 3, 1. / 4);
    const double taken_alone = mean(1. / 4, 2. / 9, 3. / 16);
    const double to_the_end = (taken * 2 + taken_alone * 2) / 18;
    const double split = 0.08 / 18;  // the box, the field and the acceptance
    const std::pair<Boxes, double> expected[] = {
        {{{4, 12}, {3, 1}}, mean(1. / 4, 1. / 9, 1. / 16) * 2 / 18},
        {{{2, 1}, {4, 12}, {1, 1}}, to_the_end},
        {{{1, 1}, {4, 12}, {2, 1}}, to_the_end},
        {{{1, 1}, {2, 1}, {4, 4}, {4, 8}}, split * (1. / 2 + 1. / 3) / 2},
        {{{1, 1}, {2, 1}, {4, 8}, {4, 4}}, split * (1. / 4 + 2. / 9) / 2},
    };
    constexpr int moves = 200000;
    std::map<Boxes, int> counts;
    Choices choices(3);
    UniformState acceptance = {1};
    for (int i = 0; i < moves; ++i) {
        PatternList list(start, 4);
        anneal(list, 1, choices, acceptance);
        Boxes boxes;
        for (const Pattern& box : in_order(list)) boxes.emplace_back(box.squares[0], box.squares[2]);
        ++counts[boxes];
    }
    EXPECT_EQ(counts.size(), std::size(expected) + 1);  // and the list as it was
    for (const auto& [boxes, share] : expected) {
        EXPECT_NEAR(counts[boxes], moves * share, 3 * std::sqrt(moves * share)) << boxes.size() << ' ' << share;
    }
}

// --- Files
// ------------------------------------------------------------------------------------------------------------

/// In a folder of its own, which is the working directory while a test runs.
class PatternFiles : public ::testing::Test {
protected:
    PatternFiles() {
        std::filesystem::create_directory(folder_);
        std::filesystem::current_path(folder_);
    }
    ~PatternFiles() override {
        std::filesystem::current_path(before_);
        std::filesystem::remove_all(folder_);
    }

    static void write(const std::string& text) { std::ofstream(positions_file_name, std::ios::binary) << text; }
    static std::string written() {
        std::ifstream stream(patterns_file_name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    template <typename Act> static std::string said(Act act) {
        ::testing::internal::CaptureStdout();
        act();
        return ::testing::internal::GetCapturedStdout();
    }

private:
    std::filesystem::path before_ = std::filesystem::current_path();
    std::filesystem::path folder_ = std::filesystem::temp_directory_path() / ("varn-kpk-" + std::to_string(getpid()));
};

const std::string start_text = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";
const std::string some_text = "8/8/8/8/8/8/7P/5k1K w - - 0 1";
const std::string other_text = "8/8/8/8/8/8/7P/4k2K w - - 0 1";
constexpr Pattern some_position = {{1, 1 << 8, 1 << 2}};

TEST_F(PatternFiles, TakeTheDrawnPositionsOfWhateverLinesThereAre) {
    struct Case {
        std::string text;
        std::size_t drawn;
        std::string last_read = some_text;
        std::uint64_t lines = 1;
    };
    const std::string nul("\0\t0\n", 4);
    const Case cases[] = {
        {some_text + "\t0\n", 1},
        {some_text + "\t0", 1},
        {some_text + "\t+00 of 3\r\n", 1},
        {some_text + "\t -0\t5\n", 1},
        {some_text + "\t0\n" + other_text + "\t1\n", 1, other_text, 2},
        {some_text + "\t0\n" + other_text + "\t99999999999999999999\n", 1, other_text, 2},
        {some_text + "\t0\n" + other_text + "\t\n" + other_text + "\tx0\n" + other_text + " 0\n\n", 1, some_text, 5},
        {some_text + "\t0\n" + nul + other_text + "\t2", 1, other_text, 3},
        {some_text + "\t0" + std::string(300, '0') + "\n", 1, some_text, 5},
        {std::string(160, '\xff') + "\n", 0, start_text, 3},
        {"", 0, start_text, 0},
        {"8/8/8/8/8/8/8/8 w - -\t0\nKkPKkP2/8/8/8/8/8/8/8 b - -\t0\n", 2, "KkPKkP2/8/8/8/8/8/8/8 b - -", 2},
    };
    for (const auto& [text, drawn, last_read, lines] : cases) {
        write(text);
        const auto game = game_from(start_text);
        const auto positions = load_positions(positions_file_name, game.get());
        EXPECT_EQ(positions->drawn.size(), drawn) << text;
        EXPECT_EQ(positions->lines, lines) << text;
        EXPECT_EQ(position_text(game.get()), position_text(game_from(last_read).get())) << text;
        if (last_read == some_text) {
            EXPECT_EQ(positions->drawn.at(0), some_position);
        }
        if (drawn == 0) continue;
        EXPECT_TRUE(said([&] { anneal_kpk(game.get(), 1000); }).ends_with("finished dumping wkpk.eb\n")) << text;
    }
}

TEST_F(PatternFiles, HoldTheBoxesInOrder) {
    EXPECT_EQ(board_number(0), "0");
    EXPECT_EQ(board_number(bit_mask(g1)), "2");
    EXPECT_EQ(board_number(bit_mask(32) - 1), "4294967295");
    EXPECT_EQ(board_number(bit_mask(a8)), "21474836480");
    EXPECT_EQ(board_number(~Bitboard{0}), "42949672954294967295");
    PatternList list(std::vector<Pattern>{{{2, 1 << 8, bit_mask(a8)}}, some_position}, 2);
    EXPECT_EQ(said([&] { dump_patterns(patterns_file_name, list); }), "finished dumping wkpk.eb\n");
    EXPECT_EQ(written(), "2 w\n2 256 21474836480 0\n1 256 4 0\n");
    list.side = 1;
    said([&] { dump_patterns(patterns_file_name, list); });
    EXPECT_TRUE(written().starts_with("2 b\n2 "));

    write(some_text + "\t0\n");
    const auto game = game_from(start_text);
    EXPECT_EQ(said([&] { EXPECT_EQ(in_order(*anneal_kpk(game.get(), 1000)), std::vector{some_position}); }),
              "loading precomputed data in memory...\nfinished loading, 1 patterns in memory.\nshuffling...\n"
              "starting annealing process...\nfinished dumping wkpk.eb\n");
    EXPECT_EQ(written(), "1 w\n1 256 4 0\n");
}

TEST_F(PatternFiles, ComeIntoBeingAsAWholeOrNotAtAll) {
    const PatternList list(std::vector<Pattern>{some_position}, 1);
    const auto dump = [&] { dump_patterns(patterns_file_name, list); };
    const std::string error = "error: cannot output evalubase file.\n";
    std::filesystem::create_directory("wkpk.eb.tmp");  // can't be opened
    EXPECT_EQ(said(dump), error);
    std::filesystem::remove("wkpk.eb.tmp");
    std::filesystem::create_directories("wkpk.eb/in the way");  // can't be renamed to
    EXPECT_EQ(said(dump), error);
    EXPECT_FALSE(std::filesystem::exists("wkpk.eb.tmp"));
    std::filesystem::remove_all("wkpk.eb");
    std::filesystem::create_symlink("/dev/full", "wkpk.eb.tmp");  // can't be written
    EXPECT_EQ(said(dump), error);
    EXPECT_FALSE(std::filesystem::exists("wkpk.eb"));
    EXPECT_EQ(said(dump), "finished dumping wkpk.eb\n");
}

// --- At the console
// ---------------------------------------------------------------------------------------------------

/// The files that every run needs, and the positions.
Files with_positions(const std::string& text) {
    Files files = default_files();
    files[positions_file_name] = text;
    return files;
}

TEST(PatternCommands, PrintTheScript) {
    Process process;
    process.send("pvp\ne2e4\nkpk\nepd\nback\n");
    process.close_input();
    const std::string output = process.finish().output;
    std::size_t groups = 0;
    const std::string group = "\nepdshow\ngo\n";
    for (std::size_t at = output.find(group); at != std::string::npos; at = output.find(group, at + 1)) ++groups;
    EXPECT_EQ(groups, kpk_placements().size());
    EXPECT_NE(output.find("Varn> setboard 8/8/8/8/8/8/7P/5k1K w - - 0 1\nepdshow\ngo\nsetboard 8/8/8/8/8/8/7P/4k2K w"),
              std::string::npos);
    const std::string last = "K1k5/P7/8/8/8/8/8/8 w - -";
    EXPECT_NE(output.find("setboard " + last + " 0 1" + group + prompt.data()), std::string::npos);
    EXPECT_NE(output.find("Varn> EPD string is: " + last + "\nVarn> \nK#k#.#.#\nP.#.#.#.\n"), std::string::npos);
    EXPECT_TRUE(output.ends_with("\nwhite to play\n\nStalemate.\n"));  // the report of a game that is over
}

TEST(PatternCommands, RefuseWhatCannotBeAnnealed) {
    const std::string loading = "loading precomputed data in memory...\n";
    const std::string none = loading + "finished loading, 0 patterns in memory.\nerror: no patterns to anneal.\n";
    // The game goes on where no position was read: what it is after the command, and after a step back from there.
    const std::string begun = "EPD string is: " + start_text + "\n";
    const std::string moved = "EPD string is: rnbqkbnr/pppppppp/8/8/4P3/8/PPPP1PPP/RNBQKBNR b KQkq -\n";
    const std::string read = "EPD string is: 8/8/8/8/8/8/7P/5k1K w - -\n";
    const std::tuple<Files, std::string, std::string> cases[] = {
        {default_files(), loading + "error: cannot open kpkbb.\nVarn> " + moved, begun},
        {with_positions("nothing\n"), none + "Varn> " + moved, begun},
        {with_positions(some_text + "\t1\n"), none + "Varn> " + read, read},
    };
    for (const auto& [files, after, back] : cases) {
        const std::string output = run_console("pvp\ne2e4\nkpkbb\nepd\nback\nepd\n", files).output;
        EXPECT_TRUE(output.starts_with("Varn> Varn> Varn> " + after)) << output;
        EXPECT_TRUE(output.ends_with(back + prompt.data())) << output;
    }
    const Outcome foreign = run_console("kpkbb\nepd\n", with_positions(some_text + "\t0\nx" + some_text + "\t0\n"));
    EXPECT_EQ(foreign.output, "Varn> " + loading + "error: unrecognised character in EPD string.\n");
    EXPECT_EQ(foreign.status, 1);
}

TEST(PatternCommands, StartToAnneal) {
    Process process(with_positions(some_text + "\t0\n" + other_text + "\t1\n"));
    process.send("kpkbb\n");
    EXPECT_EQ(process.read_until("process...\n"),
              "Varn> loading precomputed data in memory...\nfinished loading, 1 patterns in memory.\nshuffling...\n"
              "starting annealing process...\n");
}

}  // namespace
}  // namespace varn
