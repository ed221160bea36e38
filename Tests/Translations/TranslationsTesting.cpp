#include "Tests/Translations/TranslationsTesting.h"

#include "Platform/Base/StringTable.h"
#include "Tests/Support/FreshProcess.h"

namespace Vn::Translations {

namespace {

std::string s_language;
void (*s_check)() = nullptr;

std::vector<Source> makeSources() {
    std::vector<Source> result;
#define VN_SIGN(number, name, text)
#define VN_NO_TEXT(number, name, text)
#define VN_WORD(number, name, text) result.push_back({"e_" #name, Text::toUtf8(text)});
#include "Server/CommonData/Expressions/Tokens.inc"
#define VN_BASE_KIND(number, name, internal) result.push_back({"UnitType" #name, #name});
#define VN_COMPOSITE_KIND(number, name, numerator, denominator)                                    \
    result.push_back({"UnitType" #name, #name});
#include "Server/CommonData/Units/UnitKinds.inc"
    result.push_back({"modelingLengthName", "Modeling Length"});
    result.push_back({"modelingMassName", "Modeling Mass"});
#define VN_MASS_PROPERTY_TEXT(key, text) result.push_back({#key, Text::toUtf8(text)});
#include "Server/CommonData/MassProperties/MassPropertyTexts.inc"
    result.push_back({"NamedViewSelectionId", "NamedView"});
    result.push_back({"NamedViewsSelectionId", "NamedViews"});
    result.push_back({"NewNamedViewRequestId", "New View"});
    result.push_back({"DeleteNamedViewRequestId", "Delete View"});
    result.push_back({"UpdateNamedViewNameRequestId", "Rename View"});
    result.push_back({"NamedViewPasteRequestId", "Move Views"});
    // An empty text has no translation.
    auto const add = [&](char const * key, wchar_t const * text) {
        if (*text) result.push_back({key, Text::toUtf8(text)});
    };
#define VN_OPTION_PAGE(id, nameKey, name, tipKey, tip)                                             \
    add(nameKey, name);                                                                            \
    add(tipKey, tip);
#define VN_OPTION_SUB_GROUP(id, nameKey, name, tipKey, tip)                                        \
    add(nameKey, name);                                                                            \
    add(tipKey, tip);
#define VN_OPTION(name, field, type, standard, under, id, nameKey, userName, tipKey, tip)          \
    add(nameKey, userName);                                                                        \
    add(tipKey, tip);
#define VN_OPTION_CHOICE(name, value, key, text) add(key, text);
#include "Server/CommonData/Units/UnitDisplayOptions.inc"
#define VN_FAILURE_TEXT(name, text) result.push_back({"Failure" #name, Text::toUtf8(text)});
#include "Server/CommonData/Expressions/FailureTexts.inc"
#define VN_READING_TEXT(name, text) result.push_back({"Reading" #name, Text::toUtf8(text)});
#include "Server/CommonData/Expressions/ReadingTexts.inc"
    return result;
}

} // namespace

std::vector<Source> const & sources() {
    static std::vector<Source> const s_sources = makeSources();
    return s_sources;
}

bool isKeyBetween(std::string_view key, Expressions::EToken low, Expressions::EToken high) {
#define VN_TOKEN(number, name, text)                                                               \
    if (key == "e_" #name) return number >= low && number <= high;
#include "Server/CommonData/Expressions/Tokens.inc"
    return false;
}

bool isKeyOfFunction(std::string_view key) {
#define VN_FUNCTION(number, word, name, text, arguments, first, second, result, value)             \
    if (key == "e_" #word) return true;
#include "Server/CommonData/Expressions/Functions.inc"
    return false;
}

void LanguageTest::SetUp() { s_language = GetParam(); }

std::string const & LanguageTest::language() { return s_language; }

void LanguageTest::inLanguage(void (*check)()) {
    s_check = check;
    Units::expectInFreshProcess([] {
        StringTable::catalogueDirectory(VN_CATALOGUES);
        StringTable::language(s_language);
        s_check();
    });
}

} // namespace Vn::Translations
