// The preferences for units and values: what the tables say, and what happens to the record.

#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "Platform/Base/Initializer.h"
#include "Platform/Base/PathInfo.h"
#include "Platform/Base/StringTable.h"
#include "Platform/Base/Text.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Units/UnitDisplaySettings.h"
#include "Server/CommonData/Units/UnitDisplaySettingsFields.h"
#include "Server/CommonData/Units/UnitDisplaySettingsOptionGroup.h"
#include "Tests/Base/TestOptions.h"
#include "Tests/Support/FreshProcess.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace Vn::Units {

namespace {

namespace fs = std::filesystem;
using Group = UnitDisplaySettingsOptionGroup;
using Settings = UnitDisplaySettings;

struct OptionRow {
    char const * id;
    int type;
    wchar_t const * standard; // as a text
    char const * under;
    char const * nameKey;
    wchar_t const * name;
    char const * tipKey;
    wchar_t const * tip;
};

// In the order in which they are made.
constexpr OptionRow c_options[] = {
    {"UnitGeneralUnitsId", 3, L"0", nullptr, "UnitGeneralUnitsUserName",
     L"Default units for new documents", "UnitGeneralUnitsToolTip",
     L"Default unit system for new documents"},
    {"UnitGeneralPrecisionId", 3, L"3", "Units And Value Group", "UnitGeneralPrecisionUserName",
     L"General precision", "UnitGeneralPrecisionToolTip",
     L"How many decimal points should be displayed for a general unit value"},
    {"UnitAngularPrecisionId", 3, L"1", "Units And Value Group", "UnitAngularPrecisionUserName",
     L"Angular precision", "UnitAngularPrecisionToolTip",
     L"How many decimal points should be displayed for degree unit value"},
    {"UnitScientificPrecisionId", 3, L"3", "Units And Value Group",
     "UnitScientificPrecisionUserName", L"Scientific notation precision",
     "UnitScientificPrecisionToolTip",
     L"How many decimal points should be displayed for the mantissa in scientific units"},
    {"UnitLengthDisplayId", 3, L"0", "Units And Value Group", "UnitLengthDisplayUserName",
     L"Foot and inch foot display format", "UnitLengthDisplayToolTip",
     L"How to display length in feet and inches - decimal (1.5 inches), fractional (1 1/2\") or "
     L"architectural (0'-1 1/2\")"},
    {"UnitDegreeDisplayId", 3, L"0", "Units And Value Group", "UnitDegreeDisplayUserName",
     L"Degree display format", "UnitDegreeDisplayToolTip",
     L"How should fractions of a degree be displayed - decimal (39.25 deg) or deg / min / sec (39 "
     L"deg 15')"},
    {"UnitCompressUnitsId", 2, L"ON", "Units And Value Group", "UnitCompressUnitsUserName",
     L"Compress Units", "UnitCompressUnitsToolTip",
     L"Should units be compressed using powers (e.g. m^3) or simply multiplied (e.g. m m m)"},
    {"UnitDecimalPointIsFullStopId", 2, L"ON", "Units And Value Group",
     "UnitDecimalPointIsFullStopUserName", L"Decimal point display",
     "UnitDecimalPointIsFullStopToolTip",
     L"Should a decimal point be displayed as a full stop or a comma"},
    {"UnitDisplayAbbreviatedId", 2, L"ON", "Units And Value Group",
     "UnitDisplayAbbreviatedUserName", L"Display abbreviations for units",
     "UnitDisplayAbbreviatedToolTip",
     L"Should units be displayed with their abbreviation (if they have one) instead of their full "
     L"name"},
    {"UnitDisplaySymbolId", 2, L"OFF", "Units And Value Group", "UnitDisplaySymbolUserName",
     L"Display symbols for units", "UnitDisplaySymbolToolTip",
     L"Should units be displayed with their symbol (if they have one) rather than their "
     L"abbreviation or full name"},
    {"UnitScientificNotationId", 2, L"ON", nullptr, "UnitScientificNotationUserName",
     L"Use scientific notation for big and small values", "UnitScientificNotationToolTip",
     L"Should a value be displayed using scientific notation if it is big or small (e.g. > 1E3 or "
     L"< 1E-3)"},
    {"UnitDisplayscientificNotationAboveThresholdId", 8, L"9999.9999", "UnitScientificNotationId",
     "UnitDisplayScientificNotationAboveThresholdName", L"Use scientific notation above",
     "UnitDisplayScientificNotationAboveThresholdTip",
     L"When the absolute value of a number is greater than this limit, display it in scientific "
     L"notation"},
    {"UnitDisplayscientificNotationBelowThresholdId", 8, L"0.001", "UnitScientificNotationId",
     "UnitDisplayScientificNotationBelowThresholdName", L"Use scientific notation below",
     "UnitDisplayScientificNotationBelowThresholdTip",
     L"When the absolute value is less than this limit, display it in scientific notation"},
    {"UnitDisplayHideTrailingZeroesId", 2, L"ON", nullptr, "UnitDisplayHideTrailingZeroesName",
     L"Hide trailing zeroes", "UnitDisplayHideTrailingZeroesTip",
     L"Should trailing zeroes be hidden - e.g. display 4.020 as 4.02"},
    {"UnitDisplayMinimumPrecisionId", 3, L"2", "UnitDisplayHideTrailingZeroesId",
     "UnitDisplayMinimumPrecisionName", L"Minimum precision when hiding trailing zeroes",
     "UnitDisplayMinimumPrecisionTip",
     L"Minimum precison when hiding trailing zeroes, so 4.000 will display as 4.00 instead of 4"},
};

struct ChoiceRow {
    std::size_t option;
    wchar_t const * value;
    char const * key;
    wchar_t const * text;
};

constexpr ChoiceRow c_choices[] = {
    {0, L"0", "GeneralUnitsValue0", L"mm"},
    {0, L"1", "GeneralUnitsValue1", L"cm"},
    {0, L"2", "GeneralUnitsValue2", L"m"},
    {0, L"3", "GeneralUnitsValue3", L"in"},
    {0, L"4", "GeneralUnitsValue4", L"ft"},
    {4, L"0", "LengthDisplayValueDecimal", L"Decimal (e.g. 1.5 in)"},
    {4, L"1", "LengthDisplayValueFractional", L"Fractional (e.g. 1 1/2\")"},
    {4, L"2", "LengthDisplayValueArchitectural", L"Architectural (e.g. 0'-1 1/2\")"},
    {5, L"0", "DegreeDisplayValueDecimal", L"Decimal (e.g. 39.25 deg)"},
    {5, L"1", "DegreeDisplayValueDegMinSec", L"Minutes and Seconds (e.g. 39 deg 15')"},
    {7, L"ON", "DecimalPointValueFullStop", L"1.500"},
    {7, L"OFF", "DecimalPointValueComma", L"1,500"},
    {1, L"0", "GeneralPrecisionValue0", L"0"},
    {1, L"1", "GeneralPrecisionValue1", L"0.1"},
    {1, L"2", "GeneralPrecisionValue2", L"0.12"},
    {1, L"3", "GeneralPrecisionValue3", L"0.123"},
    {1, L"4", "GeneralPrecisionValue4", L"0.1234"},
    {1, L"5", "GeneralPrecisionValue5", L"0.12345"},
    {1, L"6", "GeneralPrecisionValue6", L"0.123456"},
    {1, L"7", "GeneralPrecisionValue7", L"0.1234567"},
    {1, L"8", "GeneralPrecisionValue8", L"0.12345678"},
    {1, L"9", "GeneralPrecisionValue9", L"0.123456789"},
    {2, L"0", "AngularPrecisionValue0", L"0"},
    {2, L"1", "AngularPrecisionValue1", L"0.1"},
    {2, L"2", "AngularPrecisionValue2", L"0.12"},
    {2, L"3", "AngularPrecisionValue3", L"0.123"},
    {2, L"4", "AngularPrecisionValue4", L"0.1234"},
    {2, L"5", "AngularPrecisionValue5", L"0.12345"},
    {2, L"6", "AngularPrecisionValue6", L"0.123456"},
    {2, L"7", "AngularPrecisionValue7", L"0.1234567"},
    {2, L"8", "AngularPrecisionValue8", L"0.12345678"},
    {2, L"9", "AngularPrecisionValue9", L"0.123456789"},
    {3, L"0", "ScientificPrecisionValue0", L"1E+04"},
    {3, L"1", "ScientificPrecisionValue1", L"1.1E+04"},
    {3, L"2", "ScientificPrecisionValue2", L"1.12E+04"},
    {3, L"3", "ScientificPrecisionValue3", L"1.123E+04"},
    {3, L"4", "ScientificPrecisionValue4", L"1.1234E+04"},
    {3, L"5", "ScientificPrecisionValue5", L"1.12345E+04"},
    {3, L"6", "ScientificPrecisionValue6", L"1.123456E+04"},
    {3, L"7", "ScientificPrecisionValue7", L"1.1234567E+04"},
    {3, L"8", "ScientificPrecisionValue8", L"1.12345678E+04"},
    {3, L"9", "ScientificPrecisionValue9", L"1.123456789E+04"},
    {11, L"9.9999", "ScientificAboveValue1", L"9.9999"},
    {11, L"99.9999", "ScientificAboveValue2", L"99.9999"},
    {11, L"999.9999", "ScientificAboveValue3", L"999.9999"},
    {11, L"9999.9999", "ScientificAboveValue4", L"9999.9999"},
    {11, L"99999.9999", "ScientificAboveValue5", L"99999.9999"},
    {11, L"999999.9999", "ScientificAboveValue6", L"999999.9999"},
    {11, L"9999999.9999", "ScientificAboveValue7", L"9999999.9999"},
    {11, L"99999999.9999", "ScientificAboveValue8", L"99999999.9999"},
    {12, L"0.1", "ScientificBelowValue1", L"0.1"},
    {12, L"0.01", "ScientificBelowValue2", L"0.01"},
    {12, L"0.001", "ScientificBelowValue3", L"0.001"},
    {12, L"0.0001", "ScientificBelowValue4", L"0.0001"},
    {12, L"0.00001", "ScientificBelowValue5", L"0.00001"},
    {12, L"0.000001", "ScientificBelowValue6", L"0.000001"},
    {12, L"0.0000001", "ScientificBelowValue7", L"0.0000001"},
    {12, L"0.00000001", "ScientificBelowValue8", L"0.00000001"},
    {14, L"0", "MinimumPrecisionValue0", L"4"},
    {14, L"1", "MinimumPrecisionValue1", L"4.0"},
    {14, L"2", "MinimumPrecisionValue2", L"4.00"},
    {14, L"3", "MinimumPrecisionValue3", L"4.000"},
    {14, L"4", "MinimumPrecisionValue4", L"4.0000"},
    {14, L"5", "MinimumPrecisionValue5", L"4.00000"},
    {14, L"6", "MinimumPrecisionValue6", L"4.000000"},
    {14, L"7", "MinimumPrecisionValue7", L"4.0000000"},
    {14, L"8", "MinimumPrecisionValue8", L"4.00000000"},
};

// The file of a group with these options.
std::string fileOf(std::string const & options) {
    return "<Options><OptionGroup Id=\"UnitDisplaySettingsOptionGroup\">" + options +
           "</OptionGroup></Options>";
}

// The only group, with files in a directory of the test's own.  The record is put back after it.
class UnitDisplaySettingsOptionGroupTests : public testing::Test {
protected:
    UnitDisplaySettingsOptionGroupTests()
        : m_before(PathInfo::optionsDirectory(false)), m_record(Settings::get()) {
        PathInfo::optionsDirectory(PathInfo::toText(m_directory.path()));
        load();
    }
    ~UnitDisplaySettingsOptionGroupTests() override {
        fs::remove(file());
        load();
        PathInfo::optionsDirectory(m_before);
        Settings::userEditableSettings() = m_record;
    }

