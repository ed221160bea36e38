// The tokens of an expression: the list that the tokenizers make of a text.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_TOKEN_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_TOKEN_H

#include <cstddef>
#include <new>
#include <string_view>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Expressions {

// What a token is.
enum TokenKind : unsigned char {
    TK_UNKNOWN = 0, // nothing recognises the text; the parser also marks unusable tokens with it
    TK_START = 1,   // in front of every list; has no text
    TK_END = 2,     // after every list that reached the end of the text; has no text
    TK_PLUS = 3,
    TK_MINUS = 4,
    TK_MULTIPLY = 5,
    TK_DIVIDE = 6,
    TK_LEFT_PAREN = 7,
    TK_RIGHT_PAREN = 8,
    TK_SEMICOLON = 9,
    TK_EQUALS = 10, // known, but no rule takes it
    TK_NUMBER = 11, // in any form
    TK_MODULO = 12,
    TK_POWER = 13,
    TK_NAME = 14, // not yet known of what; the parser makes it one of the last three
    TK_FUNCTION = 16,
    TK_UNIT = 17,
    TK_CONSTANT = 18
};

// How a number was typed, so that it can be written back in the same form.
struct NumberFormat {
    short precision = 0; // decimals; meaningful if hasPrecision
    short exponent = 0;  // as typed
    // Whether it was typed as a fraction, in feet and inches, or in degrees, minutes and seconds.
    Units::ELengthDisplay lengthDisplay : 8 = Units::LengthDecimal;
    Units::EDegreeDisplay degreeDisplay : 8 = Units::DegreeDecimal;
    bool hasPrecision = false; // the decimals were typed
    bool scientific = false;   // typed with an exponent
};

// A piece of the text, in a list that owns it.
struct Token {
    // The characters, or the text of the unit that a tokenizer made up.  Points into the text that
    // was tokenized or into the vocabulary.
    std::wstring_view text;
    Token * next = nullptr;
    double value = 0.0; // of a number, in the unit as typed
    // Where the token begins and ends in the text, counted in 16-bit characters.
    unsigned int start = 0;
    unsigned int end = 0;
    NumberFormat format;
    TokenKind kind = TK_UNKNOWN;
    bool located = false; // start, end and text have been set
};

// A list of tokens and the memory that they live in.  The text that was tokenized must outlive it.
class VN_COMMONDATA_API TokenList {
public:
    TokenList() = default;
    ~TokenList();
    TokenList(TokenList const &) = delete;
    TokenList & operator=(TokenList const &) = delete;

    // The first token, of kind TK_START unless it was discarded; null before anything was appended.
    Token * first() const { return m_pFirst; }
    Token * last() const { return m_pLast; }

    // A new token after the last.
    Token * append(TokenKind kind) {
        if (m_used == c_tokensPerChunk) addChunk();
        Token * const token = ::new (m_pLastChunk->tokens + m_used++) Token;
        token->kind = kind;
        (m_pLast ? m_pLast->next : m_pFirst) = token;
        return m_pLast = token;
    }

    // Says that nothing in front of `token` is needed any more; its memory serves later tokens.
    void discardBefore(Token * token) {
        if (m_pFirstChunk != m_pLastChunk) discardChunksBefore(token);
    }

private:
    static constexpr std::size_t c_tokensPerChunk = 40;

    struct Chunk {
        Chunk() {} // leaves the tokens to append
        Chunk * next = nullptr;
        union {
            Token tokens[c_tokensPerChunk];
        };
    };

    void addChunk();
    void discardChunksBefore(Token * token);

    Chunk m_chunk; // the first, so that a short text takes nothing from the heap
    Chunk * m_pFirstChunk = &m_chunk;
    Chunk * m_pLastChunk = &m_chunk;
    Chunk * m_pFreeChunks = nullptr;
    std::size_t m_used = 0; // of the last chunk
    Token * m_pFirst = nullptr;
    Token * m_pLast = nullptr;
};

} // namespace Vn::Expressions

#endif
