// What parts can be made of.

#ifndef VN_SAMPLES_BLOCKS_MATERIALS_H
#define VN_SAMPLES_BLOCKS_MATERIALS_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Base/Status.h"
#include "Platform/Types/Color.h"
#include "Platform/Types/PhysicalMaterial.h"

namespace Vn::Blocks {

// A line of the table.
class Material : public PhysicalMaterial {
public:
    // The key in documents and commands; the name in English, which shownMaterial() translates; the
    // density in kg/cm^3, above 0; the colour in which parts show.
    Material(std::string key, std::wstring const & name, double density, Color const & color);

    // What the constructor was given.
    std::string const & key() const noexcept { return m_key; }
    Color const & color() const noexcept { return m_color; }

private:
    std::string m_key;
    Color m_color;
};

// What parts are made of unless something else is said.
inline constexpr char c_defaultMaterial[] = "steel";

// The materials of the file Server/Blocks/Materials.xml, which is read at the first
// call, in its order.  None if it can't be read: materialsStatus() tells why.  They stay as long as
// the module.  Any thread may ask.
std::vector<Material> const & materials();
Status const & materialsStatus();

// The material with a key; null if there is none.
Material const * findMaterial(std::string_view key);

// The name of a material in the language that the user has now.
std::wstring shownMaterial(PhysicalMaterial const & material);

} // namespace Vn::Blocks

#endif
