// The unit systems of a document, as a person names them.

#ifndef VN_CONSOLE_DOCUMENTS_UNITSYSTEMS_H
#define VN_CONSOLE_DOCUMENTS_UNITSYSTEMS_H

#include <optional>
#include <string>

#include "Platform/DataModel/Segment.h"
#include "Server/CommonData/Units/ComplexUnit.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"

namespace Vn::Console {

// The system that the document's settings have active; null if there is none.
StrongRef<Units::UnitSystem> activeUnitSystem(Segment * segment);

// Finds the system with an identifier; without one, the active system, or else the only one that
// there is.  The answer is empty, or says why there is none; `system` is then left as it was.
std::wstring findUnitSystem(Segment * segment, std::optional<std::wstring> const & id,
                            StrongRef<Units::UnitSystem> & system);

// The system in whose units the document's own values are shown: as above, and null in a document
// that has no unit systems.
std::wstring findShownSystem(Segment * segment, StrongRef<Units::UnitSystem> & system);

// Finds a choice by its number, by its kind in the user's language or in English, in any case, or
// by its key.  As above.
std::wstring findUnitChoice(Units::UnitSystem const & system, std::wstring const & which,
                            StrongRef<Units::UnitSystemChoice> & choice);

// Reads a unit that a document keeps as it is.  As above.
std::wstring readKeptUnit(std::wstring const & text, Units::ComplexUnit & units);

// The kind of quantity with that name in the user's language or in English, in any case, in the way
// of the above.
std::wstring findUnitKind(std::wstring const & name, Units::ESimpleUnitType & kind);

// What a choice is for: its kind, or its key.
std::wstring purposeOf(Units::UnitSystemChoice const & choice);

} // namespace Vn::Console

#endif
