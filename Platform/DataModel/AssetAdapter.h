// What equips a document for its application.

#ifndef VN_PLATFORM_DATAMODEL_ASSETADAPTER_H
#define VN_PLATFORM_DATAMODEL_ASSETADAPTER_H

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Object.h"
#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

class Asset;
class MetaType;
class Segment;

// The settings of a document, an entity that stands as the root "AssetSettings" of the design
// segment.
class VN_DATAMODEL_API AssetSettings : public Identified<AssetSettings, Entity> {
public:
    // How others find the class.
    static constexpr NamedClass c_class{"Vn::AssetSettings"};

    // The key of the root.
    static std::string const & segmentRootId();
    // The meta type and its id, and the object as what a meta type describes.
    static std::string s_metaTypeId();
    static EntityMetaType * s_metaType();
    void * queryMTInterface(MetaType const * type) override;

protected:
    // A new object, and one that is being loaded.
    explicit AssetSettings(Segment * segment);
    AssetSettings(Segment * segment, unsigned long long id);

private:
    void initializeMemberSetIfNeeded();
};

// Told at the stations of a document's life.  The document owns its adapter.
class VN_DATAMODEL_API AssetAdapter : public Identified<AssetAdapter, Object> {
public:
    // How others find the class.
    static constexpr NamedClass c_class{"Vn::AssetAdapter"};

    // The asset must outlive the adapter; it isn't told of it here.
    explicit AssetAdapter(Asset * asset) noexcept : m_pAsset(asset) {}
    ~AssetAdapter() override;
    AssetAdapter(AssetAdapter const &) = delete;
    AssetAdapter & operator=(AssetAdapter const &) = delete;

    // What the constructor was given.
    Asset * asset() const noexcept { return m_pAsset; }
    // The root "AssetSettings" of the design segment; null if there is none.
    StrongRef<AssetSettings> assetSettings() const;

    // The public road to the hooks below.
    void initializeNewAsset() { onInitializeNewAsset(); }
    void initializeLoadedAsset() { onInitializeLoadedAsset(); }
    void fullyInitializeLoadedAsset() { onFullyInitializeLoadedAsset(); }
    void postAssetSave() { onPostAssetSave(); }
    void preDelete() { onPreDelete(); }
    Segment * designSegment() const { return onDesignSegment(); }
    Segment * transientSegment() const { return onTransientSegment(); }

    // Whether the document has changes to save.
    virtual bool isAssetDirty() const;

private:
    // A document was made, was loaded, is complete with everything that belongs to it, was saved,
    // is about to be closed.  Nothing by default.
    virtual void onInitializeNewAsset();
    virtual void onInitializeLoadedAsset();
    virtual void onFullyInitializeLoadedAsset();
    virtual void onPostAssetSave();
    virtual void onPreDelete();
    // The segments of these kinds; null if there is none.
    virtual Segment * onDesignSegment() const;
    virtual Segment * onTransientSegment() const;

    Asset * const m_pAsset;
};

} // namespace Vn

#endif
