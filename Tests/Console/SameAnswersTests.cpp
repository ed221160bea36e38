// The same texts have the same answers on every system, to the last digit: the answers of `batch`
// to random texts are compared with what they were when this table was written.

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "Console/CommandLine/Batch.h"

namespace Vn::Console::Tests {

namespace {

using nlohmann::json;

// Lines for `batch`.  Its random numbers are those of the standard's engine alone, which gives the
// same ones everywhere.
class RandomLines {
public:
    explicit RandomLines(std::uint64_t seed) : m_engine(seed) {}

    std::string next() {
        json line;
        line["id"] = m_id++;
        line["text"] = text();
        if (one(3)) line["context"] = pick(c_contexts);
        if (one(10)) line["display"] = pick(c_contexts);
        if (one(2)) line["settings"] = settings();
        return line.dump() + '\n';
    }

private:
    static constexpr char const * c_contexts[] = {
        "?", "",    "cm",       "mm", "in", "ft",  "kg", "deg",     "rad",  "s",
        "N", "m^2", "kg m/s^2", "K",  "F",  "mph", "$",  "W/(m K)", "unit?"};
    static constexpr char const * c_units[] = {
        "cm",      "mm",        "m",         "km",     "in",     "\"",     "'",       "ft",
        "kg",      "g",         "lb",        "deg",    "\u00b0", "rad",    "s",       "min",
        "hr",      "N",         "Pa",        "J",      "W",      "A",      "V",       "ohm",
        "K",       "C",         "F",         "mol",    "cd",     "$",      "mph",     "micron",
        "\u00b5m", "kilometer", "milligram", "foot",   "H",      "T",      "cm^2",    "in^3",
        "m/s",     "kg m^2",    "\u03a9",    "\u2126", "meter",  "newton", "unknown", "GHz",
        "L",       "acre"};
    static constexpr char const * c_functions[] = {
        "cos", "acos", "cosh", "sin",   "asin", "sinh",  "tan", "atan", "tanh", "sqrt",
        "exp", "ln",   "log",  "floor", "ceil", "round", "abs", "sign", "Sin",  "wurzel"};
    static constexpr char const * c_exponents[] = {"e", "E", "e+", "e-", "E-"};
    static constexpr char const * c_functionsOfTwo[] = {"pow", "max", "min"};
    static constexpr char const * c_operators[] = {
        "+", "-", "*", "/", "^", "%", " + ", " - ", " * ", " / ", " ", "**", "\u00d7", "\u2212"};
    static constexpr char const * c_blanks[] = {" ",      "  ",     "\t",     "\u00a0", "\u2003",
                                                "\u3000", "\u202f", "\ufeff", "\n",     "\u0085"};
    static constexpr char const * c_odd[] = {
        "\U0001f600", "\U0001d7d9", "\U00020000", "\U0010ffff", "\u65e5", "\u00e4", "\uff11",
        "&",          "#",          "(",          ")",          ",",      ";",      "\\",
        "\u00bd",     "\u2032",     "\u2033",     "e",          "E5",     "..",     "\u0001",
        "\u00b2",     "@",          "=",          "?",          "\u0301", "\ufffd"};

    // Units that go together, so that most texts have a value.
    std::string unit() {
        static constexpr char const * c_lengths[] = {"cm", "mm", "m",  "km",     "in",
                                                     "ft", "\"", "mi", "micron", "kilometer"};
        static constexpr char const * c_angles[] = {"deg", "rad", "\u00b0", "grad", " deg"};
        static constexpr char const * c_masses[] = {"kg", "g", "lb", " milligram", "slug"};
        switch (m_family) {
        case 0:
            return pick(c_units);
        case 1:
            return pick(c_angles);
        case 2:
            return pick(c_masses);
        case 3:
            return "";
        default:
            return pick(c_lengths);
        }
    }

    // What a function takes that wants a number.
    std::string argument(unsigned depth) {
        unsigned const family = m_family;
        if (family != 0) m_family = 3;
        std::string text = expression(depth);
        m_family = family;
        return text;
    }

    unsigned below(unsigned limit) { return static_cast<unsigned>(m_engine() % limit); }
    bool one(unsigned of) { return below(of) == 0; }
    template <std::size_t n>
    char const * pick(char const * const (&all)[n]) {
        return all[below(static_cast<unsigned>(n))];
    }
    std::string digits(unsigned most) {
        std::string text;
        for (unsigned i = 1 + below(most); i > 0; --i) text += static_cast<char>('0' + below(10));
        return text;
    }

    // In the order in which they stand, which a sum doesn't promise.
    static std::string joined(std::initializer_list<std::string> pieces) {
        std::string text;
        for (std::string const & piece : pieces) text += piece;
        return text;
    }

    std::string number() {
        unsigned const form = below(16);
        bool const isFeet = form == 5 || form == 6;
        if ((isFeet && m_family < 4 && m_family != 0) || (form == 7 && m_family > 1))
            return digits(2);
        switch (form) {
        case 0:
            return joined({digits(3), ".", digits(4)});
        case 1:
            return joined({".", digits(3)});
        case 2:
            return joined({digits(2), "."});
        case 3:
            return joined({digits(2), ".", digits(3), pick(c_exponents), digits(3)});
        case 4:
            return joined({digits(1), " ", digits(1), "/", digits(2)});
        case 5:
            return joined({digits(2), "' ", digits(1), " ", digits(1), "/", digits(1), "\""});
        case 6:
            return joined({digits(2), "'-", digits(1), "\""});
        case 7:
            return joined({digits(3), " deg ", digits(2), "' ", digits(2), "\""});
        case 8:
            return joined({digits(1), ",", digits(3), one(2) ? ".25" : ""});
        case 9:
            return digits(25);
        case 10:
            return joined({digits(1), "/", digits(1)});
        default:
            return digits(3);
        }
    }