    Group & group() const { return *Group::get(); }
    Status load() const {
        Status status;
        group().load(status);
        return status;
    }
    Status save() const {
        Status status;
        group().save(status);
        return status;
    }
    fs::path file() const { return m_directory.path() / "GlobalOptions.xml"; }
    OptionBase & option(char const * id) const { return *group().findOption(id); }
    // Loads a file with one option.
    Status given(std::string const & id, std::string const & value) const {
        Testing::write(file(), fileOf(Testing::optionElement(id, value)));
        return load();
    }

private:
    Testing::TemporaryDirectory const m_directory;
    std::wstring const m_before;
    Settings const m_record;
};

TEST_F(UnitDisplaySettingsOptionGroupTests, TheGroupHasItsNames) {
    EXPECT_EQ(group().id(), "UnitDisplaySettingsOptionGroup");
    EXPECT_EQ(group().userName(), L"Units");
    EXPECT_EQ(group().toolTip(), L"Preferences that control how units and values are displayed");
    EXPECT_EQ(Group::get(), Group::get());
    ASSERT_EQ(group().subGroups().size(), 2U);
    SubOptionGroup const & units = *group().subGroups()[0];
    SubOptionGroup const & values = *group().subGroups()[1];
    EXPECT_EQ(units.id(), "Default Units Group");
    EXPECT_EQ(units.userName(), L"Merrow Default Units");
    EXPECT_EQ(values.id(), "Units And Value Group");
    EXPECT_EQ(values.userName(), L"Unit & Value Display");
    for (auto const & each : group().subGroups()) {
        EXPECT_EQ(each->toolTip(), L"");
        EXPECT_TRUE(each->isShown());
        EXPECT_TRUE(each->isExpanded());
    }
}

TEST_F(UnitDisplaySettingsOptionGroupTests, EachOptionIsAsItsRowSays) {
    ASSERT_EQ(group().options().size(), std::size(c_options));
    for (std::size_t i = 0; i < std::size(c_options); ++i) {
        OptionRow const & row = c_options[i];
        SCOPED_TRACE(row.id);
        OptionBase const & option = *group().options()[i];
        EXPECT_EQ(option.id(), row.id);
        EXPECT_EQ(option.valueType(), row.type);
        EXPECT_EQ(option.toString(), row.standard);
        EXPECT_FALSE(option.nonDefault());
        EXPECT_EQ(option.userName(), row.name);
        EXPECT_EQ(option.toolTip(), row.tip);
        EXPECT_EQ(option.advanced(), i == 6) << "the seventh alone is advanced";
        EXPECT_EQ(option.group(), &group());
        OptionBase const * const under = option.subGroup();
        if (row.under)
            EXPECT_EQ(under ? under->id() : "none", row.under);
        else
            EXPECT_EQ(under, nullptr);
    }
}

TEST_F(UnitDisplaySettingsOptionGroupTests, EachOptionHasItsChoices) {
    std::vector<std::vector<ChoiceRow const *>> wanted(std::size(c_options));
    for (ChoiceRow const & row : c_choices) wanted[row.option].push_back(&row);
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        SCOPED_TRACE(c_options[i].id);
        OptionBase & option = *group().options()[i];
        ASSERT_EQ(option.choices().size(), wanted[i].size());
        for (std::size_t j = 0; j < wanted[i].size(); ++j) {
            EXPECT_EQ(option.choices()[j].value, wanted[i][j]->value);
            EXPECT_EQ(option.choices()[j].text, wanted[i][j]->text);
            EXPECT_TRUE(option.choose(wanted[i][j]->value));
            EXPECT_TRUE(option.doesStringMatchValue(wanted[i][j]->value));
        }
    }
    for (std::size_t const without : {6U, 8U, 9U, 10U, 13U}) EXPECT_TRUE(wanted[without].empty());
}

