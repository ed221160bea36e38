// Points, vectors and matrices of three-dimensional space.  Lengths are in internal units (cm).

#ifndef VN_PLATFORM_GEOMETRY_TG_H
#define VN_PLATFORM_GEOMETRY_TG_H

#include <array>

#include "Platform/Geometry/Export.h"

// When two positions or two directions count as the same.
class TG_API TgTol {
public:
    // The distance of points, and the difference of unit vectors; both at least 0.
    constexpr TgTol(double equalPoint = 1e-10, double equalVector = 1e-10) noexcept
        : m_equalPoint(equalPoint), m_equalVector(equalVector) {}

    // What the constructor was given.
    constexpr double equalPoint() const noexcept { return m_equalPoint; }
    constexpr double equalVector() const noexcept { return m_equalVector; }

private:
    double m_equalPoint;
    double m_equalVector;
};

// What the geometry takes where nothing else is said.
class TG_API TgContext {
public:
    // The tolerance: 1e-10 for both.
    static TgTol const gTol;
};

// A direction with a length.
class TG_API TgVector3d {
public:
    // The zero vector, or one with these components.
    constexpr TgVector3d() noexcept = default;
    constexpr TgVector3d(double ofX, double ofY, double ofZ) noexcept : x(ofX), y(ofY), z(ofZ) {}

    // The axes, and no direction at all.
    static TgVector3d const kIdentity;
    static TgVector3d const kXAxis;
    static TgVector3d const kYAxis;
    static TgVector3d const kZAxis;

    // The length, and the products of two vectors.
    double length() const noexcept;
    double dotProduct(TgVector3d const & other) const noexcept;
    TgVector3d crossProduct(TgVector3d const & other) const noexcept;
    // The vector of length 1 in this direction.  One whose length is within the tolerance of a
    // vector has none, and comes back as it is.
    TgVector3d normal(TgTol const & tolerance = TgContext::gTol) const noexcept;
    // Whether the length of the difference is within the tolerance.
    bool isEqualTo(TgVector3d const & other,
                   TgTol const & tolerance = TgContext::gTol) const noexcept;

    // By components.
    TgVector3d operator-() const noexcept { return {-x, -y, -z}; }
    TgVector3d operator+(TgVector3d const & other) const noexcept {
        return {x + other.x, y + other.y, z + other.z};
    }
    TgVector3d operator-(TgVector3d const & other) const noexcept {
        return {x - other.x, y - other.y, z - other.z};
    }
    TgVector3d operator*(double factor) const noexcept {
        return {x * factor, y * factor, z * factor};
    }
    // Equal within the default tolerance, as `isEqualTo` without another: -0 is 0, and a vector
    // with a NaN or an infinity differs from every vector.  Not an equivalence: steps below the
    // tolerance add up.
    bool operator==(TgVector3d const & other) const noexcept { return isEqualTo(other); }

    // The components.
    double x = 0;
    double y = 0;
    double z = 0;
};

// A place.
class TG_API TgPoint3d {
public:
    // The origin, or the place with these coordinates.
    constexpr TgPoint3d() noexcept = default;
    constexpr TgPoint3d(double atX, double atY, double atZ) noexcept : x(atX), y(atY), z(atZ) {}

    // The place (0, 0, 0).
    static TgPoint3d const kOrigin;

    // The length of the way to the other, in cm.
    double distanceTo(TgPoint3d const & other) const noexcept { return (*this - other).length(); }
    // Whether the distance is within the tolerance.
    bool isEqualTo(TgPoint3d const & other,
                   TgTol const & tolerance = TgContext::gTol) const noexcept {
        return distanceTo(other) <= tolerance.equalPoint();
    }
    // The way from the origin.
    TgVector3d asVector() const noexcept { return {x, y, z}; }

    // The place at the end of a way, and the way between two places.
    TgPoint3d operator+(TgVector3d const & way) const noexcept {
        return {x + way.x, y + way.y, z + way.z};
    }
    TgPoint3d operator-(TgVector3d const & way) const noexcept {
        return {x - way.x, y - way.y, z - way.z};
    }
    TgVector3d operator-(TgPoint3d const & other) const noexcept {
        return {x - other.x, y - other.y, z - other.z};
    }
    // Equal within the default tolerance, as of vectors.
    bool operator==(TgPoint3d const & other) const noexcept { return isEqualTo(other); }

    // The coordinates, in cm.
    double x = 0;
    double y = 0;
    double z = 0;
};

// A map of space: rotation, scale and translation, as four rows of four that act on columns.
class TG_API TgMatrix3d {
public:
    // The map that changes nothing.
    TgMatrix3d() noexcept;

    // The map that changes nothing, and one that shifts.
    static TgMatrix3d const kIdentity;
    static TgMatrix3d translation(TgVector3d const & way) noexcept;
    // About an axis through a point, by an angle in radians, counter-clockwise against the axis.
    // An axis without direction gives the map that changes nothing.
    static TgMatrix3d rotation(double angle, TgVector3d const & axis,
                               TgPoint3d const & center = TgPoint3d::kOrigin) noexcept;

    // An entry; row and column from 0 to 3.
    double entry(unsigned row, unsigned column) const { return m_entries[row * 4 + column]; }
    void entry(unsigned row, unsigned column, double value) { m_entries[row * 4 + column] = value; }

    // First `other`, then this.
    TgMatrix3d operator*(TgMatrix3d const & other) const noexcept;
    TgPoint3d operator*(TgPoint3d const & point) const noexcept;
    TgVector3d operator*(TgVector3d const & vector) const noexcept;
    // The map back.  False, with `inverse` untouched, if there is none.
    bool inverse(TgMatrix3d & inverse) const noexcept;
    // Exactly equal.
    bool operator==(TgMatrix3d const &) const noexcept = default;

private:
    std::array<double, 16> m_entries;
};

#endif
