// Make and unmake, compared with a model that knows only the mailbox and the rules: all incremental values must equal
// the model's, and unmake must restore every byte.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <utility>

#include "board/attacks.h"
#include "board/make.h"
#include "positions.h"

namespace varn {
namespace {

/// A position without boards or counts. Hashes are exact relative to their start: `stray` is the difference from the
/// sum over the pieces, caused by lost rights and null moves; `pawn_stray` is constant.
struct Model {
    Table<PieceCode, square_count> cells;
    std::uint32_t w_castle, b_castle;
    Side turn;
    std::uint8_t fifty;
    Bitboard enpassant;
    PositionKeys stray, pawn_stray;
};

PositionKeys stray_of(const Game& g) { return keys_of(g) ^ position_keys(g); }
PositionKeys pawn_stray_of(const Game& g) {
    return PositionKeys{g.pawn_key, g.pawn_lock} ^ pawn_keys(g) ^
           in_both(g.turn == Side::black ? zobrist_side_number : 0);
}

Model model_of(const Game& g) {
    return {g.cells, g.w_castle, g.b_castle, g.turn, g.fifty, g.enpassant, stray_of(g), pawn_stray_of(g)};
}

/// A right is lost when its king or rook leaves home.
void keep_rights(Model& m, std::uint32_t& rights, int king_code, int home, std::uint64_t kings, std::uint64_t queens) {
    const bool is_home = m.cells[home] == king_code;
    const bool loses[2] = {(rights & 1) != 0 && !(is_home && m.cells[home - 3] == king_code + kingside_rook),
                           (rights & 2) != 0 && !(is_home && m.cells[home + 4] == king_code + queenside_rook)};
    m.stray ^= in_both((loses[0] ? kings : 0) ^ (loses[1] ? queens : 0));
    rights ^= static_cast<std::uint32_t>(loses[0] + 2 * loses[1]);
}

Model model_after(Model m, Move move) {
    auto& cells = m.cells;
    const PieceCode mover = cells[move.from];
    const bool is_pawn = type_of(mover) == pawn, is_king = type_of(mover) == king;
    m.fifty = is_pawn || cells[move.to] != no_piece ? 0 : static_cast<std::uint8_t>(std::min(m.fifty + 1, 255));
    cells[move.to] = is_promotion(move.kind) ? static_cast<PieceCode>(move.kind) : mover;
    cells[move.from] = no_piece;
    if (is_pawn && m.enpassant == bit_mask(move.to)) cells[move.from / 8 * 8 + move.to % 8] = no_piece;
    if (is_king && move.from - move.to == 2) std::swap(cells[move.to - 1], cells[move.to + 1]);
    if (is_king && move.to - move.from == 2) std::swap(cells[move.to + 2], cells[move.to - 1]);
    keep_rights(m, m.w_castle, 0, e1, w_kingside_number, w_queenside_number);
    keep_rights(m, m.b_castle, 8, e8, b_kingside_number, b_queenside_number);

    const int rival = mover ^ 8, file = move.to % 8;
    const bool beside = (file > 0 && cells[move.to - 1] == rival) || (file < 7 && cells[move.to + 1] == rival);
    const bool capturable = is_pawn && std::abs(move.from - move.to) == 16 && beside;
    m.enpassant = capturable ? bit_mask((move.from + move.to) / 2) : 0;
    m.turn = other(m.turn);
    return m;
}

void expect_agreement(const Game& g, const Model& m) {
    expect_sound(g);
    EXPECT_EQ(g.cells, m.cells);
    EXPECT_EQ(std::tie(g.w_castle, g.b_castle, g.turn, g.fifty, g.enpassant),
              std::tie(m.w_castle, m.b_castle, m.turn, m.fifty, m.enpassant));
    EXPECT_TRUE(m.enpassant == 0 || g.ep_side == m.turn);
    EXPECT_EQ(stray_of(g), m.stray);
    EXPECT_EQ(pawn_stray_of(g), m.pawn_stray);
}

/// Makes and unmakes every pseudo-legal move, illegal ones included, and compares `child_keys`.
void expect_unmake_restores(Game& game, const Game& before) {
    const Pins pins = pins_of(game);
    for (const Move move : pseudo_legal_moves(game)) {
        const PositionKeys child = child_keys(game, move);
        UndoRecord undo, undo_if_legal;
        save_undo(game, undo_if_legal);
        if (make_if_legal(game, move, pins, undo_if_legal)) unmake_move(game, move, undo_if_legal);
        fill_undo(game, move, undo);
        EXPECT_EQ(undo.captured, before.cells[move.to]);
        make_move(game, move);
        EXPECT_EQ(child, keys_of(game)) << position_text(before) << ' ' << move_text(move);
        unmake_move(game, move, undo);
        ASSERT_TRUE(game == before) << position_text(before) << ' ' << move_text(move);
    }
}

struct Step {
    Game before;
    UndoRecord undo;
    Move move;
    bool is_null;
};

TEST(Make, MakeAndUnmakeMatchTheModelInRandomGames) {
    RandomSource random(2);
    std::map<int, int> seen;
    for (std::size_t round = 0; round < 3 * std::size(known_positions); ++round) {
        auto game = game_from(known_positions[round / 3].text);
        game->fifty = round % 3 == 0 ? 240 : 0;  // reaches the counter's limit
        Model model = model_of(*game);
        std::vector<Step> line;
        for (int ply = 0; ply < 300; ++ply) {
            Step& step = line.emplace_back();
            step.before = *game;
            expect_unmake_restores(*game, step.before);
            const std::vector<Move> moves = every_legal_move(*game);
            step.is_null = moves.empty() || (random.next() % 16 == 0 && !in_check(*game));
            if (step.is_null) {
                make_null(*game, step.undo);
                model.turn = other(model.turn);
                model.enpassant = 0;
                model.stray ^= in_both(zobrist_null_number);
            } else {
                step.move = random_move(random, moves);
                save_undo(*game, step.undo);
                ASSERT_TRUE(make_if_legal(*game, step.move, pins_of(*game), step.undo));
                push_keys(*game);
                EXPECT_EQ(step.undo.captured, step.before.cells[step.move.to]);
                model = model_after(model, step.move);
                ++seen[step.move.kind];
            }
            expect_agreement(*game, model);
            ASSERT_EQ(game->draw_hash_count, line.size() + 1);
            EXPECT_EQ(game->draw_hash[line.size()], keys_of(*game));
            ASSERT_FALSE(HasFailure()) << position_text(step.before) << " then " << move_text(step.move);
            if (moves.empty()) break;
        }
        for (; !line.empty(); line.pop_back()) {
            const Step& step = line.back();
            step.is_null ? unmake_null(*game, step.undo) : retract_move(*game, step.move, step.undo);
            ASSERT_TRUE(same_game(*game, step.before)) << position_text(step.before) << ' ' << move_text(step.move);
        }
    }
    EXPECT_EQ(seen.size(), 14U);  // quiet, double step, en passant, capture, two castlings, eight promotions
    for (const auto& [kind, times] : seen) EXPECT_GT(times, 5) << kind;
}

TEST(Make, FullRecordRefusesMoves) {
    auto game = new_game();
    game->move_counter = max_game_moves - 1;
    EXPECT_TRUE(play_move(*game, parse_move(*game, "e2e4")));
    const auto full = std::make_unique<Game>(*game);
    const Move reply = parse_move(*game, "e7e5");
    EXPECT_FALSE(play_move(*game, reply));
    add_game_move(*game, reply);
    EXPECT_TRUE(*game == *full);
}

}  // namespace
}  // namespace varn