// Another language shows by which keys the texts are looked up.
TEST(UnitDisplaySettingsOptionGroupStartTests, EachTextHasItsKey) {
    expectInFreshProcess([] {
        StringTable::catalogueDirectory(VN_KEY_CATALOGUES);
        StringTable::language("keys");
        Group const & group = *Group::get();
        EXPECT_EQ(group.userName(), L"UnitDisplaySettingsOptionsUserName");
        EXPECT_EQ(group.toolTip(), L"UnitDisplaySettingsOptionsToolTip");
        EXPECT_EQ(group.subGroups()[0]->userName(), L"DefaultUnitsGroupUserName");
        EXPECT_EQ(group.subGroups()[1]->userName(), L"UnitsAndValueGroupUserName");
        std::vector<std::size_t> next(std::size(c_options), 0);
        for (std::size_t i = 0; i < std::size(c_options); ++i) {
            EXPECT_EQ(Text::toUtf8(group.options()[i]->userName()), c_options[i].nameKey);
            EXPECT_EQ(Text::toUtf8(group.options()[i]->toolTip()), c_options[i].tipKey);
        }
        for (ChoiceRow const & row : c_choices) {
            auto const choices = group.options()[row.option]->choices();
            EXPECT_EQ(Text::toUtf8(choices[next[row.option]++].text), row.key);
        }
    });
}

