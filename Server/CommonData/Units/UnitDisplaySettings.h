// How a number and its unit are turned into text: a plain record of sixteen fields.
//
// Two instances exist.  get() is the user's preference, which the options rewrite; standard() is
// the factory setting, which nothing changes.  A new record can be had only as a copy of one of
// them: take a copy, change a few fields, pass it down.
//
// Setters store what they are given, without a check of range; what formats a value copes with any
// value.  The instances are made under a lock; the user's record is read and written without one.

#ifndef VN_SERVER_COMMONDATA_UNITS_UNITDISPLAYSETTINGS_H
#define VN_SERVER_COMMONDATA_UNITS_UNITDISPLAYSETTINGS_H

#include "Server/CommonData/Export.h"

namespace Vn::Units {

// How feet and inches are written.  The numbers are stored by hosts.
enum ELengthDisplay : int { LengthDecimal = 0, LengthFractional = 1, LengthArchitectural = 2 };

// How fractions of a degree are written.
enum EDegreeDisplay : int { DegreeDecimal = 0, DegreeDegMinSec = 1 };

class VN_COMMONDATA_API UnitDisplaySettings {
public:
    // Length units for new documents.
    enum UNIT_TYPE { Millimeter = 0, Centimeter = 1, Meter = 2, Inch = 3, Foot = 4 };

    // The user's record, and the factory's; both live to the end of the process.
    static UnitDisplaySettings const & get();
    static UnitDisplaySettings const & standard();
    // The same object as get(), for writing.
    static UnitDisplaySettings & userEditableSettings() { return editableGet(); }

    // Any stored value but 1 to 4 reads as Millimeter.
    UNIT_TYPE generalUnit() const;
    void generalUnit(short unit) { m_generalUnit = static_cast<unsigned short>(unit); }

    // Decimals of a general value, of a value in degrees, of a mantissa.
    short generalPrecision() const { return m_generalPrecision; }
    void generalPrecision(short decimals) { m_generalPrecision = decimals; }
    short angularPrecision() const { return m_angularPrecision; }
    void angularPrecision(short decimals) { m_angularPrecision = decimals; }
    short scientificPrecision() const { return m_scientificPrecision; }
    void scientificPrecision(short decimals) { m_scientificPrecision = decimals; }

    // How feet and inches, and how fractions of a degree are written.
    ELengthDisplay lengthDisplay() const { return m_lengthDisplay; }
    void lengthDisplay(ELengthDisplay display) { m_lengthDisplay = display; }
    EDegreeDisplay degreeDisplay() const { return m_degreeDisplay; }
    void degreeDisplay(EDegreeDisplay display) { m_degreeDisplay = display; }

    // Powers ("m^3") or repeated factors ("m m m").
    bool compressUnits() const { return m_compressUnits; }
    void compressUnits(bool compress) { m_compressUnits = compress; }

    // Whether big and small values may be written with an exponent.
    bool scientificNotation() const { return m_scientificNotation; }
    void scientificNotation(bool allowed) { m_scientificNotation = allowed; }

    // "1.500" or "1,500".
    bool isDecimalPointFullStop() const { return m_decimalPointIsFullStop; }
    void decimalPointIsFullStop(bool fullStop) { m_decimalPointIsFullStop = fullStop; }
    void useFullStopAsDecimalPoint() { m_decimalPointIsFullStop = true; }
    void useCommaAsDecimalPoint() { m_decimalPointIsFullStop = false; }

    // The symbol goes before the abbreviation, and that before the name.
    bool shouldDisplayAbbreviation() const { return m_displayAbbreviated; }
    void displayAbbreviated(bool abbreviated) { m_displayAbbreviated = abbreviated; }
    bool shouldDisplaySymbol() const { return m_displaySymbol; }
    void displaySymbol(bool symbol) { m_displaySymbol = symbol; }

    // The format comes from a number as it was typed and not from the user.
    bool specifiedByNode() const { return m_specifiedByNode; }
    void specifiedByNode(bool specified) { m_specifiedByNode = specified; }

    // 4.020 as 4.02, down to the minimum of decimals.
    bool hideTrailingZeroes() const { return m_hideTrailingZeroes; }
    void hideTrailingZeroes(bool hide) { m_hideTrailingZeroes = hide; }
    short minimumPrecision() const { return m_minimumPrecision; }
    void minimumPrecision(short decimals) { m_minimumPrecision = decimals; }

    // Absolute values beyond these are written with an exponent, where that is allowed.
    double useScientificNotationAboveThreshold() const { return m_aboveThreshold; }
    void useScientificNotationAboveThreshold(double value) { m_aboveThreshold = value; }
    double useScientificNotationBelowThreshold() const { return m_belowThreshold; }
    void useScientificNotationBelowThreshold(double value) { m_belowThreshold = value; }

private:
    UnitDisplaySettings() = default;

    static UnitDisplaySettings & editableGet();

    unsigned short m_generalUnit = 0;
    short m_generalPrecision = 3;
    short m_angularPrecision = 1;
    short m_scientificPrecision = 3;
    ELengthDisplay m_lengthDisplay = LengthDecimal;
    EDegreeDisplay m_degreeDisplay = DegreeDecimal;
    bool m_compressUnits = true;
    bool m_scientificNotation = true;
    bool m_decimalPointIsFullStop = true;
    bool m_displayAbbreviated = true;
    bool m_displaySymbol = false;
    bool m_specifiedByNode = false;
    bool m_hideTrailingZeroes = true;
    short m_minimumPrecision = 2;
    double m_aboveThreshold = 10000.0;
    double m_belowThreshold = 0.001;
};

} // namespace Vn::Units

#endif
