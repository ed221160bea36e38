// The record that says how a number and its unit are written.

#include "Server/CommonData/Units/UnitDisplaySettings.h"

#include <limits>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "Tests/CommonData/Units/UnitTestHelpers.h"
#include "Tests/Support/FreshProcess.h"
#include "Tests/Support/StartLine.h"

namespace Vn::Units {

namespace {

using Settings = UnitDisplaySettings;

static_assert(std::is_trivially_copyable_v<Settings>);
static_assert(std::is_trivially_destructible_v<Settings>);
static_assert(!std::is_polymorphic_v<Settings>);
static_assert(!std::is_default_constructible_v<Settings>);
static_assert(sizeof(ELengthDisplay) == 4 && sizeof(EDegreeDisplay) == 4);

// Gives the user's record back as it was.
class UnitDisplaySettingsTests : public testing::Test {
protected:
    ~UnitDisplaySettingsTests() override { Settings::userEditableSettings() = m_before; }

private:
    Settings const m_before = Settings::get();
};

void expectFactorySettings(Settings const & settings) {
    EXPECT_EQ(settings.generalUnit(), Settings::Millimeter);
    EXPECT_EQ(settings.generalPrecision(), 3);
    EXPECT_EQ(settings.angularPrecision(), 1);
    EXPECT_EQ(settings.scientificPrecision(), 3);
    EXPECT_EQ(settings.lengthDisplay(), LengthDecimal);
    EXPECT_EQ(settings.degreeDisplay(), DegreeDecimal);
    EXPECT_TRUE(settings.compressUnits());
    EXPECT_TRUE(settings.scientificNotation());
    EXPECT_TRUE(settings.isDecimalPointFullStop());
    EXPECT_TRUE(settings.shouldDisplayAbbreviation());
    EXPECT_FALSE(settings.shouldDisplaySymbol());
    EXPECT_FALSE(settings.specifiedByNode());
    EXPECT_TRUE(settings.hideTrailingZeroes());
    EXPECT_EQ(settings.minimumPrecision(), 2);
    EXPECT_EQ(settings.useScientificNotationAboveThreshold(), 10000.0);
    EXPECT_EQ(settings.useScientificNotationBelowThreshold(), 0.001);
}

TEST_F(UnitDisplaySettingsTests, StandardHasTheFactorySettings) {
    expectFactorySettings(Settings::standard());
}

TEST_F(UnitDisplaySettingsTests, UsersRecordBeginsWithTheFactorySettings) {
    expectInFreshProcess([] { expectFactorySettings(Settings::get()); });
}

TEST_F(UnitDisplaySettingsTests, TwoRecordsExist) {
    EXPECT_EQ(&Settings::get(), &Settings::get());
    EXPECT_EQ(&Settings::standard(), &Settings::standard());
    EXPECT_EQ(&Settings::userEditableSettings(), &Settings::get());
    EXPECT_NE(&Settings::standard(), &Settings::get());
}

TEST_F(UnitDisplaySettingsTests, WritesShowAtOnceAndSpareTheStandard) {
    Settings & user = Settings::userEditableSettings();
    user.generalUnit(4);
    user.generalPrecision(7);
    user.angularPrecision(6);
    user.scientificPrecision(5);
    user.lengthDisplay(LengthArchitectural);
    user.degreeDisplay(DegreeDegMinSec);
    user.compressUnits(false);
    user.scientificNotation(false);
    user.useCommaAsDecimalPoint();
    user.displayAbbreviated(false);
    user.displaySymbol(true);
    user.specifiedByNode(true);
    user.hideTrailingZeroes(false);
    user.minimumPrecision(4);
    user.useScientificNotationAboveThreshold(9999.9999);
    user.useScientificNotationBelowThreshold(0.25);

    Settings const & shown = Settings::get();
    EXPECT_EQ(shown.generalUnit(), Settings::Foot);
    EXPECT_EQ(shown.generalPrecision(), 7);
    EXPECT_EQ(shown.angularPrecision(), 6);
    EXPECT_EQ(shown.scientificPrecision(), 5);
    EXPECT_EQ(shown.lengthDisplay(), LengthArchitectural);
    EXPECT_EQ(shown.degreeDisplay(), DegreeDegMinSec);
    EXPECT_FALSE(shown.compressUnits());
    EXPECT_FALSE(shown.scientificNotation());
    EXPECT_FALSE(shown.isDecimalPointFullStop());
    EXPECT_FALSE(shown.shouldDisplayAbbreviation());
    EXPECT_TRUE(shown.shouldDisplaySymbol());
    EXPECT_TRUE(shown.specifiedByNode());
    EXPECT_FALSE(shown.hideTrailingZeroes());
    EXPECT_EQ(shown.minimumPrecision(), 4);
    EXPECT_EQ(shown.useScientificNotationAboveThreshold(), 9999.9999);
    EXPECT_EQ(shown.useScientificNotationBelowThreshold(), 0.25);
    expectFactorySettings(Settings::standard());
}

TEST_F(UnitDisplaySettingsTests, CopyIsIndependent) {
    Settings copy = Settings::standard();
    copy.generalPrecision(9);
    Settings const second = copy;
    copy.generalPrecision(1);
    EXPECT_EQ(second.generalPrecision(), 9);
    EXPECT_EQ(Settings::standard().generalPrecision(), 3);
    copy = Settings::standard();
    expectFactorySettings(copy);
}

TEST_F(UnitDisplaySettingsTests, GeneralUnitOutsideItsRangeReadsAsMillimeter) {
    struct Row {
        short stored;
        Settings::UNIT_TYPE read;
    };
    Row const rows[] = {
        {0, Settings::Millimeter},
        {1, Settings::Centimeter},
        {2, Settings::Meter},
        {3, Settings::Inch},
        {4, Settings::Foot},
        {5, Settings::Millimeter},
        {-1, Settings::Millimeter},
        {std::numeric_limits<short>::max(), Settings::Millimeter},
        {std::numeric_limits<short>::min(), Settings::Millimeter},
    };
    Settings settings = Settings::standard();
    for (Row const & row : rows) {
        settings.generalUnit(row.stored);
        EXPECT_EQ(settings.generalUnit(), row.read) << row.stored;
    }
}

TEST_F(UnitDisplaySettingsTests, EnumerationsHaveTheirNumbers) {
    EXPECT_EQ(Settings::Millimeter, 0);
    EXPECT_EQ(Settings::Centimeter, 1);
    EXPECT_EQ(Settings::Meter, 2);
    EXPECT_EQ(Settings::Inch, 3);
    EXPECT_EQ(Settings::Foot, 4);
    EXPECT_EQ(LengthDecimal, 0);
    EXPECT_EQ(LengthFractional, 1);
    EXPECT_EQ(LengthArchitectural, 2);
    EXPECT_EQ(DegreeDecimal, 0);
    EXPECT_EQ(DegreeDegMinSec, 1);
}

TEST_F(UnitDisplaySettingsTests, DecimalMarkHasThreeSetters) {
    Settings settings = Settings::standard();
    settings.useCommaAsDecimalPoint();
    EXPECT_FALSE(settings.isDecimalPointFullStop());
    settings.useFullStopAsDecimalPoint();
    EXPECT_TRUE(settings.isDecimalPointFullStop());
    settings.decimalPointIsFullStop(false);
    EXPECT_FALSE(settings.isDecimalPointFullStop());
    settings.decimalPointIsFullStop(true);
    EXPECT_TRUE(settings.isDecimalPointFullStop());
}

TEST_F(UnitDisplaySettingsTests, ValuesAreStoredUnchecked) {
    Settings settings = Settings::standard();
    settings.minimumPrecision(9);
    settings.generalPrecision(1);
    EXPECT_EQ(settings.minimumPrecision(), 9);
    EXPECT_EQ(settings.generalPrecision(), 1);
    for (short const odd :
         {short(-5), std::numeric_limits<short>::max(), std::numeric_limits<short>::min()}) {
        settings.generalPrecision(odd);
        settings.angularPrecision(odd);
        settings.scientificPrecision(odd);
        settings.minimumPrecision(odd);
        EXPECT_EQ(settings.generalPrecision(), odd);
        EXPECT_EQ(settings.angularPrecision(), odd);
        EXPECT_EQ(settings.scientificPrecision(), odd);
        EXPECT_EQ(settings.minimumPrecision(), odd);
    }
    settings.useScientificNotationAboveThreshold(-1.0);
    settings.useScientificNotationBelowThreshold(std::numeric_limits<double>::infinity());
    EXPECT_EQ(settings.useScientificNotationAboveThreshold(), -1.0);
    EXPECT_EQ(settings.useScientificNotationBelowThreshold(),
              std::numeric_limits<double>::infinity());
    settings.lengthDisplay(static_cast<ELengthDisplay>(77));
    EXPECT_EQ(static_cast<int>(settings.lengthDisplay()), 77);
}

// The record against which the worked expressions are held.
TEST_F(UnitDisplaySettingsTests, NonStandardDisplay) {
    Settings settings = Settings::standard();
    settings.generalPrecision(4);
    settings.angularPrecision(2);
    settings.scientificNotation(true);
    settings.scientificPrecision(4);
    settings.displayAbbreviated(false);
    settings.compressUnits(false);
    settings.useCommaAsDecimalPoint();
    settings.lengthDisplay(LengthFractional);
    settings.degreeDisplay(DegreeDegMinSec);
    settings.hideTrailingZeroes(false);
    settings.useScientificNotationAboveThreshold(1000.0);
    settings.useScientificNotationBelowThreshold(0.0001);
    struct Row {
        SimpleUnit const * unit;
        double internal;
        wchar_t const * standard;
        wchar_t const * nonStandard;
    };
    Row const rows[] = {
        {UnitMeter::get(0.01), 2.0, L"2.00 cm", L"2,0000 centimeter"},
        {UnitMeter::get(0.01), 2200.0, L"2200.00 cm", L"2.2000E+03 centimeter"},
        {UnitInch::get(), 2.5 * 2.54, L"2.50 in", L"2 1/2\""},
        {UnitFoot::get(), 2.5 * 2.54, L"0.208 ft", L"2 1/2\""},
        {UnitDegree::get(), 0.7853981633974483, L"45.0 deg", L"45degree 0' 0\""},
    };
    for (Row const & row : rows) {
        EXPECT_EQ(row.unit->reconstructString(row.internal, ValueAndUnit, Settings::standard()),
                  row.standard);
        EXPECT_EQ(row.unit->reconstructString(row.internal, ValueAndUnit, settings),
                  row.nonStandard);
    }
}

TEST_F(UnitDisplaySettingsTests, ThreadsGetTheSameRecords) {
    expectInFreshProcess([] {
        std::vector<Settings const *> user(8);
        std::vector<Settings const *> standard(8);
        StartLine start(8);
        std::vector<std::jthread> threads;
        for (std::size_t i = 0; i < 8; ++i)
            threads.emplace_back([&, i] {
                start.arriveAndWait();
                user[i] = &Settings::get();
                standard[i] = &Settings::standard();
            });
        threads.clear();
        EXPECT_EQ(user, std::vector<Settings const *>(8, user.front()));
        EXPECT_EQ(standard, std::vector<Settings const *>(8, standard.front()));
    });
}

} // namespace

} // namespace Vn::Units