// With no option file at all, the threshold above isn't the factory's.
TEST(UnitDisplaySettingsOptionGroupStartTests, WithoutAFileTheThresholdAboveIsTheOptions) {
    expectInFreshProcess([] {
        Testing::TemporaryDirectory const directory;
        PathInfo::optionsDirectory(PathInfo::toText(directory.path() / "none"));
        EXPECT_EQ(Settings::get().useScientificNotationAboveThreshold(), 10000.0)
            << "before the initialisers";
        Initializer::runAll();
        EXPECT_EQ(Settings::get().useScientificNotationAboveThreshold(), 9999.9999);
        EXPECT_EQ(Settings::standard().useScientificNotationAboveThreshold(), 10000.0);
        Settings same = Settings::get();
        same.useScientificNotationAboveThreshold(10000.0);
        for (UnitDisplaySettingsField const & field : unitDisplaySettingsFields())
            EXPECT_EQ(field.get(same), field.get(Settings::standard())) << field.name;
        Expressions::Expression const value(L"10000");
        EXPECT_EQ(value.formatted(ValueAndUnit, Settings::get(), UnitContext()), L"1.000E+04");
        EXPECT_EQ(value.formatted(ValueAndUnit, Settings::standard(), UnitContext()), L"10000.00");
        EXPECT_FALSE(fs::exists(directory.path() / "none")) << "nothing is made";
    });
}

