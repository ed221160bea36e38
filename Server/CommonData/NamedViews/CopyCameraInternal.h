#ifndef VN_SERVER_COMMONDATA_NAMEDVIEWS_COPYCAMERAINTERNAL_H
#define VN_SERVER_COMMONDATA_NAMEDVIEWS_COPYCAMERAINTERNAL_H

#include "Platform/Base/RefCounted.h"
#include "Platform/Scene/Camera.h"

namespace Vn::NameView {

// Gives a camera the values of another, each in a change of its own.  Nothing happens if one of the
// two is null or gone.  Both are held, since observers are told of the changes.
inline void copyCamera(StrongRef<Scene::Camera> from, StrongRef<Scene::Camera> to) {
    if (!from || !to || !from->isAlive() || !to->isAlive()) return;
    to->position(from->position());
    to->target(from->target());
    to->up(from->up());
    to->extentsWidth(from->extentsWidth());
    to->extentsHeight(from->extentsHeight());
}

} // namespace Vn::NameView

#endif
