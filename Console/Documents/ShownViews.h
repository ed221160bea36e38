// The views of a document as pictures and models show them.

#ifndef VN_CONSOLE_DOCUMENTS_SHOWNVIEWS_H
#define VN_CONSOLE_DOCUMENTS_SHOWNVIEWS_H

#include <optional>

#include "Console/Documents/Cameras.h"
#include "Platform/Base/Status.h"
#include "Platform/DataModel/Segment.h"
#include "Platform/Graphics/BoundingBox.h"
#include "Platform/Picture/View.h"
#include "Server/CommonData/NamedViews/NamedView.h"

namespace Vn::Console {

// A camera, and whether it tells no more than a direction.
struct Aim {
    CameraValues camera;
    bool isFitted = true;
};

// That of a view, which has a camera.  The built-in ones stand where they were made, whatever the
// document has become since, and are fitted; HOME unless the settings keep it as it is.  The user's
// own views are kept as they are.
Aim shownAim(Segment const & design, NameView::NamedView const & view);
// That of the home camera in the settings.
Aim homeAim(Segment const & design);

// What such a camera shows, with the projection that the settings have for the home camera.  One
// that is to be fitted has no size yet.
Picture::View shownView(Segment const & design, Aim const & aim);

// Fits a view if it is to be, into the shape of a picture, the width by the height: around what is
// shown, or the origin if that is nothing.  The status is that of Picture::fit.
[[nodiscard]] Status fitIfNeeded(Aim const & aim,
                                 std::optional<Vrx::Devices::BoundingBox> const & bounds,
                                 double aspect, Picture::View & view);

} // namespace Vn::Console

#endif