TEST(UnitDisplaySettingsOptionGroupStartTests, TheInitialisersReadTheFile) {
    expectInFreshProcess([] {
        Testing::TemporaryDirectory const directory;
        PathInfo::optionsDirectory(PathInfo::toText(directory.path()));
        Testing::write(directory.path() / "GlobalOptions.xml",
                       fileOf(Testing::optionElement("UnitDecimalPointIsFullStopId", "0")));
        Testing::write(directory.path() / "ServerOptions.xml",
                       fileOf(Testing::optionElement("UnitDecimalPointIsFullStopId", "1") +
                              Testing::optionElement("UnitLengthDisplayId", "1")));
        EXPECT_TRUE(Settings::get().isDecimalPointFullStop());
        Initializer::runAll();
        EXPECT_FALSE(Settings::get().isDecimalPointFullStop());
        EXPECT_EQ(Settings::get().lengthDisplay(), LengthFractional);
        EXPECT_TRUE(Settings::standard().isDecimalPointFullStop());
    });
}

TEST(UnitDisplaySettingsOptionGroupStartTests, ADamagedFileLeavesTheDefaultsAndAReason) {
    expectInFreshProcess([] {
        Testing::TemporaryDirectory const directory;
        PathInfo::optionsDirectory(PathInfo::toText(directory.path()));
        Testing::write(directory.path() / "GlobalOptions.xml", "<Options><OptionGroup");
        Initializer::runAll();
        EXPECT_EQ(Group::get()->loadStatus().code(), StatusCorrupt);
        EXPECT_EQ(Settings::get().generalPrecision(), 3);
    });
}

// Choices constrain the page, not the value.
TEST_F(UnitDisplaySettingsOptionGroupTests, AValueOutsideItsChoicesReachesTheRecord) {
    EXPECT_TRUE(given("UnitGeneralPrecisionId", "12").ok());
    EXPECT_EQ(Settings::get().generalPrecision(), 12);
    EXPECT_TRUE(given("UnitLengthDisplayId", "70000").ok());
    EXPECT_EQ(static_cast<int>(Settings::get().lengthDisplay()), 70000);
    EXPECT_EQ(Settings::get().generalPrecision(), 3) << "which the file has no more";
    EXPECT_TRUE(given("UnitDegreeDisplayId", "-1").ok());
    EXPECT_EQ(static_cast<int>(Settings::get().degreeDisplay()), -1);
}

TEST_F(UnitDisplaySettingsOptionGroupTests, AnIntSaturatesToTheFieldOfTheRecord) {
    struct Row {
        wchar_t const * text;
        short value;
    };
    for (Row const & row : {Row{L"70000", 32767}, Row{L"32768", 32767}, Row{L"32767", 32767},
                            Row{L"-70000", -32768}, Row{L"-1", -1}}) {
        for (char const * const id : {"UnitGeneralPrecisionId", "UnitAngularPrecisionId",
                                      "UnitScientificPrecisionId", "UnitDisplayMinimumPrecisionId"})
            option(id).setValueFromString(row.text);
        option("UnitGeneralUnitsId").setValueFromString(row.text);
        EXPECT_EQ(Settings::get().generalPrecision(), row.value);
        EXPECT_EQ(Settings::get().angularPrecision(), row.value);
        EXPECT_EQ(Settings::get().scientificPrecision(), row.value);
        EXPECT_EQ(Settings::get().minimumPrecision(), row.value);
        EXPECT_EQ(Settings::get().generalUnit(), Settings::Millimeter);
    }
    option("UnitGeneralUnitsId").setValueFromString(L"4");
    EXPECT_EQ(Settings::get().generalUnit(), Settings::Foot);
}