    std::string operand(unsigned depth) {
        unsigned const what = below(12);
        if (what < 2 && depth < 3) return joined({"(", expression(depth + 1), ")"});
        if (what == 2 && depth < 3)
            return joined({pick(c_functions), "(", argument(depth + 1), ")"});
        if (what == 3 && depth < 3)
            return joined(
                {pick(c_functionsOfTwo), "(", argument(depth + 1), ", ", argument(depth + 1), ")"});
        if (what == 4) return joined({"-", number(), unit()});
        if (what == 5) return one(2) ? "pi" : "PI";
        if (what == 6) return joined({"1", unit()});
        if (what == 7) return number();
        return joined({number(), one(2) ? " " : "", unit()});
    }

    std::string expression(unsigned depth) {
        std::string text = operand(depth);
        while (one(2)) {
            switch (below(8)) {
            case 0:
                text += joined({pick(c_operators), operand(depth)});
                break;
            case 1:
                text += joined({one(2) ? "*" : " / ", digits(3)});
                break;
            case 2:
                text += joined({" * ", digits(1), ".", digits(3)});
                break;
            default:
                text += joined({one(2) ? " + " : "-", operand(depth)});
                break;
            }
        }
        return text;
    }

    std::string text() {
        m_family = below(6);
        std::string text = expression(0);
        if (one(4)) insert(text, pick(c_blanks));
        if (one(6)) insert(text, pick(c_odd));
        return text;
    }
    // Between two characters.
    void insert(std::string & text, char const * piece) {
        std::size_t place = below(static_cast<unsigned>(text.size()) + 1);
        while (place < text.size() && (text[place] & 0xC0) == 0x80) ++place;
        text.insert(place, piece);
    }

    json settings() {
        json settings = json::object();
        if (one(2)) settings["generalPrecision"] = static_cast<int>(below(18)) - 2;
        if (one(3)) settings["angularPrecision"] = below(8);
        if (one(3)) settings["scientificPrecision"] = below(12);
        if (one(2)) settings["lengthDisplay"] = below(3);
        if (one(2)) settings["degreeDisplay"] = below(2);
        for (char const * const flag :
             {"compressUnits", "scientificNotation", "decimalPointIsFullStop", "displayAbbreviated",
              "displaySymbol", "specifiedByNode", "hideTrailingZeroes"})
            if (one(3)) settings[flag] = one(2);
        return settings;
    }

    std::mt19937_64 m_engine;
    unsigned m_id = 0;
    unsigned m_family = 0; // the units of the text
};

std::uint64_t digest(std::string const & text) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (char const c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return hash;
}

std::string answers(std::string const & lines) {
    std::istringstream in(lines);
    std::ostringstream out;
    runBatch(in, out, {});
    return out.str();
}

// The answers up to the member `key`, which comes after those that are compared.
std::string cutBefore(char const * key, std::string const & answers) {
    std::istringstream in(answers);
    std::string cut;
    std::string const member = std::string(",\"") + key + "\":";
    for (std::string line; std::getline(in, line);) {
        // Within a text its quotes would be escaped.
        std::size_t const at = line.find(member);
        cut += at == line.npos ? line : line.substr(0, at) + '}';
        cut += '\n';
    }
    return cut;
}

constexpr unsigned c_linesOfBlock = 100;

// Of the answers to the lines of the seeds 1, 2 and so on, without what is told for people.
constexpr std::uint64_t c_digests[] = {
    0x35d5b11d421f1596, 0xe117437144cd1930, 0xfa38ca674369101f, 0xf8c6e2f9c869d479,
    0x3f80fbcad19e4b45, 0x3a252e42545b6d24, 0x6147058c3a73234d, 0xdb6db17526d18391,
    0x73a3784c1b682c2c, 0x86846b01271dd00e, 0x28ceba427ba54ccd, 0x24d7ee5b94c39c4b,
    0x0a6fb92b2846e5e7, 0xd078b8b48c443baa, 0x177ee6edb7b5ac9a, 0x99a79f0996e23fd7,
    0xd289791fbaa7901a, 0xa92dd379d03833d9, 0xe4a4791dca094710, 0xc8b874912d0b2efd,
};

// VN_TEST_SEEDS is the number of blocks instead, and the answers are then written to
// VN_TEST_ANSWERS, to be compared with those of another system, or of another version.
TEST(SameAnswersTests, RandomTextsHaveTheSameAnswersEverywhere) {
    char const * const wanted = std::getenv("VN_TEST_SEEDS");
    char const * const file = std::getenv("VN_TEST_ANSWERS");
    std::ofstream written;
    if (file) written.open(file, std::ios::binary);
    std::size_t const blocks =
        wanted && file ? std::strtoul(wanted, nullptr, 10) : std::size(c_digests);
    for (std::size_t block = 0; block < blocks; ++block) {
        RandomLines random(block + 1);
        std::string lines;
        for (unsigned i = 0; i < c_linesOfBlock; ++i) lines += random.next();
        std::string const given = cutBefore("readableUnits", answers(lines));
        if (file)
            written << lines << given;
        else
            EXPECT_EQ(digest(given), c_digests[block])
                << "the seed is " << block + 1 << ", the digest now 0x" << std::hex
                << digest(given);
    }
}

} // namespace

} // namespace Vn::Console::Tests
