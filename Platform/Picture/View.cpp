#include "Platform/Picture/View.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "Platform/Base/LocalizedText.h"

namespace Vn::Picture {

using Vrx::Devices::BoundingBox;

namespace {

constexpr char c_operation[] = "show the view";
constexpr double c_margin = 1.05;

bool isFinite(TgVector3d const & vector) {
    return std::isfinite(vector.x) && std::isfinite(vector.y) && std::isfinite(vector.z);
}

// The length of a vector of any size that has one, without overflow.
double lengthOf(TgVector3d const & vector) { return std::hypot(vector.x, vector.y, vector.z); }

TgVector3d unit(TgVector3d const & vector) {
    double const largest =
        std::max({std::fabs(vector.x), std::fabs(vector.y), std::fabs(vector.z)});
    TgVector3d const scaled{vector.x / largest, vector.y / largest, vector.z / largest};
    return scaled * (1 / lengthOf(scaled));
}

// Below this the sine of an angle counts as none.
constexpr double c_noAngle = 1e-9;

Status directions(View const & view, ViewFrame & frame) {
    if (!BoundingBox::isFinite(view.position) || !BoundingBox::isFinite(view.target))
        return Status::invalidArgument(c_operation, {},
                                       localized("its position or target isn't finite"));
    TgVector3d const back = view.position - view.target;
    if (!isFinite(back) || lengthOf(back) == 0)
        return Status::invalidArgument(c_operation, {}, localized("it looks in no direction"));
    if (!isFinite(view.up))
        return Status::invalidArgument(c_operation, {},
                                       localized("its direction of up isn't finite"));
    frame.back = unit(back);
    TgVector3d up = lengthOf(view.up) > 0 ? unit(view.up) : TgVector3d();
    if (lengthOf(up.crossProduct(frame.back)) < c_noAngle) up = {0, 0, 1};
    if (lengthOf(up.crossProduct(frame.back)) < c_noAngle) up = {0, 1, 0};
    frame.right = unit(up.crossProduct(frame.back));
    frame.up = unit(frame.back.crossProduct(frame.right));
    frame.eye = view.position;
    frame.distance = lengthOf(back);
    frame.perspective = view.perspective;
    return Status::success();
}

bool isSize(double size) { return std::isfinite(size) && size > 0; }

// The tangent of half the angle that a view sees from its top to its bottom.
double halfTangent(View const & view, double distance) {
    double const tangent = view.height / 2 / distance;
    double const least = std::tan(std::numbers::pi / 360);
    double const most = std::tan(std::numbers::pi / 3);
    return tangent >= least && tangent <= most ? tangent : std::tan(std::numbers::pi / 12);
}

struct Range {
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();

    void add(double value) {
        low = std::min(low, value);
        high = std::max(high, value);
    }
    double middle() const { return low / 2 + high / 2; }
    double size() const { return high - low; }
};

} // namespace

bool isPerspective(unsigned projection, bool orthoFaces, TgVector3d const & direction) noexcept {
    if (projection == ProjectionParallel) return false;
    if (!orthoFaces) return true;
    double const length = lengthOf(direction);
    double const along =
        std::max({std::fabs(direction.x), std::fabs(direction.y), std::fabs(direction.z)});
    return !(along >= length * (1 - 1e-12));
}

TgVector3d ViewFrame::seen(TgPoint3d const & point) const noexcept {
    TgVector3d const way = point - eye;
    return {way.dotProduct(right), way.dotProduct(up), way.dotProduct(back)};
}

Status makeFrame(View const & view, double aspect, ViewFrame & frame) {
    ViewFrame made;
    if (Status const status = directions(view, made); !status) return status;
    if (!isSize(view.width) || !isSize(view.height))
        return Status::invalidArgument(c_operation, {}, localized("its extents aren't above 0"));
    made.width = std::max(view.width, view.height * aspect);
    made.height = made.width / aspect;
    if (!isSize(made.width) || !isSize(made.height))
        return Status::invalidArgument(c_operation, {}, localized("its extents are too large"));
    frame = made;
    return Status::success();
}

Status fit(View const & view, BoundingBox const & box, double aspect, View & fitted) {
    ViewFrame frame;
    if (Status const status = directions(view, frame); !status) return status;
    // Seen from the middle of the box, so that no digits are lost far away.
    TgPoint3d const middle{box.low.x / 2 + box.high.x / 2, box.low.y / 2 + box.high.y / 2,
                           box.low.z / 2 + box.high.z / 2};
    frame.eye = middle;
    std::array<TgVector3d, BoundingBox::c_corners> corners;
    Range right;
    Range up;
    Range back;
    for (unsigned i = 0; i < corners.size(); ++i) {
        corners[i] = frame.seen(box.corner(i));
        right.add(corners[i].x);
        up.add(corners[i].y);
        back.add(corners[i].z);
    }
    double const size = std::max({right.size(), up.size(), back.size()});
    View made = view;
    made.target = middle;
    double distance = 0;
    if (view.perspective) {
        double const tangent = halfTangent(view, frame.distance);
        for (TgVector3d const & corner : corners)
            distance = std::max({distance, corner.z + std::fabs(corner.y) / tangent * c_margin,
                                 corner.z + std::fabs(corner.x) / (tangent * aspect) * c_margin});
        if (size == 0) distance = 0.5 / tangent;
        distance = std::max(distance, back.high + size / 100);
        made.height = 2 * tangent * distance;
        made.width = made.height * aspect;
    } else {
        made.height = std::max(up.size(), right.size() / aspect) * c_margin;
        if (size == 0) made.height = 1;
        // Of what is flat and seen from its side, a line is left.
        made.height = std::max(made.height, size / 100);
        made.width = made.height * aspect;
        distance = std::max(made.height, size) + back.high;
    }
    made.position = middle + frame.back * distance;
    ViewFrame sound;
    if (!makeFrame(made, aspect, sound))
        return Status(StatusUnsupported, c_operation, {},
                      localized("what is to be seen is too far away, too large or too small"));
    fitted = made;
    return Status::success();
}

} // namespace Vn::Picture
