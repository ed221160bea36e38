// A fuzzer's bytes, taken apart.
//
// What steers a run stands at the end and the text in front of it, so that a mutation of the text
// leaves the steering alone and a corpus file can be read:
//
//   context text, a line feed, expression text, [fields of the settings,] flags
//
// The flags are the last byte; that of a seed is "0".  What is missing counts as zero.

#ifndef VN_TOOLS_FUZZ_INPUT_H
#define VN_TOOLS_FUZZ_INPUT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"

namespace Vn::Fuzz {

class Input {
public:
    Input(std::uint8_t const * data, std::size_t size)
        : m_bytes(reinterpret_cast<char const *>(data), size), m_flags(byte()) {}

    // The last byte that is left, and a number of the last bytes.
    std::uint8_t byte();
    short smallNumber(); // often a sensible count of decimals, sometimes any number
    int wholeNumber();
    double anyDouble();

    // A double that people meet, or any at all.
    double value();

    // The factory settings, or a record of which any field holds anything, if the flags ask for it.
    Units::UnitDisplaySettings settings();

    // The first line of what is left as a context ("?" expects nothing), and what is left after it.
    // A text of one line has no context.
    Units::UnitContext context();
    std::wstring text();

private:
    // UTF-8; or, if the flags ask for it, bytes that each are a character, and 0xFF in front of
    // four that make up any value of wchar_t.
    std::wstring wide(std::string_view bytes) const;

    std::string_view m_bytes;
    std::uint8_t m_flags;
};

// Ends the process with a report if a law is broken.
void expect(bool holds, char const * law);
void expect(bool holds, char const * law, double value, std::wstring_view text);

// Everything that happens before the first expression.
void prepare();

} // namespace Vn::Fuzz

#endif
