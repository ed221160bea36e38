#ifndef VN_PLATFORM_TYPES_PHYSICALMATERIAL_H
#define VN_PLATFORM_TYPES_PHYSICALMATERIAL_H

#include <string>
#include <utility>

namespace Vn {

// What a body is made of.
class PhysicalMaterial {
public:
    // A name for the user, and a density in internal units (kg/cm^3).
    PhysicalMaterial(std::wstring name, double density)
        : m_name(std::move(name)), m_density(density) {}

    // What the constructor was given.
    std::wstring const & name() const noexcept { return m_name; }
    double density() const noexcept { return m_density; }

private:
    std::wstring m_name;
    double m_density;
};

} // namespace Vn

#endif
