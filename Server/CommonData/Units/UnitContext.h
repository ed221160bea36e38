// In which units a result is wanted, and which defaults hold for what a text leaves open: a bare
// "2" in a field for lengths means centimetres if the context expects `cm`.
//
// A context of an empty unit expects a unitless result, which isn't the same as expecting nothing.
// A context is a value and doesn't change once built; several threads may read one.

#ifndef VN_SERVER_COMMONDATA_UNITS_UNITCONTEXT_H
#define VN_SERVER_COMMONDATA_UNITS_UNITCONTEXT_H

#include <optional>
#include <string>
#include <string_view>

#include "Platform/Base/RefCounted.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/UnitTypes.h"

namespace Vn::Units {

class SimpleUnit;
class UnitSystem;

class VN_COMMONDATA_API UnitContext {
public:
    // Expects nothing.
    UnitContext();
    UnitContext(UnitContext const & other);
    UnitContext & operator=(UnitContext const & other);
    ~UnitContext();
    // Expects that unit, which must not be null.
    explicit UnitContext(SimpleUnit const * units);
    // Expects a copy of that unit, which must not be null.
    explicit UnitContext(ComplexUnit const * units);
    // Expects what the text, such as "m / (s s)", parses to; nothing if it doesn't parse.  An empty
    // text expects a unitless result.
    explicit UnitContext(std::wstring const & text);
    // The same for UTF-8; broken UTF-8 doesn't parse.
    explicit UnitContext(std::string_view utf8);
    // Expects nothing by itself; what a text leaves open is asked of `system`, which may be empty.
    explicit UnitContext(StrongRef<UnitSystem> const & system);

    // In a document: `system` may replace what the caller asks for, once, when the context is made.
    // An empty system replaces nothing.  A choice of the system for the kind of a simple unit, or
    // for the dimension of another, goes before that unit; without one the unit is translated into
    // the base units that the system has chosen, if it has them all; else it is what is expected.

    // As the three above with that one unit, which must not be null, or that text.
    UnitContext(StrongRef<UnitSystem> const & system, SimpleUnit const * units);
    UnitContext(StrongRef<UnitSystem> const & system, ComplexUnit const * units);
    UnitContext(StrongRef<UnitSystem> const & system, std::wstring const & text);
    // The same, where a choice of the system by the identifier `id` goes before everything,
    // whatever its dimension.  A simple unit may be null: then nothing is expected unless there is
    // such a choice.  A text isn't read if there is one.
    UnitContext(StrongRef<UnitSystem> const & system, std::string const & id,
                SimpleUnit const * units);
    UnitContext(StrongRef<UnitSystem> const & system, std::string const & id,
                ComplexUnit const * units);
    UnitContext(StrongRef<UnitSystem> const & system, std::string const & id,
                std::wstring const & text);

    // The unit that a text is, such as "kg m / s^2" or "/ s"; none if it isn't one.  An empty text
    // is the empty unit.  Stricter than the constructors, which take the units of any expression
    // after a "1": "cm * 2" and "m + 3 m" are no units here, and neither are the marks of feet and
    // inches, which belong to a number.
    static std::optional<ComplexUnit> parse(std::wstring_view text);
    static std::optional<ComplexUnit> parse(std::string_view utf8);

    // Whether a unit, or a unitless result, is expected.
    bool hasExpectedUnits() const { return m_bHasExpectedUnits; }
    // Null if nothing is expected.
    ComplexUnit const * expectedUnits() const {
        return m_bHasExpectedUnits ? &m_expectedUnits : nullptr;
    }
    // A copy for the caller, who ends it with ComplexUnit::destroy.  To be called only if something
    // is expected.
    ComplexUnit * cloneExpectedUnits() const;
    // The unit, if the expected units are one simple unit; else null.
    SimpleUnit const * findSimpleExpectedUnits() const;

    // The system that is asked for defaults; null if there is none.  The context keeps it, also
    // when its document is closed.
    StrongRef<UnitSystem> activeUnitSystem() const;

    // The unit in which a value of the dimension of `units` is shown.  False, with `out` untouched,
    // if there is none.
    bool findDefault(ComplexUnit const & units, ComplexUnit & out) const;
    // The default simple unit of a kind; null if there is none, and if the system's is a product.
    SimpleUnit const * findDefault(ESimpleUnitType type) const;

private:
    bool takeChoice(std::string const & id);
    void complete();

    StrongRef<UnitSystem> m_rActiveUnitSystem;
    ComplexUnit m_expectedUnits;
    bool m_bHasExpectedUnits = false;
};

} // namespace Vn::Units

#endif
