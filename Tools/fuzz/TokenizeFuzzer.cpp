// The tokens of any text: they lie in order, touch everything but white space, and end where the
// text ends.

#include <cmath>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Tokenizer.h"
#include "Tools/fuzz/Input.h"

namespace Vn::Fuzz {

namespace {

using namespace Expressions;

// Where each 16-bit character of a text starts as a character in store.
std::vector<std::size_t> storedPositions(std::wstring const & text) {
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < text.size(); ++i)
        positions.insert(positions.end(), Text::length16({&text[i], 1}), i);
    positions.push_back(text.size());
    return positions;
}

void checkGap(std::wstring const & text, std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < to; ++i)
        expect(Text::isSpace(static_cast<char32_t>(text[i])), "only white space is skipped");
}

void checkTokens(std::wstring const & text) {
    TokenList list;
    TokenizerRegistry::get()->tokenize(text, list);
    std::vector<std::size_t> const stored = storedPositions(text);
    std::size_t const length = Text::length16(text);
    expect(stored.size() == length + 1, "each character counts as length16 counts it");

    Token const * token = list.first();
    expect(token && token->kind == TK_START, "a list begins with TK_START");
    std::size_t end = 0;
    bool atNumber = false;
    while ((token = token->next)) {
        expect(token->start <= token->end && token->end <= length, "a token lies in the text");
        bool const madeUp = token->kind == TK_NAME && token->start < end;
        if (madeUp) {
            expect(atNumber && token->end == end && token->end - token->start == 1,
                   "a made-up name lies on the last character of a number");
        } else if (token->kind == TK_NAME && atNumber && token->start + 1 == token->end &&
                   token->text != std::wstring_view(text).substr(stored[token->start], 1)) {
            expect(token->start == end, "a made-up name follows a number that leaves out its mark");
        } else {
            checkGap(text, stored[end], stored[token->start]);
            if (token->kind != TK_END) {
                expect(token->start < token->end, "a token has characters");
                expect(token->text ==
                           std::wstring_view(text).substr(
                               stored[token->start], stored[token->end] - stored[token->start]),
                       "a token has the text at its place");
            }
        }
        if (token->kind == TK_NUMBER) {
            // Seconds of more digits than a double can count have no value.
            bool const seconds = token->format.degreeDisplay == Units::DegreeDegMinSec;
            expect((std::isfinite(token->value) && token->value >= 0.0) || seconds,
                   "a number is finite");
        }
        if (token->kind == TK_END || token->kind == TK_UNKNOWN)
            expect(!token->next && token->end == length, "a list ends where the text ends");
        else
            expect(token->next, "nothing else ends a list");
        atNumber = token->kind == TK_NUMBER;
        end = token->end;
    }
}

} // namespace

} // namespace Vn::Fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const * data, std::size_t size) {
    Vn::Fuzz::prepare();
    Vn::Fuzz::Input input(data, size);
    input.context();
    Vn::Fuzz::checkTokens(input.text());
    return 0;
}
