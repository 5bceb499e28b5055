#include "board/position.h"

#include "board/game_sides.h"
#include "board/geometry.h"
#include "board/notation.h"

namespace varn {

namespace {

/// Reads a text character by character and gives 0 at its end, however often it is asked.
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
    /// At a blank, the end of the line or the end of the text.
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

template <Side S> void place_man(Game& g, Man man, int square) {
    pieces_of<S>(g) ^= bit_mask(square);
    board_of<S>(g, man) ^= bit_mask(square);
    g.cells[square] = code_of(S, man);
    if (man == king) king_square_of<S>(g) = square;
    material_of<S>(g) += piece_values[man];
    g.material += sign_of<S> * piece_values[man];
}

/// Whether the letter is a piece's; then it stands on the square.
bool place_piece(Game& g, char letter, int square) {
    for (const Man man : {king, queen, bishop, knight, plain_rook, pawn}) {
        if (letter == piece_letter(code_of(Side::white, man))) {
            place_man<Side::white>(g, man, square);
            return true;
        }
        if (letter == piece_letter(code_of(Side::black, man))) {
            place_man<Side::black>(g, man, square);
            return true;
        }
    }
    return false;
}

/// Row lengths aren't tested: the field ends when all squares are used up. Returns false at a foreign character.
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

/// Returns whether the field names a side.
bool read_side(Game& g, FieldReader& reader) {
    const char c = reader.peek();
    const bool is_known = c == 'w' || c == 'b';
    if (is_known) g.turn = c == 'w' ? Side::white : Side::black;
    // A field that is empty because of a second blank leaves that blank to the castling field, which is then empty too.
    if (c == ' ') return is_known;
    reader.skip_field();
    reader.skip_blank();
    return is_known;
}

/// Whether the side has the right and its king and rook stand at home; then the rook gets the code that carries it.
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

/// The letters are added up, each at the value of its right: a doubled "K" is a "Q".
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

/// An empty board that keeps what the text may leave open: whose turn it is, and squares for the kings.
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

/// Every piece of the side stands on the boards as `cells` has it, and every board bit in `cells`.
template <Side S> bool side_is_consistent(const Game& g) {
    for (int square = 0; square < square_count; ++square) {
        const int code = g.cells[square];
        const bool ours = is_code_of(S, code);
        const Bitboard bit = bit_mask(square);
        if (ours != ((pieces_of<S>(g) & bit) != 0)) return false;
        for (const Man man : {king, queen, bishop, knight, plain_rook, pawn}) {
            const bool on_cell = ours && (man_of(code) == man || (man == plain_rook && is_rook(man_of(code))));
            if (on_cell != ((board_of<S>(g, man) & bit) != 0)) return false;
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
