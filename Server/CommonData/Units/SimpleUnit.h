// One named unit, with or without a magnitude: a metre, a kilometre, an inch.
//
// The catalogue object of a class has the magnitude 1.0; one with another magnitude is a clone,
// made and kept by the registry, so that one class and one magnitude are always one object.

#ifndef VN_SERVER_COMMONDATA_UNITS_SIMPLEUNIT_H
#define VN_SERVER_COMMONDATA_UNITS_SIMPLEUNIT_H

#include <string>

#include "Platform/Base/Shared.h"
#include "Platform/Types/GlobalizedString.h"
#include "Server/CommonData/Units/Unit.h"

namespace Vn::Units {

class ComplexUnit;
class SimpleUnitRegistry;

class VN_COMMONDATA_API SimpleUnit : public Unit {
public:
    SimpleUnit(SimpleUnit const &) = delete;
    SimpleUnit & operator=(SimpleUnit const &) = delete;
    ~SimpleUnit() override;

    // The multiplier of the unit: 1.0 for the catalogue object, 1000.0 for a kilo.
    double magnitude() const { return m_magnitude; }

    // The factor and the offset to internal units; the magnitude is not in them.
    double internalConversionFactor() const { return onInternalConversionFactor(); }
    double internalConversionOffset() const { return onInternalConversionOffset(); }

    // Whether the unit takes prefixes.
    bool supportsMagnitude() const { return onSupportsMagnitude(); }

    // The class of the unit: two units are of one class exactly if these pointers are equal.  The
    // text is the name of the class; the addresses rise in catalogue order.
    std::string const * identifier() const { return onIdentifier(); }

    // The kind of quantity that the unit measures.
    ESimpleUnitType simpleUnitType() const { return onSimpleUnitType(); }

    // The name of the kind of quantity ("Length"), in the user's language.
    std::wstring simpleUnitTypeName() const;
    GlobalizedString globalizedSimpleUnitTypeName() const;
    static GlobalizedString globalizedSimpleUnitTypeName(ESimpleUnitType type);

    // The conversions of the magnitude and factor alone, as they count in a product of units.
    double toInternalNoOffset(double value) const {
        return (onInternalConversionFactor() * m_magnitude) * value;
    }
    double toThisUnitNoOffset(double value) const {
        return value / (onInternalConversionFactor() * m_magnitude);
    }

    // Whether the unit has a symbol besides its name and abbreviation.
    bool hasSymbol() const { return !onSymbol().empty(); }

    // The texts of the unit after the prefix of its magnitude: "kilometer", "km"; for the symbol
    // the settings choose between the long prefix and the short one.
    std::wstring name(UnitDisplaySettings const & settings) const;
    std::wstring abbreviation(UnitDisplaySettings const & settings) const;
    std::wstring symbol(UnitDisplaySettings const & settings) const;

    // The name in the system's own language, with an English prefix whatever the user's language
    // is: what documents keep.
    std::wstring defaultName() const;

    // The one of the three that the settings ask for.
    std::wstring displayString(UnitDisplaySettings const & settings) const;
    void appendDisplayString(std::wstring & text, UnitDisplaySettings const & settings) const;

    // The unit as a ComplexUnit of one entry: shared, complete, safe to read from any thread.
    ComplexUnit const & asComplexUnit() const;

protected:
    // A catalogue object: magnitude 1.0, handed to the registry.
    SimpleUnit();

    // A clone: not registered by itself.
    explicit SimpleUnit(double magnitude);

private:
    friend class SimpleUnitRegistry;

    double onToInternal(double value) const final;
    double onToThisUnit(double value) const final;
    void onAppendReconstruction(std::wstring & text, double value, EUnitDisplayMode mode,
                                UnitDisplaySettings const & settings) const final;
    bool onIsSimple() const final { return true; }

    virtual std::string const * onIdentifier() const = 0;
    virtual double onInternalConversionFactor() const = 0;
    // 0 unless a class says otherwise.
    virtual double onInternalConversionOffset() const;
    virtual std::wstring const & onName() const = 0;
    virtual std::wstring const & onAbbreviation() const = 0;
    // Empty unless a class has one.
    virtual std::wstring const & onSymbol() const;
    // A new object of the class, kept to the end of the process; null for a class without
    // magnitudes, which needs no override.
    virtual SimpleUnit const * onClone(double magnitude) const;
    virtual bool onSupportsMagnitude() const = 0;
    virtual ESimpleUnitType onSimpleUnitType() const = 0;

    SimpleUnit const * clone(double magnitude) const { return onClone(magnitude); }

    // Empty where the magnitude has no prefix.
    std::wstring const & prefix(UnitDisplaySettings const & settings) const;
    std::wstring const & prefixName() const;
    std::wstring const & prefixAbbreviation() const;

    double m_magnitude;
    mutable Shared<ComplexUnit const> m_asComplexUnit;
};

} // namespace Vn::Units

#endif
