#include "Platform/Scene/SceneAssetAdapter.h"

#include "Platform/Scene/NodeChange.h"
#include "Platform/Scene/SceneRootInternal.h"

namespace Vn::Scene {

using Vrx::Graphics::EffectParams;
using Vrx::Graphics::GroupNode;

SceneAssetAdapter::SceneAssetAdapter(Asset * asset) : Identified(asset), m_rScene(new SceneRoot) {}

SceneAssetAdapter::~SceneAssetAdapter() { m_rScene->end(); }

GroupNode * SceneAssetAdapter::scene() const noexcept { return m_rScene->root(); }

void SceneAssetAdapter::scene(GroupNode * root) {
    if (root == m_rScene->root()) return;
    NodeChange change;
    change.showRoot(*m_rScene, root);
}

Vrx::Graphics::NodeObservers & SceneAssetAdapter::observers() const noexcept { return *m_rScene; }

void SceneAssetAdapter::onCreateSpecialSerializers() {
    try {
        onSavePreview();
    } catch (...) {} // a document is worth more than its preview
}

// The preview is done with when it is made.
void SceneAssetAdapter::onReleaseSpecialSerializers() {}

void SceneAssetAdapter::onSavePreview() {}

EffectParams SceneAssetAdapter::sceneEffectParams() const {
    return {Color(0.5F, 0.5F, 0.5F, 1), false, 0};
}
EffectParams SceneAssetAdapter::layerEffectParams() const {
    return {Color(0.25F, 0.5F, 1, 1), false, 1};
}
EffectParams SceneAssetAdapter::selectionEffectParams() const {
    return {Color(1, 0.5F, 0, 1), true, 2};
}
EffectParams SceneAssetAdapter::highlightEffectParams() const {
    return {Color(1, 1, 0, 1), true, 3};
}
EffectParams SceneAssetAdapter::sketchSelectionEffectParams() const {
    return {Color(0, 1, 1, 1), true, 4};
}

} // namespace Vn::Scene