// Changing one option rewrites all fifteen fields of the record.
TEST_F(UnitDisplaySettingsOptionGroupTests, AChangeOfOneOptionRewritesAllFields) {
    Settings & record = Settings::userEditableSettings();
    for (UnitDisplaySettingsField const & field : unitDisplaySettingsFields())
        field.set(record, field.kind == ESettingsField::Flag ? 1.0 - field.get(record) : 1.0);
    option("UnitGeneralPrecisionId").setValueFromString(L"5");
    Settings wanted = Settings::standard();
    wanted.generalPrecision(5);
    wanted.useScientificNotationAboveThreshold(9999.9999);
    wanted.specifiedByNode(true); // has no option, and stays as it was put
    for (UnitDisplaySettingsField const & field : unitDisplaySettingsFields())
        EXPECT_EQ(field.get(record), field.get(wanted)) << field.name;
    record.specifiedByNode(false);
}

TEST_F(UnitDisplaySettingsOptionGroupTests, EachOptionWritesItsField) {
    for (OptionBase * const option : group().options()) {
        SCOPED_TRACE(option->id());
        UnitDisplaySettingsField const * const field =
            findUnitDisplaySettingsField(Group::fieldName(*option));
        ASSERT_TRUE(field);
        bool const isFlag = field->kind == ESettingsField::Flag;
        bool const isChoice = !isFlag && field->high < 10.0;
        Settings before = Settings::get();
        double const wanted = isFlag ? 1.0 - field->get(before) : isChoice ? 1.0 : 4.0;
        option->setValueFromString(isFlag ? (wanted == 1.0 ? L"ON" : L"OFF")
                                          : std::to_wstring(static_cast<int>(wanted)));
        EXPECT_EQ(field->get(Settings::get()), wanted);
        field->set(before, wanted);
        for (UnitDisplaySettingsField const & each : unitDisplaySettingsFields())
            EXPECT_EQ(each.get(Settings::get()), each.get(before)) << each.name;
    }
    Option<int> const other("Other", L"", L"", nullptr, 0);
    EXPECT_EQ(Group::fieldName(other), nullptr);
}

// Value "ON" of option 8 means full stop.
TEST_F(UnitDisplaySettingsOptionGroupTests, OnMeansFullStop) {
    OptionBase & point = option("UnitDecimalPointIsFullStopId");
    point.setValueFromString(L"OFF");
    EXPECT_FALSE(Settings::get().isDecimalPointFullStop());
    EXPECT_TRUE(point.choose(L"ON"));
    EXPECT_TRUE(Settings::get().isDecimalPointFullStop());
    EXPECT_EQ(point.choices()[0].value, L"ON");
    EXPECT_EQ(point.choices()[0].text, L"1.500");
}

// Minimum precision 0 has the text "4".
TEST_F(UnitDisplaySettingsOptionGroupTests, MinimumPrecisionShowsItsEffectOnFour) {
    OptionBase const & minimum = option("UnitDisplayMinimumPrecisionId");
    EXPECT_EQ(minimum.choices()[0].value, L"0");
    EXPECT_EQ(minimum.choices()[0].text, L"4");
    EXPECT_EQ(minimum.choices()[3].text, L"4.000");
}

// The system's own spelling.
TEST_F(UnitDisplaySettingsOptionGroupTests, OddSpellingsStay) {
    EXPECT_EQ(
        option("UnitDisplayMinimumPrecisionId").toolTip(),
        L"Minimum precison when hiding trailing zeroes, so 4.000 will display as 4.00 instead "
        L"of 4");
    EXPECT_TRUE(group().findOption("UnitDisplayscientificNotationAboveThresholdId"));
    EXPECT_TRUE(group().findOption("UnitDisplayscientificNotationBelowThresholdId"));
    EXPECT_FALSE(group().findOption("UnitDisplayScientificNotationAboveThresholdId"));
}

