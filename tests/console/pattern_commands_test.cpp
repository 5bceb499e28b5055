// Console commands for king-and-pawn patterns.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "console/console.h"
#include "patterns/kpk_placements.h"
#include "patterns/pattern_files.h"
#include "process.h"
#include "small_engine.h"

namespace varn {
namespace {

const std::string start_text = "rnbqkbnr/pppppppp/8/8/8/8/PPPPPPPP/RNBQKBNR w KQkq -";
const std::string some_text = "8/8/8/8/8/8/7P/5k1K w - - 0 1";

/// The files of every run, and the positions.
Files with_positions(const std::string& text) {
    Files files = default_files();
    files[positions_file_name] = text;
    return files;
}

TEST(PatternCommands, RefuseWhatCannotBeAnnealed) {
    const std::string loading = "loading precomputed data in memory...\n";
    const std::string none = loading + "finished loading, 0 patterns in memory.\nerror: no patterns to anneal.\n";
    // If no position was read the game is unchanged: shown after the command and after taking a move back.
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
        EXPECT_TRUE(output.ends_with(back + "Varn> ")) << output;
    }
    const Outcome foreign = run_console("kpkbb\nepd\n", with_positions(some_text + "\t0\nx" + some_text + "\t0\n"));
    EXPECT_EQ(foreign.output, "Varn> " + loading + "error: unrecognised character in EPD string.\n");
    EXPECT_EQ(foreign.status, 1);
}

TEST(PatternCommands, UnwrittenBoxesEndTheConsoleWithAnError) {
    const WorkingFolder folder;
    std::filesystem::create_directories("wkpk.eb/in the way");
    const Environment temporary("TMPDIR", ".");
    SmallEngine engine;
    Console console = start_console(engine);
    console.patterns = {std::make_unique<PatternList>(std::vector<Pattern>{{{1, 1 << 8, 1 << 2}}}, 1), false};
    const auto end_input = [&console] {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        if (std::freopen("/dev/null", "r", stdin) != nullptr) console_step(console);
    };
    EXPECT_EXIT(end_input(), ::testing::ExitedWithCode(1),
                "^Varn> error: cannot output evalubase file\\.\nthe patterns are in \\./wkpk\\.eb\\..*\n$");
    console.patterns.is_written = true;
    EXPECT_EXIT(end_input(), ::testing::ExitedWithCode(0), "^Varn> $");
}

TEST(PatternCommands, PrintTheScriptOfPlacements) {
    const std::string output = run_console("pvp\ne2e4\nkpk\nepd\nback\n").output;
    std::size_t groups = 0;
    const std::string group = "\nepdshow\ngo\n";
    for (std::size_t at = output.find(group); at != std::string::npos; at = output.find(group, at + 1)) ++groups;
    EXPECT_EQ(groups, kpk_placements().size());
    EXPECT_NE(output.find("Varn> setboard 8/8/8/8/8/8/7P/5k1K w - - 0 1\nepdshow\ngo\nsetboard 8/8/8/8/8/8/7P/4k2K w"),
              std::string::npos);
    const std::string last = "K1k5/P7/8/8/8/8/8/8 w - -";
    EXPECT_NE(output.find("setboard " + last + " 0 1" + group + "Varn> "), std::string::npos);
    EXPECT_NE(output.find("Varn> EPD string is: " + last + "\nVarn> \nK#k#.#.#\nP.#.#.#.\n"), std::string::npos);
    EXPECT_TRUE(output.ends_with("\nwhite to play\n\nStalemate.\n"));  // the report of a finished game
}

}  // namespace
}  // namespace varn
