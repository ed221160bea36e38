// The table of the display settings.

#include "Server/CommonData/Units/UnitDisplaySettingsFields.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace Vn::Units {

namespace {

using Field = UnitDisplaySettingsField;

TEST(UnitDisplaySettingsFieldsTests, SixteenFieldsInTheOrderOfTheRecord) {
    std::vector<std::string> names;
    for (Field const & field : unitDisplaySettingsFields()) names.emplace_back(field.name);
    EXPECT_EQ(names,
              (std::vector<std::string>{
                  "generalUnit", "generalPrecision", "angularPrecision", "scientificPrecision",
                  "lengthDisplay", "degreeDisplay", "compressUnits", "scientificNotation",
                  "decimalPointIsFullStop", "displayAbbreviated", "displaySymbol",
                  "specifiedByNode", "hideTrailingZeroes", "minimumPrecision",
                  "useScientificNotationAboveThreshold", "useScientificNotationBelowThreshold"}));
}

TEST(UnitDisplaySettingsFieldsTests, WhatIsSetIsRead) {
    UnitDisplaySettings const & standard = UnitDisplaySettings::standard();
    for (Field const & field : unitDisplaySettingsFields()) {
        UnitDisplaySettings settings = standard;
        double const other = field.get(settings) == 1.0 ? 0.0 : 1.0;
        EXPECT_TRUE(setUnitDisplaySettingsField(field, settings, other)) << field.name;
        EXPECT_EQ(field.get(settings), other) << field.name;
        // And no other field moves.
        for (Field const & untouched : unitDisplaySettingsFields()) {
            if (&untouched == &field) continue;
            EXPECT_EQ(untouched.get(settings), untouched.get(standard))
                << field.name << ' ' << untouched.name;
        }
    }
}

TEST(UnitDisplaySettingsFieldsTests, AFieldReadsTheRecordsOwnOperation) {
    UnitDisplaySettings settings = UnitDisplaySettings::standard();
    auto const read = [&](char const * name) {
        return findUnitDisplaySettingsField(name)->get(settings);
    };
    settings.generalUnit(UnitDisplaySettings::Foot);
    settings.generalPrecision(-5);
    settings.lengthDisplay(LengthArchitectural);
    settings.useCommaAsDecimalPoint();
    settings.useScientificNotationBelowThreshold(0.25);
    EXPECT_EQ(read("generalUnit"), 4.0);
    EXPECT_EQ(read("generalPrecision"), -5.0);
    EXPECT_EQ(read("lengthDisplay"), 2.0);
    EXPECT_EQ(read("decimalPointIsFullStop"), 0.0);
    EXPECT_EQ(read("useScientificNotationBelowThreshold"), 0.25);
}

TEST(UnitDisplaySettingsFieldsTests, TheEndsOfARangeAreTakenAndNothingBeyond) {
    constexpr double c_infinity = std::numeric_limits<double>::infinity();
    for (Field const & field : unitDisplaySettingsFields()) {
        SCOPED_TRACE(field.name);
        UnitDisplaySettings settings = UnitDisplaySettings::standard();
        EXPECT_TRUE(setUnitDisplaySettingsField(field, settings, field.low));
        EXPECT_TRUE(setUnitDisplaySettingsField(field, settings, field.high));
        double const before = field.get(settings);
        EXPECT_FALSE(setUnitDisplaySettingsField(field, settings, std::nan("")));
        bool const isNumber = field.kind == ESettingsField::Number;
        EXPECT_EQ(field.low == -c_infinity && field.high == c_infinity, isNumber);
        if (isNumber) continue;
        for (double const value : {field.low - 1.0, field.high + 1.0, 0.5, c_infinity, 1e300})
            EXPECT_FALSE(setUnitDisplaySettingsField(field, settings, value)) << value;
        EXPECT_EQ(field.get(settings), before);
    }
}

TEST(UnitDisplaySettingsFieldsTests, FlagsGoFromFalseToTrue) {
    std::size_t flags = 0;
    for (Field const & field : unitDisplaySettingsFields()) {
        if (field.kind != ESettingsField::Flag) continue;
        ++flags;
        EXPECT_EQ(field.low, 0.0) << field.name;
        EXPECT_EQ(field.high, 1.0) << field.name;
    }
    EXPECT_EQ(flags, 7u);
}

TEST(UnitDisplaySettingsFieldsTests, NamesAreFoundInTheirCase) {
    for (Field const & field : unitDisplaySettingsFields())
        EXPECT_EQ(findUnitDisplaySettingsField(field.name), &field);
    for (char const * const name : {"DegreeDisplay", "degreeDispla", "degreeDisplays", ""})
        EXPECT_EQ(findUnitDisplaySettingsField(name), nullptr) << name;
}

} // namespace

} // namespace Vn::Units
