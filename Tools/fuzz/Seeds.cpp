// Writes what the fuzzers start from into a directory: a file for each worked expression, in the
// subdirectory "seeds", and "words.dict", the words of the expression language; option files in the
// subdirectory "options", and "options.dict", the words of those.

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Tokens.h"
#include "Server/CommonData/Expressions/WorkedExpressionsInternal.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Tools/fuzz/Input.h"

namespace {

using namespace Vn;

bool write(std::filesystem::path const & path, std::string const & content) {
    std::ofstream file(path, std::ios::binary);
    file << content;
    return static_cast<bool>(file.flush());
}

std::string seed(std::wstring const & context, std::wstring const & expression) {
    return Text::toUtf8(context) + '\n' + Text::toUtf8(expression) + '0';
}

std::set<std::string> seeds() {
    std::set<std::string> all;
    for (Expressions::WorkedExpression const & row : Expressions::workedExpressions()) {
        all.insert(seed(row.context, row.expression));
        if (*row.rebuiltExpression) all.insert(seed(row.context, row.rebuiltExpression));
    }
    for (Expressions::WorkedDisplay const & row : Expressions::workedDisplays())
        all.insert(seed(row.context, row.expression));
    return all;
}

std::string dictionary() {
    std::set<std::wstring> words;
    for (int token = 0; token < Expressions::c_tokens; ++token) {
        words.insert(
            Expressions::Tokens::get()->getString(static_cast<Expressions::EToken>(token)));
    }
#define VN_UNIT(unit, kind, name, abbreviation, symbol, factor, offset, magnitudes)                \
    words.insert({Units::unit::c_name, Units::unit::c_abbreviation, Units::unit::c_symbol});
#include "Server/CommonData/Units/UnitCatalogue.inc"
    words.insert({L" 1/2", L"1/64", L"2'-6 3/4\"", L"45 deg 30' 30\"", L"2.5E-3", L"1,5", L"\n"});
    words.erase(L"");
    std::string text;
    for (std::wstring const & word : words) {
        text += '"';
        for (char const c : Text::toUtf8(word)) {
            constexpr char c_hex[] = "0123456789abcdef";
            auto const byte = static_cast<unsigned char>(c);
            text += "\\x";
            text += c_hex[byte >> 4];
            text += c_hex[byte & 15];
        }
        text += "\"\n";
    }
    return text;
}

constexpr char const * c_optionFiles[] = {
    "<Options><OptionGroup Id=\"TestGroup\"><Option Id=\"NumberId\" Value=\"5\"/><Option "
    "Id=\"FlagId\" Value=\"0\"/><Option Id=\"RealId\" Value=\"0,5\"/></OptionGroup></Options>",
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- a -->\n<Options>\n  <OptionGroup "
    "Id=\"TestGroup\">\n    <Option Id=\"NumberId\" Value=\"x\"/>\n    <Other>text</Other>\n  "
    "</OptionGroup>\n  <OptionGroup Id=\"Else\"/>\n</Options>\n",
    "<?xml version='1.0' encoding='ISO-8859-1'?><Options a='&#xE4;'><![CDATA[x]]><?p i?></Options>",
    "<!DOCTYPE Options [<!ENTITY a 'b'>]><Options>&a;</Options>",
    "<Options xmlns='u' xmlns:x='v'><x:OptionGroup Id='TestGroup' x:Id='n'/></Options>",
};

constexpr char const * c_optionWords[] = {
    "<Options>",
    "</Options>",
    "<OptionGroup Id=\\\"TestGroup\\\">",
    "</OptionGroup>",
    "<Option Id=\\\"NumberId\\\" Value=\\\"7\\\"/>",
    "FlagId",
    "RealId",
    "Value=",
    "<!--",
    "-->",
    "<![CDATA[",
    "]]>",
    "<!DOCTYPE",
    "&amp;",
    "&#10;",
    "xmlns=",
    "encoding=\\\"UTF-16\\\"",
};

bool writeOptions(std::filesystem::path const & directory) {
    std::filesystem::create_directories(directory / "options");
    std::size_t number = 0;
    bool good = true;
    for (char const * const file : c_optionFiles)
        good = write(directory / "options" / std::to_string(++number), file) && good;
    std::string words;
    for (char const * const word : c_optionWords) words += '"' + std::string(word) + "\"\n";
    return write(directory / "options.dict", words) && good;
}

} // namespace

int main(int count, char ** arguments) {
    if (count != 2) return 2;
    Fuzz::prepare();
    std::filesystem::path const directory = arguments[1];
    std::filesystem::create_directories(directory / "seeds");
    std::size_t number = 0;
    bool good = write(directory / "words.dict", dictionary()) && writeOptions(directory);
    for (std::string const & content : seeds())
        good = write(directory / "seeds" / std::to_string(++number), content) && good;
    return good ? 0 : 1;
}
