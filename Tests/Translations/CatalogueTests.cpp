// The rules for every translation: all texts are there, and the words of a language can be told
// from one another and from the units.

#include <map>
#include <set>

#include "Platform/Base/StringTable.h"
#include "Server/CommonData/Units/SimpleUnitRegistryInternal.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Tests/Translations/PoFile.h"
#include "Tests/Translations/TranslationsTesting.h"

namespace Vn::Translations {

namespace {

using namespace Expressions;

class CatalogueTests : public LanguageTest {
protected:
    static std::vector<PoEntry> entries() { return readPoFile(language() + ".po"); }
};

INSTANTIATE_TEST_SUITE_P(Languages, CatalogueTests, testing::ValuesIn(c_languages),
                         [](auto const & language) { return language.param; });

bool isKeyOfConstant(std::string_view key) {
    return isKeyBetween(key, e_PI_CONSTANT, e_SPEED_OF_LIGHT_CONSTANT);
}

bool isKeyOfPrefix(std::string_view key) { return isKeyBetween(key, e_EXA, e_ATTO_ABBR); }

// Two spellings that are one in `entries`, as pairs of keys, among the words of a kind.
std::set<std::string> collisions(std::vector<PoEntry> const & entries,
                                 bool (*isOfKind)(std::string_view key),
                                 std::string PoEntry::*spelling) {
    std::map<std::string, std::string> keys;
    std::set<std::string> found;
    for (PoEntry const & entry : entries) {
        if (!isOfKind(entry.context)) continue;
        auto const [first, isNew] = keys.emplace(entry.*spelling, entry.context);
        if (!isNew) found.insert(first->second + " and " + entry.context);
    }
    return found;
}

void expectKeysOfTheProgram(std::vector<PoEntry> const & entries) {
    std::vector<Source> const & wanted = sources();
    ASSERT_EQ(entries.size(), wanted.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        EXPECT_EQ(entries[i].context, wanted[i].key);
        EXPECT_EQ(entries[i].id, wanted[i].text) << wanted[i].key;
    }
}

TEST(CatalogueTemplateTests, HasEveryTextOfTheProgramAndNoTranslation) {
    std::vector<PoEntry> const entries = readPoFile("VnCommonData.pot");
    expectKeysOfTheProgram(entries);
    for (PoEntry const & entry : entries) EXPECT_EQ(entry.text, "") << entry.context;
}

TEST_P(CatalogueTests, TranslatesEveryTextOfTheProgram) {
    std::vector<PoEntry> const all = entries();
    expectKeysOfTheProgram(all);
    for (PoEntry const & entry : all) EXPECT_NE(entry.text, "") << entry.context;
}

// "%1%" and the like, in their order by number, each as often as it is there.
std::multiset<std::string> placesOf(std::string const & text) {
    std::multiset<std::string> places;
    for (std::size_t i = 0; (i = text.find('%', i)) != text.npos; ++i) {
        std::size_t const end = text.find('%', i + 1);
        if (end == text.npos) {
            places.insert("a single %");
            break;
        }
        places.insert(text.substr(i, end + 1 - i));
        i = end;
    }
    return places;
}

TEST_P(CatalogueTests, ValuesHaveTheirPlacesInEveryText) {
    std::size_t places = 0;
    for (PoEntry const & entry : entries()) {
        if (!entry.context.starts_with("Failure") && !entry.context.starts_with("Reading"))
            continue;
        EXPECT_EQ(placesOf(entry.text), placesOf(entry.id)) << entry.context;
        for (std::string const & place : placesOf(entry.text)) {
            EXPECT_TRUE(place == "%1%" || place == "%2%" || place == "%3%") << entry.context;
            ++places;
        }
    }
    EXPECT_GE(places, 30U);
}

// They are the keys of a map.
TEST_P(CatalogueTests, NamesOfMassPropertiesDiffer) {
    std::set<std::string> names;
    for (PoEntry const & entry : entries())
        for (char const * const key : {"MaterialProperty", "VolumeProperty", "AreaProperty",
                                       "MassProperty", "DensityProperty"})
            if (entry.context == key) names.insert(entry.text);
    EXPECT_EQ(names.size(), 5U);
}

TEST_P(CatalogueTests, WordsAreNames) {
    for (PoEntry const & entry : entries()) {
        if (!isKeyOfConstant(entry.context) && !isKeyOfPrefix(entry.context) &&
            !isKeyOfFunction(entry.context))
            continue;
        EXPECT_FALSE(Tokens::get()->invalidNameCharsInStr(Text::fromUtf8(entry.text), false))
            << entry.context << ' ' << entry.text;
    }
}

TEST_P(CatalogueTests, WordsOfOneKindAreSpelledDifferently) {
    std::vector<PoEntry> const all = entries();
    for (auto const isOfKind : {isKeyOfConstant, isKeyOfPrefix, isKeyOfFunction}) {
        // "micro" is its own short form.
        EXPECT_EQ(collisions(all, isOfKind, &PoEntry::text),
                  collisions(all, isOfKind, &PoEntry::id));
    }
    // A function in front of no bracket is looked up as a constant.
    for (PoEntry const & function : all) {
        if (!isKeyOfFunction(function.context)) continue;
        for (PoEntry const & constant : all) {
            if (!isKeyOfConstant(constant.context)) continue;
            EXPECT_NE(function.text, constant.text) << function.context << ' ' << constant.context;
        }
    }
}

TEST_P(CatalogueTests, KindsAreNamedDifferently) {
    std::set<std::string> names;
    for (PoEntry const & entry : entries()) {
        if (!entry.context.starts_with("UnitType")) continue;
        EXPECT_TRUE(names.insert(entry.text).second) << entry.context << ' ' << entry.text;
    }
    EXPECT_EQ(names.size(), static_cast<std::size_t>(Units::c_simpleUnitTypes));
}

TEST_P(CatalogueTests, WordsOfTheTokenizersAndShortPrefixesStay) {
    for (PoEntry const & entry : entries()) {
        bool const shortPrefix = isKeyOfPrefix(entry.context) && entry.context.ends_with("_ABBR") &&
                                 entry.context != "e_MICRO_ABBR"; // which is the word in full
        if (!shortPrefix && !isKeyBetween(entry.context, e_INCH, e_DOLLAR_SYM)) continue;
        EXPECT_EQ(entry.text, entry.id) << entry.context;
    }
}

TEST_P(CatalogueTests, ProgramReadsTheTranslations) {
    inLanguage([] {
        std::map<std::string, std::string> texts;
        for (PoEntry const & entry : entries()) texts[entry.context] = entry.text;
#define VN_SIGN(number, name, text)
#define VN_NO_TEXT(number, name, text)
#define VN_WORD(number, name, text)                                                                \
    EXPECT_EQ(Text::toUtf8(Tokens::get()->getString(e_##name)), texts["e_" #name]);
#include "Server/CommonData/Expressions/Tokens.inc"
#define VN_KIND_TEXT(name)                                                                         \
    EXPECT_EQ(Text::toUtf8(                                                                        \
                  Units::SimpleUnit::globalizedSimpleUnitTypeName(Units::UnitType##name).value()), \
              texts["UnitType" #name]);
#define VN_BASE_KIND(number, name, internal) VN_KIND_TEXT(name)
#define VN_COMPOSITE_KIND(number, name, numerator, denominator) VN_KIND_TEXT(name)
#include "Server/CommonData/Units/UnitKinds.inc"
#undef VN_KIND_TEXT
#define VN_FAILURE_TEXT(name, text)                                                                \
    EXPECT_EQ(                                                                                     \
        Text::toUtf8(StringTable::getLocalizedString("VnCommonData", "Failure" #name, text)),      \
        texts["Failure" #name]);
#include "Server/CommonData/Expressions/FailureTexts.inc"
#define VN_READING_TEXT(name, text)                                                                \
    EXPECT_EQ(                                                                                     \
        Text::toUtf8(StringTable::getLocalizedString("VnCommonData", "Reading" #name, text)),      \
        texts["Reading" #name]);
#include "Server/CommonData/Expressions/ReadingTexts.inc"
    });
}

std::vector<Units::SimpleUnit const *> catalogueUnits() {
    std::vector<Units::SimpleUnit const *> units;
    Units::SimpleUnitRegistry::get().allUnits(units);
    std::erase_if(units, [](auto const * unit) { return unit->magnitude() != 1.0; });
    return units;
}

TEST_P(CatalogueTests, NoConstantOrFunctionIsSpelledLikeAUnit) {
    inLanguage([] {
        for (PoEntry const & entry : entries()) {
            if (!isKeyOfConstant(entry.context) && !isKeyOfFunction(entry.context)) continue;
            // The least of two and a minute have one spelling in English already.
            if (entry.context == "e_MIN" && entry.text == entry.id) continue;
            EXPECT_EQ(Tokens::get()->findMatchingUnit(Text::fromUtf8(entry.text)), nullptr)
                << entry.context << ' ' << entry.text;
        }
    });
}

TEST_P(CatalogueTests, EverySpellingOfAUnitIsFound) {
    inLanguage([] {
        Units::UnitDisplaySettings const & settings = Units::UnitDisplaySettings::standard();
        std::vector<Units::SimpleUnit const *> const units = catalogueUnits();
        EXPECT_EQ(units.size(), 71U);
        for (Units::SimpleUnit const * const unit : units) {
            for (std::wstring const & text :
                 {unit->name(settings), unit->abbreviation(settings), unit->symbol(settings)}) {
                if (text.empty()) continue;
                EXPECT_EQ(Tokens::get()->findMatchingUnit(text), unit) << shown(text);
            }
        }
    });
}

TEST_P(CatalogueTests, EveryPrefixInFullMakesItsUnit) {
    inLanguage([] {
        Units::UnitDisplaySettings settings = Units::UnitDisplaySettings::standard();
        Tokens const & tokens = *Tokens::get();
        std::vector<Units::SimpleUnit const *> const units = catalogueUnits();
        for (EToken const prefix :
             {e_EXA, e_PETA, e_TERA, e_GIGA, e_MEGA, e_KILO, e_HECTO, e_DECA, e_DECI, e_CENTI,
              e_MILLI, e_MICRO, e_NANO, e_PICO, e_FEMTO, e_ATTO}) {
            for (Units::SimpleUnit const * const unit : units) {
                if (!unit->supportsMagnitude()) continue;
                std::wstring const text = tokens.getString(prefix) + unit->name(settings);
                Units::SimpleUnit const * const found = tokens.findMatchingUnit(text);
                ASSERT_NE(found, nullptr) << shown(text);
                EXPECT_EQ(found->identifier(), unit->identifier()) << shown(text);
                EXPECT_EQ(found->magnitude(), tokens.getMagnitudeValue(prefix)) << shown(text);
                EXPECT_EQ(found->name(settings), text);
            }
        }
    });
}

} // namespace

} // namespace Vn::Translations
