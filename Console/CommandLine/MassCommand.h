// vnconsole mass: the mass properties of a box.

#ifndef VN_CONSOLE_COMMANDLINE_MASSCOMMAND_H
#define VN_CONSOLE_COMMANDLINE_MASSCOMMAND_H

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "Console/Documents/DocumentUnits.h"

namespace Vn::Console {

struct MassOptions {
    std::vector<std::wstring> edges;      // three lengths
    std::wstring density;                 // of what the box is made of
    std::optional<std::wstring> material; // and its name
    std::vector<std::wstring> overrides;  // "mass=1 kg"
    DocumentUnits units;                  // in which the document shows them
    bool json = false;
};

// Shows material, volume, area, mass and density.  Bare numbers are in the units in which these are
// shown.  An override of the mass changes the density, one of the density or the volume the mass.
int runMass(MassOptions const & options, std::ostream & out, std::ostream & err);

} // namespace Vn::Console

#endif
