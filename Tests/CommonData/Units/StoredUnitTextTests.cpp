// The texts by which documents keep units.

#include "Server/CommonData/Units/StoredUnitTextInternal.h"

#include <random>
#include <set>

#include "Server/CommonData/Limits.h"
#include "Tests/CommonData/Units/UnitSystemTesting.h"
#include "Tests/Support/FreshProcess.h"

namespace Vn::Units {

namespace {

// Every unit of the catalogue, and each that takes prefixes with all of them.
std::vector<SimpleUnit const *> allWithPrefixes() {
    std::vector<SimpleUnit const *> units;
    for (SimpleUnit const * const unit : catalogueUnits()) {
        units.push_back(unit);
        if (!unit->supportsMagnitude()) continue;
        for (Expressions::EToken const prefix : Expressions::Tokens::fullMagnitudes())
            units.push_back(findOrCloneUnit(unit->identifier(),
                                            Expressions::Tokens::get()->getMagnitudeValue(prefix)));
    }
    return units;
}

// 1,000 products of up to six factors, the same in every run.
std::vector<ComplexUnit> randomProducts() {
    std::vector<SimpleUnit const *> const units = allWithPrefixes();
    std::mt19937 random(12);
    std::vector<ComplexUnit> products(1000);
    for (ComplexUnit & product : products)
        for (std::size_t factors = 1 + random() % 6; factors > 0; --factors) {
            SimpleUnit const * const unit = units[random() % units.size()];
            for (std::size_t power = 1 + random() % 3; power > 0; --power)
                random() % 3 == 0 ? product.addToDenominator(unit) : product.addToNumerator(unit);
        }
    return products;
}

// The same factors above and below, in any order.
bool haveSameFactors(ComplexUnit const & a, ComplexUnit const & b) {
    auto const sorted = [](UnitSpan units) {
        return std::multiset<SimpleUnit const *>(units.begin(), units.end());
    };
    return sorted(a.numerator()) == sorted(b.numerator()) &&
           sorted(a.denominator()) == sorted(b.denominator());
}

// What has no text: a unitless product.
bool isLost(ComplexUnit const & units) {
    return units.isUnitless() && !units.isSimpleUnit(nullptr);
}

TEST(StoredUnitTextTests, EveryUnitHasATextOfItsOwn) {
    std::set<std::wstring> texts;
    std::vector<SimpleUnit const *> const units = allWithPrefixes();
    EXPECT_EQ(units.size(), 71U + 480U);
    for (SimpleUnit const * const unit : units)
        EXPECT_TRUE(texts.insert(StoredUnitText::write(unit->asComplexUnit())).second)
            << testing::PrintToString(unit->defaultName());
}

TEST(StoredUnitTextTests, ReadsWhatIsWritten) {
    std::vector<ComplexUnit> units = randomProducts();
    for (SimpleUnit const * const unit : allWithPrefixes()) units.emplace_back(unit);
    SettingsGuard const guard;
    for (bool const compress : {true, false}) {
        UnitDisplaySettings::userEditableSettings().compressUnits(compress);
        for (ComplexUnit const & unit : units) {
            std::wstring const text = StoredUnitText::write(unit);
            ComplexUnit read;
            EXPECT_TRUE(StoredUnitText::read(text, read)) << testing::PrintToString(text);
            if (isLost(unit)) {
                EXPECT_EQ(text, L"");
                continue;
            }
            EXPECT_EQ(StoredUnitText::write(read), text);
            EXPECT_TRUE(haveSameFactors(read, unit)) << testing::PrintToString(text);
        }
    }
}

// Store, load, initialize.  All of these units exist by now, which is the hardest case: each may
// hide another.
TEST(StoredUnitTextTests, UnitsSurviveTheDocument) {
    std::vector<ComplexUnit> units = randomProducts();
    for (SimpleUnit const * const unit : allWithPrefixes()) units.emplace_back(unit);
    SettingsGuard const guard;
    for (bool const compress : {true, false}) {
        UnitDisplaySettings::userEditableSettings().compressUnits(compress);
        SystemDocument const document;
        // By id each may be there: a system holds one unit of a dimension.
        for (std::size_t i = 0; i < units.size(); ++i) {
            StrongRef<UnitSystemChoice> const choice = UnitSystemChoiceById::make(
                document.system(), GlobalizedString(), std::to_string(i), UnitInch::get());
            ASSERT_TRUE(choice);
        }
        std::vector<std::string> statements;
        for (std::size_t i = 0; i < units.size(); ++i)
            statements.push_back(
                "UPDATE UnitSystemChoiceById SET \"UnitSystemChoice.unitString\" = "
                "'" +
                Text::toUtf8(UnitSystemChoice::reconstructString(&units[i])) +
                "' WHERE \"UnitSystemChoiceById.id\" = '" + std::to_string(i) + "'");
        statements.insert(statements.begin(), "BEGIN");
        statements.push_back("COMMIT");
        Loaded const loaded(document.asset(), statements);
        StrongRef<UnitSystem> const system = loaded.system();
        for (unsigned i = 0; i < units.size(); ++i) {
            ComplexUnit const & read = system->unitSystemChoice(i)->units();
            if (isLost(units[i]))
                EXPECT_TRUE(read.isEmpty());
            else
                EXPECT_TRUE(haveSameFactors(read, units[i]))
                    << testing::PrintToString(system->unitSystemChoice(i)->storedUnitString());
        }
    }
}

// Which texts the expression language itself doesn't read: one name can't be typed, and a unit with
// the prefix "atto" hides others of its class that don't exist yet, since its short name ends
// theirs.
void checkTextsThatTheLanguageDoesntRead() {
    using Expressions::Tokens;
    double const atto = Tokens::get()->getMagnitudeValue(Expressions::e_ATTO);
    for (SimpleUnit const * const unit : catalogueUnits())
        if (unit->supportsMagnitude()) findOrCloneUnit(unit->identifier(), atto);
    std::set<std::wstring> unread;
    for (SimpleUnit const * const unit : catalogueUnits()) {
        std::vector<std::wstring> texts = {unit->defaultName()};
        if (unit->supportsMagnitude())
            for (Expressions::EToken const prefix : Tokens::fullMagnitudes())
                texts.push_back(std::wstring(Tokens::defaultString(prefix)) + unit->defaultName());
        for (std::wstring const & text : texts) {
            ComplexUnit units;
            if (!UnitSystemChoice::parse(text, units)) {
                unread.insert(text);
                ASSERT_TRUE(StoredUnitText::read(text, units)) << testing::PrintToString(text);
            }
            EXPECT_EQ(StoredUnitText::write(units), text);
        }
    }
    std::set<std::wstring> expected = {L"circular_mil"};
    for (wchar_t const * const unit :
         {L"bar", L"ohm", L"coulomb", L"farad", L"mho", L"rpm", L"oersted", L"poise"})
        for (wchar_t const * const prefix : {L"deca", L"mega", L"giga", L"tera", L"peta", L"exa"})
            expected.insert(std::wstring(prefix) + unit);
    EXPECT_EQ(unread, expected);
}

TEST(StoredUnitTextTests, FewTextsNeedTheExactReading) {
    expectInFreshProcess(&checkTextsThatTheLanguageDoesntRead);
}

TEST(StoredUnitTextTests, OtherTextsAreNotRead) {
    for (std::wstring const & text : {std::wstring(L"m"),
                                      std::wstring(L" meter"),
                                      std::wstring(L"meter "),
                                      std::wstring(L"meter  second"),
                                      std::wstring(L"meter^"),
                                      std::wstring(L"meter^1"),
                                      std::wstring(L"meter^0"),
                                      std::wstring(L"meter^02"),
                                      std::wstring(L"meter^-2"),
                                      std::wstring(L"meter ^2"),
                                      std::wstring(L"meter /"),
                                      std::wstring(L"meter / "),
                                      std::wstring(L"meter/second"),
                                      std::wstring(L"meter / (second"),
                                      std::wstring(L"meter / second second"),
                                      std::wstring(L"meter / (second) meter"),
                                      std::wstring(L"(meter)"),
                                      std::wstring(L"meter / ((second second))"),
                                      std::wstring(L"/ second / meter"),
                                      std::wstring(L"kilofoot"),
                                      std::wstring(L"kilo"),
                                      std::wstring(L"kilokilometer"),
                                      std::wstring(L"METER"),
                                      std::wstring(L"meter^4097"),
                                      std::wstring(L"meter^99999999999999999999999"),
                                      std::wstring(L"meter^4096 second"),
                                      std::wstring(1'000'000, L'('),
                                      std::wstring(10'000'000, L'm'),
                                      std::wstring(L"meter\0", 6)}) {
        ComplexUnit out(UnitInch::get());
        EXPECT_FALSE(StoredUnitText::read(text, out)) << testing::PrintToString(text.substr(0, 40));
        EXPECT_EQ(abbreviations(out), L"in");
    }
}

TEST(StoredUnitTextTests, ReadsUpToTheMostFactorsOfAUnit) {
    ComplexUnit out;
    ASSERT_TRUE(StoredUnitText::read(L"meter^4095 / second", out));
    EXPECT_EQ(out.factors(), Limits::c_unitFactors);
}

} // namespace

} // namespace Vn::Units
