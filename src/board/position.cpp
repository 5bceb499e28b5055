#include "board/position.h"

#include "board/game_sides.h"
#include "board/geometry.h"
#include "board/notation.h"

namespace varn {

namespace {

/// Reads a text character by character; gives 0 at the end.
class FieldReader {
public:
    explicit FieldReader(std::string_view text) : rest_(text) {}

    char peek() const { return rest_.empty() ? '\0' : rest_.front(); }
    void advance() {
        if (!rest_.empty()) rest_.remove_prefix(1);
    }
    char next() {
        const char c = peek();
        advance();
        return c;
    }
    bool at_field_end() const { return peek() == ' ' || peek() == '\n' || rest_.empty(); }
    void skip_field() {
        while (!at_field_end()) advance();
    }
    void skip_blank() {
        if (peek() == ' ') advance();
    }

private:
    std::string_view rest_;
};

template <Side S> void put_piece(Game& g, PieceType type, int square) {
    pieces_of<S>(g) ^= bit_mask(square);
    board_of<S>(g, type) ^= bit_mask(square);
    g.cells[square] = code_of(S, type);
    if (type == king) king_square_of<S>(g) = square;
    material_of<S>(g) += piece_values[type];
    g.material += sign_of<S> * piece_values[type];
}

/// Places the piece that the letter names; returns false if it names none.
bool place_piece(Game& g, char letter, int square) {
    for (const PieceType type : {king, queen, bishop, knight, plain_rook, pawn}) {
        if (letter == piece_letter(code_of(Side::white, type))) {
            put_piece<Side::white>(g, type, square);
            return true;
        }
        if (letter == piece_letter(code_of(Side::black, type))) {
            put_piece<Side::black>(g, type, square);
            return true;
        }
    }
    return false;
}

/// Row lengths aren't checked: the field ends when all squares are filled. Returns false on an invalid character.
bool read_board(Game& g, FieldReader& reader) {
    int square = square_count - 1;
    while (square >= 0) {
        const char c = reader.next();
        if (c >= '0' && c <= '9') {
            square -= c - '0';
        } else if (c != '/') {
            if (!place_piece(g, c, square)) return false;
            --square;
        }
    }
    reader.skip_field();
    reader.skip_blank();
    return true;
}

/// Returns whether the field is valid.
bool read_side(Game& g, FieldReader& reader) {
    const char c = reader.peek();
    const bool is_known = c == 'w' || c == 'b';
    if (is_known) g.turn = c == 'w' ? Side::white : Side::black;
    // Two blanks in a row mean an empty field; the second one is left to the castling field, which is then empty as
    // well.
    if (c == ' ') return is_known;
    reader.skip_field();
    reader.skip_blank();
    return is_known;
}

/// Whether the side has the right and its king and rook are at home; if so sets the rook's type.
template <Side S> bool claim_right(Game& g, std::uint32_t right) {
    const bool kingside = right == kingside_right;
    const int corner = own_square<S>(kingside ? h1 : a1);
    const bool at_home = g.cells[own_square<S>(e1)] == code_of(S, king) && (rooks_of<S>(g) & bit_mask(corner)) != 0;
    if (!at_home || (castle_of<S>(g) & right) == 0) return false;
    g.cells[corner] = code_of(S, kingside ? kingside_rook : queenside_rook);
    return true;
}

template <Side S> void claim_castling(Game& g) {
    castle_of<S>(g) = (claim_right<S>(g, kingside_right) ? kingside_right : 0) |
                      (claim_right<S>(g, queenside_right) ? queenside_right : 0);
}

/// Letters are added up as the values of their rights: "KK" is "Q".
void read_castling(Game& g, FieldReader& reader) {
    while (!reader.at_field_end()) {
        switch (reader.next()) {
            case 'K': g.w_castle += kingside_right; break;
            case 'Q': g.w_castle += queenside_right; break;
            case 'k': g.b_castle += kingside_right; break;
            case 'q': g.b_castle += queenside_right; break;
            case '-': g.w_castle = g.b_castle = 0; break;
            default: break;
        }
    }
    claim_castling<Side::white>(g);
    claim_castling<Side::black>(g);
    reader.skip_blank();
}

/// Clears the game, except for what the text may leave unset: the side to move and the king squares.
void wipe(Game& g) {
    const Side turn = g.turn;
    const int wking_sqr = g.wking_sqr;
    const int bking_sqr = g.bking_sqr;
    g = Game{};
    g.turn = turn;
    g.wking_sqr = wking_sqr;
    g.bking_sqr = bking_sqr;
    for (auto& cell : g.cells) cell = no_piece;
}

std::string row_text(const Game& g, int rank) {
    std::string text;
    int empty = 0;
    const auto write_empty = [&] {
        if (empty > 0) text += std::to_string(empty);
        empty = 0;
    };
    for (int file = 8; file >= 1; --file) {
        const int code = g.cells[square_of(rank, file)];
        if (code == no_piece) {
            ++empty;
        } else {
            write_empty();
            text += piece_letter(code);
        }
    }
    write_empty();
    return text;
}

template <Side S> std::string castling_text(const Game& g) {
    std::string text;
    if ((castle_of<S>(g) & kingside_right) != 0) text += piece_letter(code_of(S, king));
    if ((castle_of<S>(g) & queenside_right) != 0) text += piece_letter(code_of(S, queen));
    return text;
}

/// Whether `cells` and the boards agree on the pieces of the side.
template <Side S> bool side_is_consistent(const Game& g) {
    for (int square = 0; square < square_count; ++square) {
        const int code = g.cells[square];
        const bool ours = is_code_of(S, code);
        const Bitboard bit = bit_mask(square);
        if (ours != ((pieces_of<S>(g) & bit) != 0)) return false;
        for (const PieceType type : {king, queen, bishop, knight, plain_rook, pawn}) {
            const bool on_cell = ours && (type_of(code) == type || (type == plain_rook && is_rook(type_of(code))));
            if (on_cell != ((board_of<S>(g, type) & bit) != 0)) return false;
        }
        if (code == code_of(S, king) && square != king_square_of<S>(g)) return false;
    }
    return true;
}

}  // namespace

PositionRemarks set_position(Game& game, std::string_view text) {
    PositionRemarks remarks;
    FieldReader reader(text);
    wipe(game);
    remarks.foreign_piece = !read_board(game, reader);
    if (remarks.foreign_piece) return remarks;
    complete_record(game);
    remarks.foreign_side = !read_side(game, reader);
    read_castling(game, reader);
    remarks.foreign_enpassant = !reader.at_field_end() && reader.peek() != '-';
    return remarks;
}

std::string position_text(const Game& g) {
    std::string text;
    for (int rank = 8; rank >= 1; --rank) text += row_text(g, rank) + (rank > 1 ? '/' : ' ');
    text += g.turn == Side::white ? "w " : "b ";
    const std::string rights = castling_text<Side::white>(g) + castling_text<Side::black>(g);
    text += rights.empty() ? "-" : rights;
    text += ' ';
    text += g.enpassant == 0 ? "-" : square_text(first_one(g.enpassant));
    return text;
}

bool is_consistent(const Game& game) {
    return side_is_consistent<Side::white>(game) && side_is_consistent<Side::black>(game);
}

}  // namespace varn