TEST_F(UnitDisplaySettingsOptionGroupTests, AnythingButOnOrOffLeavesAFlagAlone) {
    OptionBase & symbol = option("UnitDisplaySymbolId");
    for (wchar_t const * const text : {L"1", L"true", L"", L"ON."}) symbol.setValueFromString(text);
    EXPECT_FALSE(Settings::get().shouldDisplaySymbol());
    EXPECT_EQ(given("UnitDisplaySymbolId", "ON").subject(), "UnitDisplaySymbolId");
    EXPECT_FALSE(Settings::get().shouldDisplaySymbol());
    EXPECT_TRUE(given("UnitDisplaySymbolId", "1").ok());
    EXPECT_TRUE(Settings::get().shouldDisplaySymbol());
}

TEST_F(UnitDisplaySettingsOptionGroupTests, ALoadBringsTheRecordUpToDate) {
    Settings::userEditableSettings().generalPrecision(9);
    EXPECT_TRUE(given("UnitDisplayscientificNotationBelowThresholdId", "0,5").ok());
    EXPECT_EQ(Settings::get().generalPrecision(), 3);
    EXPECT_EQ(Settings::get().useScientificNotationBelowThreshold(), 0.5);
    EXPECT_TRUE(given("UnitDisplayscientificNotationBelowThresholdId", "NaN").code() ==
                StatusCorrupt);
    EXPECT_EQ(Settings::get().useScientificNotationBelowThreshold(), 0.5) << "what it had";
}

TEST_F(UnitDisplaySettingsOptionGroupTests, AStubValueReachesTheRecordAtTheNextChange) {
    option("UnitGeneralPrecisionId").setFromDynamicStubValue(L"7");
    EXPECT_EQ(Settings::get().generalPrecision(), 3);
    option("UnitAngularPrecisionId").setValueFromString(L"2");
    EXPECT_EQ(Settings::get().generalPrecision(), 7);
}

TEST_F(UnitDisplaySettingsOptionGroupTests, ResettingBringsTheDefaultsToTheRecord) {
    option("UnitGeneralPrecisionId").setValueFromString(L"7");
    option("UnitScientificNotationId").setValueFromString(L"OFF");
    Status status;
    group().reset(status);
    EXPECT_EQ(Settings::get().generalPrecision(), 3);
    EXPECT_TRUE(Settings::get().scientificNotation());
}

TEST_F(UnitDisplaySettingsOptionGroupTests, WhatIsSavedIsReadBack) {
    for (OptionBase * const option : group().options()) {
        bool const isFlag = option->valueType() == OptionBase::DataTypeBool;
        option->setValueFromString(isFlag ? (option->toString() == L"ON" ? L"OFF" : L"ON") : L"1");
    }
    Settings const saved = Settings::get();
    EXPECT_TRUE(save().ok());
    std::string const content = Testing::contentOf(file());
    fs::remove(file());
    load();
    EXPECT_EQ(Settings::get().generalPrecision(), 3);
    Testing::write(file(), content);
    EXPECT_TRUE(load().ok());
    for (UnitDisplaySettingsField const & field : unitDisplaySettingsFields())
        EXPECT_EQ(field.get(Settings::get()), field.get(saved)) << field.name;
}

TEST_F(UnitDisplaySettingsOptionGroupTests, TheGroupLivesInTwoFiles) {
    std::vector<std::wstring> others{L"before"};
    std::wstring const own = group().onPersistFile(others);
    std::wstring const directory = PathInfo::optionsDirectory(true);
    EXPECT_EQ(own, directory + L"GlobalOptions.xml");
    EXPECT_EQ(others, (std::vector<std::wstring>{L"before", directory + L"ServerOptions.xml"}));
}

TEST_F(UnitDisplaySettingsOptionGroupTests, ASecondCreationMakesNothing) {
    group().createOptionsIfNeeded();
    EXPECT_EQ(group().options().size(), 15U);
    EXPECT_EQ(group().subGroups().size(), 2U);
}

TEST_F(UnitDisplaySettingsOptionGroupTests, NobodyWritesSpecifiedByNode) {
    for (OptionBase * const option : group().options()) option->setValueFromString(L"1");
    EXPECT_FALSE(Settings::get().specifiedByNode());
}

} // namespace

} // namespace Vn::Units
