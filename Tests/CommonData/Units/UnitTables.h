// The tables of the unit model, as people agreed on them.  They are written out a second time, so
// that a slip in the product's own tables shows.

#ifndef VN_TESTS_COMMONDATA_UNITS_UNITTABLES_H
#define VN_TESTS_COMMONDATA_UNITS_UNITTABLES_H

#include "Server/CommonData/Units/UnitTypes.h"

namespace Vn::Units::UnitTables {

struct CatalogueRow {
    int position;
    char const * identifier;
    ESimpleUnitType kind;
    wchar_t const * name;
    wchar_t const * abbreviation;
    wchar_t const * symbol;
    double factor;
    double offset;
    bool magnitudes;
};

// clang-format off
inline constexpr CatalogueRow c_catalogue[] = {
    {1, "UnitRadian", UnitTypeAngle, L"radian", L"rad", L"", 1.0, 0.0, false},
    {2, "UnitDegree", UnitTypeAngle, L"degree", L"deg", L"\u00B0", 0.017453292519943295, 0.0, false},
    {3, "UnitGrad", UnitTypeAngle, L"grad", L"grad", L"", 0.015707963267948967, 0.0, false},
    {4, "UnitDollar", UnitTypeCurrency, L"dollar", L"dol", L"$", 1.0, 0.0, false},
    {5, "UnitAmp", UnitTypeCurrent, L"ampere", L"A", L"", 1.0, 0.0, true},
    {6, "UnitMeter", UnitTypeLength, L"meter", L"m", L"", 100.0, 0.0, true},
    {7, "UnitMicron", UnitTypeLength, L"micron", L"micron", L"\u00B5", 0.0001, 0.0, false},
    {8, "UnitInch", UnitTypeLength, L"inch", L"in", L"\"", 2.54, 0.0, false},
    {9, "UnitFoot", UnitTypeLength, L"foot", L"ft", L"", 30.48, 0.0, false},
    {10, "UnitYard", UnitTypeLength, L"yard", L"yd", L"", 91.44, 0.0, false},
    {11, "UnitMile", UnitTypeLength, L"mile", L"mi", L"", 160934.4, 0.0, false},
    {12, "UnitNauticalMile", UnitTypeLength, L"nauticalMile", L"nauticalMile", L"", 185200.0, 0.0, false},
    {13, "UnitMil", UnitTypeLength, L"mil", L"mil", L"", 0.00254, 0.0, false},
    {14, "UnitCandela", UnitTypeLuminosity, L"candela", L"cd", L"", 1.0, 0.0, true},
    {15, "UnitGram", UnitTypeMass, L"gram", L"g", L"", 0.001, 0.0, true},
    {16, "UnitSlug", UnitTypeMass, L"slug", L"slug", L"", 14.5939, 0.0, false},
    {17, "UnitPoundMass", UnitTypeMass, L"lbmass", L"lbmass", L"", 0.4535924, 0.0, false},
    {18, "UnitOunceMass", UnitTypeMass, L"ouncemass", L"ouncemass", L"", 0.028349525, 0.0, false},
    {19, "UnitTonMass", UnitTypeMass, L"tonmass", L"tonmass", L"", 907.1848, 0.0, false},
    {20, "UnitMole", UnitTypeSubstance, L"Mole", L"mole", L"", 1.0, 0.0, true},
    {21, "UnitKelvin", UnitTypeTemperature, L"kelvin", L"K", L"", 1.0, 0.0, true},
    {22, "UnitCelsius", UnitTypeTemperature, L"celsius", L"C", L"", 1.0, 273.16, false},
    {23, "UnitFarenheit", UnitTypeTemperature, L"farenheit", L"F", L"", 0.5555555555555556, 255.38222222222225, false},
    {24, "UnitSecond", UnitTypeTime, L"second", L"s", L"", 1.0, 0.0, true},
    {25, "UnitMinute", UnitTypeTime, L"minute", L"min", L"", 60.0, 0.0, false},
    {26, "UnitHour", UnitTypeTime, L"hour", L"hr", L"", 3600.0, 0.0, false},
    {27, "UnitSteradian", UnitTypeSolidAngle, L"steradian", L"sr", L"", 1.0, 0.0, true},
    {28, "UnitMetersPerSecond", UnitTypeSpeed, L"MetersPerSecond", L"mps", L"", 100.0, 0.0, true},
    {29, "UnitFeetPerSecond", UnitTypeSpeed, L"FeetPerSecond", L"fps", L"", 30.48, 0.0, false},
    {30, "UnitMilesPerHour", UnitTypeSpeed, L"MilesPerHour", L"mph", L"", 44.704, 0.0, false},
    {31, "UnitAcre", UnitTypeArea, L"acre", L"acre", L"", 40467730.0, 0.0, false},
    {32, "UnitCircularMil", UnitTypeArea, L"circular_mil", L"circular_mil", L"", 5.0670754e-06, 0.0, false},
    {33, "UnitLiter", UnitTypeVolume, L"liter", L"l", L"", 1000.0, 0.0, true},
    {34, "UnitGallon", UnitTypeVolume, L"gallon", L"gal", L"", 3785.432, 0.0, false},
    {35, "UnitQuart", UnitTypeVolume, L"quart", L"qt", L"", 946.358, 0.0, false},
    {36, "UnitPint", UnitTypeVolume, L"pint", L"pt", L"", 473.179, 0.0, false},
    {37, "UnitCup", UnitTypeVolume, L"cup", L"cup", L"", 236.5895, 0.0, false},
    {38, "UnitOunceVolume", UnitTypeVolume, L"ouncevolume", L"fl_oz", L"", 29.5736875, 0.0, false},
    {39, "UnitPascal", UnitTypePressure, L"pascal", L"Pa", L"", 0.01, 0.0, true},
    {40, "UnitPSI", UnitTypePressure, L"psi", L"psi", L"", 68.9, 0.0, false},
    {41, "UnitKSI", UnitTypePressure, L"ksi", L"ksi", L"", 68900.0, 0.0, false},
    {42, "UnitBar", UnitTypePressure, L"bar", L"bar", L"", 1000.0, 0.0, true},
    {43, "UnitNewton", UnitTypeForce, L"newton", L"N", L"", 100.0, 0.0, true},
    {44, "UnitDyne", UnitTypeForce, L"dyne", L"dyne", L"", 0.001, 0.0, false},
    {45, "UnitLbForce", UnitTypeForce, L"lbforce", L"lbforce", L"", 444.8222, 0.0, false},
    {46, "UnitOunceForce", UnitTypeForce, L"ounceforce", L"ounceforce", L"", 27.8013875, 0.0, false},
    {47, "UnitTonForce", UnitTypeForce, L"tonforce", L"tonforce", L"", 889644.4, 0.0, false},
    {48, "UnitWatt", UnitTypePower, L"watt", L"W", L"", 10000.0, 0.0, true},
    {49, "UnitHorsePower", UnitTypePower, L"horsepower", L"hp", L"", 7457000.0, 0.0, false},
    {50, "UnitJoule", UnitTypeEnergy, L"joule", L"J", L"", 10000.0, 0.0, true},
    {51, "UnitErg", UnitTypeEnergy, L"erg", L"erg", L"", 0.001, 0.0, false},
    {52, "UnitCalorie", UnitTypeEnergy, L"calorie", L"calorie", L"", 41840.0, 0.0, false},
    {53, "UnitBTU", UnitTypeEnergy, L"Btu", L"Btu", L"", 10546000.0, 0.0, false},
    {54, "UnitRpm", UnitTypeAngularVelocity, L"rpm", L"rpm", L"", 0.10471975511965977, 0.0, true},
    {55, "UnitLumen", UnitTypeLuminousFlux, L"lumen", L"lm", L"", 1.0, 0.0, true},
    {56, "UnitLux", UnitTypeIlluminance, L"lux", L"lx", L"", 0.0001, 0.0, true},
    {57, "UnitVolt", UnitTypeElectromotiveForce, L"volt", L"V", L"", 10000.0, 0.0, true},
    {58, "UnitOhm", UnitTypeResistance, L"ohm", L"ohm", L"", 10000.0, 0.0, true},
    {59, "UnitCoulomb", UnitTypeCharge, L"coulomb", L"coulomb", L"", 1.0, 0.0, true},
    {60, "UnitFarad", UnitTypeCapacitance, L"farad", L"farad", L"", 0.0001, 0.0, true},
    {61, "UnitSiemens", UnitTypeConductance, L"siemens", L"S", L"", 0.0001, 0.0, true},
    {62, "UnitMho", UnitTypeConductance, L"mho", L"mho", L"", 0.0001, 0.0, true},
    {63, "UnitWeber", UnitTypeMagneticFlux, L"weber", L"Wb", L"", 10000.0, 0.0, true},
    {64, "UnitMaxwell", UnitTypeMagneticFlux, L"maxwell", L"maxwell", L"", 0.0001, 0.0, false},
    {65, "UnitTesla", UnitTypeMagneticField, L"tesla", L"T", L"", 1.0, 0.0, true},
    {66, "UnitGamma", UnitTypeMagneticField, L"gamma", L"gamma", L"", 1e-09, 0.0, false},
    {67, "UnitGauss", UnitTypeMagneticField, L"gauss", L"gauss", L"", 0.0001, 0.0, false},
    {68, "UnitHenry", UnitTypeInductance, L"henry", L"H", L"", 10000.0, 0.0, true},
    {69, "UnitOersted", UnitTypeMagnetizingField, L"oersted", L"oersted", L"", 0.79577472, 0.0, true},
    {70, "UnitHertz", UnitTypeFrequency, L"hertz", L"Hz", L"", 1.0, 0.0, true},
    {71, "UnitPoise", UnitTypeViscosity, L"poise", L"poise", L"", 0.001, 0.0, true},
};
// clang-format on

// How many units of the catalogue take prefixes.
inline constexpr int c_unitsWithMagnitudes = 30;

struct PrefixRow {
    double magnitude;
    wchar_t const * name;
    wchar_t const * abbreviation;
};

inline constexpr PrefixRow c_prefixes[] = {
    {1e18, L"exa", L"E"},    {1e15, L"peta", L"P"},   {1e12, L"tera", L"T"},
    {1e9, L"giga", L"G"},    {1e6, L"mega", L"M"},    {1000.0, L"kilo", L"k"},
    {100.0, L"hecto", L"h"}, {10.0, L"deca", L"da"},  {0.1, L"deci", L"d"},
    {0.01, L"centi", L"c"},  {0.001, L"milli", L"m"}, {1e-6, L"micro", L"micro"},
    {1e-9, L"nano", L"n"},   {1e-12, L"pico", L"p"},  {1e-15, L"femto", L"f"},
    {1e-18, L"atto", L"a"},
};

struct KindRow {
    int number;
    ESimpleUnitType type;
    char const * key;
    wchar_t const * text;
};

// clang-format off
inline constexpr KindRow c_kinds[] = {
    {0, UnitTypeLength, "UnitTypeLength", L"Length"},
    {1, UnitTypeMass, "UnitTypeMass", L"Mass"},
    {2, UnitTypeTime, "UnitTypeTime", L"Time"},
    {3, UnitTypeTemperature, "UnitTypeTemperature", L"Temperature"},
    {4, UnitTypeCurrent, "UnitTypeCurrent", L"Current"},
    {5, UnitTypeSubstance, "UnitTypeSubstance", L"Substance"},
    {6, UnitTypeLuminosity, "UnitTypeLuminosity", L"Luminosity"},
    {7, UnitTypeAngle, "UnitTypeAngle", L"Angle"},
    {8, UnitTypeCurrency, "UnitTypeCurrency", L"Currency"},
    {9, UnitTypeSolidAngle, "UnitTypeSolidAngle", L"SolidAngle"},
    {10, UnitTypeSpeed, "UnitTypeSpeed", L"Speed"},
    {11, UnitTypeArea, "UnitTypeArea", L"Area"},
    {12, UnitTypeVolume, "UnitTypeVolume", L"Volume"},
    {13, UnitTypePressure, "UnitTypePressure", L"Pressure"},
    {14, UnitTypeForce, "UnitTypeForce", L"Force"},
    {15, UnitTypePower, "UnitTypePower", L"Power"},
    {16, UnitTypeEnergy, "UnitTypeEnergy", L"Energy"},
    {17, UnitTypeAngularVelocity, "UnitTypeAngularVelocity", L"AngularVelocity"},
    {18, UnitTypeLuminousFlux, "UnitTypeLuminousFlux", L"LuminousFlux"},
    {19, UnitTypeIlluminance, "UnitTypeIlluminance", L"Illuminance"},
    {20, UnitTypeElectromotiveForce, "UnitTypeElectromotiveForce", L"ElectromotiveForce"},
    {21, UnitTypeResistance, "UnitTypeResistance", L"Resistance"},
    {22, UnitTypeCharge, "UnitTypeCharge", L"Charge"},
    {23, UnitTypeCapacitance, "UnitTypeCapacitance", L"Capacitance"},
    {24, UnitTypeConductance, "UnitTypeConductance", L"Conductance"},
    {25, UnitTypeMagneticFlux, "UnitTypeMagneticFlux", L"MagneticFlux"},
    {26, UnitTypeMagneticField, "UnitTypeMagneticField", L"MagneticField"},
    {27, UnitTypeInductance, "UnitTypeInductance", L"Inductance"},
    {28, UnitTypeMagnetizingField, "UnitTypeMagnetizingField", L"MagnetizingField"},
    {29, UnitTypeFrequency, "UnitTypeFrequency", L"Frequency"},
    {30, UnitTypeViscosity, "UnitTypeViscosity", L"Viscosity"},
};
// clang-format on

// What the internal unit of a base kind is, or of a composite kind how its internal product is
// written out for diagnostics.
struct BaseKindRow {
    ESimpleUnitType type;
    char const * identifier;
    double magnitude;
};

inline constexpr BaseKindRow c_baseKindRows[] = {
    {UnitTypeLength, "UnitMeter", 0.01},      {UnitTypeMass, "UnitGram", 1000.0},
    {UnitTypeTime, "UnitSecond", 1.0},        {UnitTypeTemperature, "UnitKelvin", 1.0},
    {UnitTypeCurrent, "UnitAmp", 1.0},        {UnitTypeSubstance, "UnitMole", 1.0},
    {UnitTypeLuminosity, "UnitCandela", 1.0}, {UnitTypeAngle, "UnitRadian", 1.0},
    {UnitTypeCurrency, "UnitDollar", 1.0},
};

struct CompositeKindRow {
    ESimpleUnitType type;
    wchar_t const * numerator; // abbreviations, separated by blanks
    wchar_t const * denominator;
    wchar_t const * toString;
};

// clang-format off
inline constexpr CompositeKindRow c_compositeKindRows[] = {
    {UnitTypeSolidAngle, L"", L"", L"(1) / (1)"},
    {UnitTypeSpeed, L"cm", L"s", L"(centimeter) / (second)"},
    {UnitTypeArea, L"cm cm", L"", L"(centimeter*centimeter) / (1)"},
    {UnitTypeVolume, L"cm cm cm", L"", L"(centimeter*centimeter*centimeter) / (1)"},
    {UnitTypePressure, L"kg", L"cm s s", L"(kilogram) / (centimeter*second*second)"},
    {UnitTypeForce, L"kg cm", L"s s", L"(kilogram*centimeter) / (second*second)"},
    {UnitTypePower, L"kg cm cm", L"s s s", L"(kilogram*centimeter*centimeter) / (second*second*second)"},
    {UnitTypeEnergy, L"kg cm cm", L"s s", L"(kilogram*centimeter*centimeter) / (second*second)"},
    {UnitTypeAngularVelocity, L"rad", L"s", L"(radian) / (second)"},
    {UnitTypeLuminousFlux, L"cd", L"", L"(candela) / (1)"},
    {UnitTypeIlluminance, L"cd", L"cm cm", L"(candela) / (centimeter*centimeter)"},
    {UnitTypeElectromotiveForce, L"cm cm kg", L"A s s s", L"(centimeter*centimeter*kilogram) / (ampere*second*second*second)"},
    {UnitTypeResistance, L"cm cm kg", L"A A s s s", L"(centimeter*centimeter*kilogram) / (ampere*ampere*second*second*second)"},
    {UnitTypeCharge, L"A s", L"", L"(ampere*second) / (1)"},
    {UnitTypeCapacitance, L"s s s s A A", L"cm cm kg", L"(second*second*second*second*ampere*ampere) / (centimeter*centimeter*kilogram)"},
    {UnitTypeConductance, L"A A s s s", L"cm cm kg", L"(ampere*ampere*second*second*second) / (centimeter*centimeter*kilogram)"},
    {UnitTypeMagneticFlux, L"cm cm kg", L"A s s", L"(centimeter*centimeter*kilogram) / (ampere*second*second)"},
    {UnitTypeMagneticField, L"kg", L"A s s", L"(kilogram) / (ampere*second*second)"},
    {UnitTypeInductance, L"cm cm kg", L"A A s s", L"(centimeter*centimeter*kilogram) / (ampere*ampere*second*second)"},
    {UnitTypeMagnetizingField, L"A", L"cm", L"(ampere) / (centimeter)"},
    {UnitTypeFrequency, L"", L"s", L"(1) / (second)"},
    {UnitTypeViscosity, L"kg", L"cm s", L"(kilogram) / (centimeter*second)"},
};
// clang-format on

} // namespace Vn::Units::UnitTables

#endif
