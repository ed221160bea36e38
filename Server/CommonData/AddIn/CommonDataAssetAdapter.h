#ifndef VN_SERVER_COMMONDATA_ADDIN_COMMONDATAASSETADAPTER_H
#define VN_SERVER_COMMONDATA_ADDIN_COMMONDATAASSETADAPTER_H

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/ScriptableObject.h"
#include "Platform/Scene/SceneAssetAdapter.h"
#include "Server/CommonData/Export.h"

namespace Vn {

class Asset;
class Entity;
class Segment;

namespace Scene {
class NodeChange;
}

// Equips a document with what the common data needs of it: a transient segment beside the design
// segment, and a graph that shows a background and the nodes of the document's roots.  The graph is
// made once, from the document as it is then; whoever changes the document later changes its own
// nodes.  It is neither saved nor undone.
class VN_COMMONDATA_API CommonDataAssetAdapter
    : public Identified<CommonDataAssetAdapter, Scene::SceneAssetAdapter, IScriptableRootObject> {
public:
    // How others find the class.
    static constexpr NamedClass c_class{"Vn::CommonDataAssetAdapter"};

    // The asset must outlive the adapter; it isn't told of it here.
    explicit CommonDataAssetAdapter(Asset * asset);
    ~CommonDataAssetAdapter() override;

    // The first half of equipping a document that was loaded or is new: gives it an adapter, which
    // it owns, in place of the one before, and a transient segment if it has none.  Null for null.
    static CommonDataAssetAdapter * defaultInitializeLoadedAsset(Asset * asset);
    // The second half, once the document is complete: has its adapter finish, and makes the graph,
    // in place of the one before.  An adapter of another class makes none; without an adapter
    // nothing happens.
    static void defaultFullyInitializeLoadedAsset(Asset * asset);

    // Null for every name: all objects of the document stand below roots of its segments.
    IScriptableObject * getObject(Onk const & onk) override;

private:
    Segment * onDesignSegment() const override;
    Segment * onTransientSegment() const override;

    void createGraphicsRoot();
    // A white rectangle just below the ground plane as the first child of the root, and the colour
    // of what has none of its own.
    void createDefaultBackground();
};

} // namespace Vn

#endif
