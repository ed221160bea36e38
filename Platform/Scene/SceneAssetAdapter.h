// What shows a document.

#ifndef VN_PLATFORM_SCENE_SCENEASSETADAPTER_H
#define VN_PLATFORM_SCENE_SCENEASSETADAPTER_H

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/Graphics/EffectParams.h"
#include "Platform/Graphics/NodeObservers.h"
#include "Platform/Graphics/RenderNode.h"
#include "Platform/Scene/Export.h"

namespace Vn::Scene {

class SceneRoot;

// The adapter of a document that is shown.  It holds the root of the document's graph, which is
// neither saved nor undone, and lets it go at its end.
class VN_SCENE_API SceneAssetAdapter : public Identified<SceneAssetAdapter, AssetAdapter> {
public:
    // How others find the class.
    static constexpr NamedClass c_class{"Vn::Scene::SceneAssetAdapter"};

    // As of AssetAdapter; there is no root at first.
    explicit SceneAssetAdapter(Asset * asset);
    ~SceneAssetAdapter() override;

    // The root of the graph; null if there is none.
    Vrx::Graphics::GroupNode * scene() const noexcept;
    // Sets it, or takes it away for null.  It is the root at once, also within an open NodeChange;
    // if that is dropped, the root is again what it was.  Observers learn it when that closes, as a
    // change of everything in the new root; of a root that is taken away they hear nothing.  Throws
    // std::bad_alloc if there is no memory, and nothing has changed then.
    void scene(Vrx::Graphics::GroupNode * root);
    // Who is told what changes in the scene, whichever its root is.
    Vrx::Graphics::NodeObservers & observers() const noexcept;

    // Has a preview of the document made for the file; done with each save.
    void savePreview() { onSavePreview(); }

    // The virtual operations.  Their order is binding, and goes on after those of AssetAdapter.

private:
    // Around a save: the preview is made at its beginning.  If making it throws, the document is
    // saved without.
    void onCreateSpecialSerializers() override;
    void onReleaseSpecialSerializers() override;
    // A preview is wanted.  Nothing is made unless an adapter overrides this.
    virtual void onSavePreview();

public:
    // The effects of what has none of its own, of what stands in a layer that is singled out, of
    // what is selected, pointed at, and selected while a sketch is open.  The last three override
    // what is below them, each in a layer above the one before.
    virtual Vrx::Graphics::EffectParams sceneEffectParams() const;
    virtual Vrx::Graphics::EffectParams layerEffectParams() const;
    virtual Vrx::Graphics::EffectParams selectionEffectParams() const;
    virtual Vrx::Graphics::EffectParams highlightEffectParams() const;
    virtual Vrx::Graphics::EffectParams sketchSelectionEffectParams() const;

private:
    StrongRef<SceneRoot> const m_rScene;
};

} // namespace Vn::Scene

#endif
