#include "Platform/Geometry/Tg.h"

#include <cmath>

#include <Eigen/Dense>

namespace {

using Matrix = Eigen::Matrix<double, 4, 4, Eigen::RowMajor>;

Eigen::Vector3d eigen(TgVector3d const & v) { return {v.x, v.y, v.z}; }
TgVector3d vector(Eigen::Vector3d const & v) { return {v.x(), v.y(), v.z()}; }

Matrix eigen(TgMatrix3d const & m) {
    Matrix made;
    for (unsigned row = 0; row < 4; ++row)
        for (unsigned column = 0; column < 4; ++column)
            made(static_cast<int>(row), static_cast<int>(column)) = m.entry(row, column);
    return made;
}

TgMatrix3d matrix(Matrix const & m) {
    TgMatrix3d made;
    for (unsigned row = 0; row < 4; ++row)
        for (unsigned column = 0; column < 4; ++column)
            made.entry(row, column, m(static_cast<int>(row), static_cast<int>(column)));
    return made;
}

} // namespace

constinit TgTol const TgContext::gTol;
constinit TgVector3d const TgVector3d::kIdentity;
constinit TgVector3d const TgVector3d::kXAxis(1, 0, 0);
constinit TgVector3d const TgVector3d::kYAxis(0, 1, 0);
constinit TgVector3d const TgVector3d::kZAxis(0, 0, 1);
constinit TgPoint3d const TgPoint3d::kOrigin;

// By twos: the standard library's hypot of three answers 0 for a NaN beside zeroes.
double TgVector3d::length() const noexcept { return std::hypot(std::hypot(x, y), z); }

double TgVector3d::dotProduct(TgVector3d const & other) const noexcept {
    return eigen(*this).dot(eigen(other));
}

TgVector3d TgVector3d::crossProduct(TgVector3d const & other) const noexcept {
    return vector(eigen(*this).cross(eigen(other)));
}

TgVector3d TgVector3d::normal(TgTol const & tolerance) const noexcept {
    double const norm = length();
    if (!(norm > tolerance.equalVector())) return *this;
    // A length beyond the largest double is that of a smaller vector of the same direction.
    if (std::isinf(norm) && std::isfinite(x) && std::isfinite(y) && std::isfinite(z))
        return TgVector3d(x / 4, y / 4, z / 4).normal(tolerance);
    return {x / norm, y / norm, z / norm};
}

bool TgVector3d::isEqualTo(TgVector3d const & other, TgTol const & tolerance) const noexcept {
    return (*this - other).length() <= tolerance.equalVector();
}

TgMatrix3d::TgMatrix3d() noexcept : m_entries{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1} {}

TgMatrix3d const TgMatrix3d::kIdentity;

TgMatrix3d TgMatrix3d::translation(TgVector3d const & way) noexcept {
    TgMatrix3d made;
    made.entry(0, 3, way.x);
    made.entry(1, 3, way.y);
    made.entry(2, 3, way.z);
    return made;
}

TgMatrix3d TgMatrix3d::rotation(double angle, TgVector3d const & axis,
                                TgPoint3d const & center) noexcept {
    TgVector3d const unit = axis.normal();
    if (!(axis.length() > TgContext::gTol.equalVector())) return {};
    Matrix turn = Matrix::Identity();
    turn.topLeftCorner<3, 3>() = Eigen::AngleAxisd(angle, eigen(unit)).toRotationMatrix();
    TgVector3d const way = center.asVector();
    return translation(way) * matrix(turn) * translation(-way);
}

TgMatrix3d TgMatrix3d::operator*(TgMatrix3d const & other) const noexcept {
    return matrix(eigen(*this) * eigen(other));
}

TgPoint3d TgMatrix3d::operator*(TgPoint3d const & point) const noexcept {
    Eigen::Vector4d const moved = eigen(*this) * Eigen::Vector4d(point.x, point.y, point.z, 1);
    return {moved.x(), moved.y(), moved.z()};
}

TgVector3d TgMatrix3d::operator*(TgVector3d const & vector) const noexcept {
    Eigen::Vector4d const moved = eigen(*this) * Eigen::Vector4d(vector.x, vector.y, vector.z, 0);
    return {moved.x(), moved.y(), moved.z()};
}

bool TgMatrix3d::inverse(TgMatrix3d & inverse) const noexcept {
    Eigen::FullPivLU<Matrix> const decomposition(eigen(*this));
    if (!decomposition.isInvertible()) return false;
    inverse = matrix(decomposition.inverse());
    return true;
}
