// The named views of a document as pictures and models show them.

#ifndef VN_CONSOLE_DOCUMENTS_SHOWNVIEWS_H
#define VN_CONSOLE_DOCUMENTS_SHOWNVIEWS_H

#include <optional>

#include "Platform/DataModel/Segment.h"
#include "Platform/Graphics/BoundingBox.h"
#include "Platform/Picture/View.h"
#include "Platform/Scene/Camera.h"
#include "Server/CommonData/NamedViews/NamedView.h"

namespace Vn::Console {

// What a camera shows, with the projection of the home camera in the settings of the document, or
// that of settings which are new if it has none.
Picture::View viewOf(Segment const & design, Scene::Camera const & camera);

// Whether a view holds a direction alone, and is to show all there is: TOP, FRONT and RIGHT of the
// system, and HOME if the settings say so.
bool isFitted(Segment const & design, NameView::NamedView const & view);

// The two together: fitted, if it is to be, into a picture of a shape, the width by the height.
// `bounds` are those of what is shown, if anything is; nothing for a view without a camera.  A view
// that can't be fitted is as its camera has it.
std::optional<Picture::View> shownView(Segment const & design, NameView::NamedView const & view,
                                       std::optional<Vrx::Devices::BoundingBox> const & bounds,
                                       double aspect);

} // namespace Vn::Console

#endif
