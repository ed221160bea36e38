// From where a picture looks at the model, and how much of it is in the picture.

#ifndef VN_PLATFORM_PICTURE_VIEW_H
#define VN_PLATFORM_PICTURE_VIEW_H

#include "Platform/Base/Status.h"
#include "Platform/Geometry/Tg.h"
#include "Platform/Graphics/BoundingBox.h"
#include "Platform/Picture/Export.h"

namespace Vn::Picture {

// How depth is shown.  The numbers stand in documents, as the projection of the home camera.
enum EProjection : unsigned {
    ProjectionParallel = 0,   // what is far away is as large as what is near
    ProjectionPerspective = 2 // what is far away is smaller; any other number counts as this one
};

// Whether views with that number, which look in a direction, are drawn in perspective.  With
// `orthoFaces` those are not that look along an axis: the faces of the model are seen undistorted.
VN_PICTURE_API bool isPerspective(unsigned projection, bool orthoFaces,
                                  TgVector3d const & direction) noexcept;

// A camera as Vn::Scene::Camera has it, and whether it shows perspective.
struct View {
    TgPoint3d position;       // in cm
    TgPoint3d target;         // in cm
    TgVector3d up{0, 0, 1};   // in the picture
    double width = 1;         // of what is seen at the target, in cm
    double height = 1;        // likewise
    bool perspective = false; // else parallel
};

// A view that was made sound: three unit vectors at right angles, sizes above 0.
struct VN_PICTURE_API ViewFrame {
    TgPoint3d eye;            // where it looks from, in cm
    TgVector3d right;         // in the picture
    TgVector3d up;            // in the picture
    TgVector3d back;          // towards the eye
    double distance = 1;      // from the eye to the target, in cm
    double width = 1;         // of what is seen at that distance, in cm
    double height = 1;        // likewise
    bool perspective = false; // else parallel

    // A point as the eye has it: to the right, up and towards the eye, in cm.
    TgVector3d seen(TgPoint3d const & point) const noexcept;
};

// Makes a view sound.  Refused, as an invalid argument: what isn't finite, an eye at its target,
// and sizes that aren't above 0.  A direction of up that is none, or is the one in which the view
// looks, is replaced by the axis z, or y if the view looks along that.  The sizes are widened to
// the shape of the picture, `aspect` being its width by its height.
[[nodiscard]] VN_PICTURE_API Status makeFrame(View const & view, double aspect, ViewFrame & frame);

// The view with the same direction and way up that shows all of a box, with a margin of a
// twentieth; of a point, a centimetre around it.  In perspective it keeps its angle if that is
// between 1 and 120 degrees, and takes 30 otherwise.  Refused as above, but for the sizes, and as
// unsupported if the box is so far away or large that numbers don't reach.
[[nodiscard]] VN_PICTURE_API Status fit(View const & view, Vrx::Devices::BoundingBox const & box,
                                        double aspect, View & fitted);

} // namespace Vn::Picture

#endif
