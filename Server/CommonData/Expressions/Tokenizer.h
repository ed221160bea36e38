// From text to tokens.
//
// Numbers are not one thing: a quantity may be typed as a decimal, a fraction, feet and inches, or
// degrees, minutes and seconds.  Each form has a tokenizer of its own, all of them are asked at the
// same place, and the longest reading wins; on a tie the one that joined first.
//
// A form that doesn't fit answers 0; there are no errors here.  What no form recognises becomes one
// token of kind TK_UNKNOWN that reaches to the end of the text.

#ifndef VN_SERVER_COMMONDATA_EXPRESSIONS_TOKENIZER_H
#define VN_SERVER_COMMONDATA_EXPRESSIONS_TOKENIZER_H

#include <cstddef>
#include <string_view>
#include <vector>

#include "Server/CommonData/Export.h"
#include "Server/CommonData/Expressions/Token.h"
#include "Server/CommonData/Expressions/Tokens.h"

namespace Vn::Expressions {

// What a form reads at a place: a number or a name, and perhaps the name of a unit that a mark
// stands for, which lies on the last character.
struct Reading {
    std::size_t length = 0;          // 0: the form doesn't match
    TokenKind kind = TK_NUMBER;      // or TK_NAME
    EToken madeUpName = e_NONE;      // the unit of the mark, if there is one
    bool textEndsBeforeMark = false; // the token of the number leaves out the last character
    NumberFormat format;             // of a number
    double value = 0.0;              // of a number, in the unit as typed
};

// One form of numbers or names.
class VN_COMMONDATA_API Tokenizer {
public:
    // The characters that a form can begin with.
    enum EFirst : unsigned char { FirstDigit = 1, FirstSeparator = 2, FirstOther = 4 };

    // Joins the registry, for texts that begin as `first` (a sum of EFirst) says.
    explicit Tokenizer(int first);
    // Leaves the registry.
    virtual ~Tokenizer();
    Tokenizer(Tokenizer const &) = delete;
    Tokenizer & operator=(Tokenizer const &) = delete;

    // Reads `text`, as long as it is of this form, from `position`, which must lie inside the text.
    // Lengths and positions count characters as stored, not 16-bit ones.
    Reading read(std::wstring_view text, std::size_t position) const {
        return onRead(text, position);
    }

private:
    virtual Reading onRead(std::wstring_view text, std::size_t position) const = 0;
};

// All forms: it takes a text apart.
class VN_COMMONDATA_API TokenizerRegistry {
public:
    // The one registry of the process.
    static TokenizerRegistry * get();

    // The longest reading at `position` of those that the tokenizers offer, and among equals the
    // one of the tokenizer that joined first.
    Reading readLongest(std::wstring_view text, std::size_t position) const;

    // Appends to `list`, which must be empty, all tokens of `text`: TK_START, the tokens, and
    // TK_END if the text was recognised to its end.
    void tokenize(std::wstring_view text, TokenList & list) const;

private:
    friend class Tokenizer;

    struct Entry {
        Tokenizer const * tokenizer; // not owned
        int first;
    };

    std::vector<Entry> m_tokenizers; // in the order in which they joined
};

// The tokens of a text, made as they are asked for.
class VN_COMMONDATA_API TokenStream {
public:
    // Appends to `list`, which must be empty and must outlive the stream, as must the text.  The
    // first token, of kind TK_START, is there at once.
    TokenStream(std::wstring_view text, TokenList & list);

    // The token after `token`; null after the last.
    Token * after(Token * token) {
        if (!token->next && !m_finished) readNext();
        return token->next;
    }
    // Says that nothing in front of `token` is needed any more.
    void discardBefore(Token * token) { m_rList.discardBefore(token); }

private:
    void readNext();
    Token * append(TokenKind kind, std::size_t end, std::wstring_view text);
    // The count of 16-bit characters up to an index, which may not go back.
    unsigned int position16(std::size_t index);

    TokenizerRegistry const & m_rRegistry;
    std::wstring_view const m_text;
    std::size_t m_position = 0;
    std::size_t m_countedTo = 0;
    std::size_t m_extra = 0; // characters up to there that take two 16-bit ones
    bool m_finished = false;
    TokenList & m_rList;
};

} // namespace Vn::Expressions

#endif
