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

// The settings of a document, an entity that stands as the root "AssetSettings" of its segment, the
// design segment.
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

    // Makes the object the settings of the document, unless that has some already.
    void onPostCreation(DataChange::ETransact transact) override;

private:
    void initializeMemberSetIfNeeded();
};

// Told at the stations of a document's life.  The document owns its adapter.
class VN_DATAMODEL_API AssetAdapter : public Identified<AssetAdapter, Object> {
public:
    // How others find the class.
    static constexpr NamedClass c_class{"Vn::AssetAdapter"};

    // What another form of the document is in for.
    enum ETranslation : unsigned { TranslationBegins = 0, TranslationEnds = 1 };

    // The asset must outlive the adapter; it isn't told of it here.
    explicit AssetAdapter(Asset * asset) noexcept : m_pAsset(asset) {}
    ~AssetAdapter() override;
    AssetAdapter(AssetAdapter const &) = delete;
    AssetAdapter & operator=(AssetAdapter const &) = delete;

    // What the constructor was given.
    Asset * asset() const noexcept { return m_pAsset; }
    // The root "AssetSettings" of the design segment; null if there is none.
    StrongRef<AssetSettings> assetSettings() const;

    // The public road to the hooks below.  Those of making and loading are called by whoever equips
    // the document, the others by the document itself.
    void postAssetSave() { onPostAssetSave(); }
    void initializeNewAsset() { onInitializeNewAsset(); }
    // Also tells of the classes whose versions in the file were older, once for each load.
    void initializeLoadedAsset();
    // Ends with onPostAssetLoadUpdate.
    void fullyInitializeLoadedAsset();
    void createSpecialSerializers() { onCreateSpecialSerializers(); }
    void releaseSpecialSerializers() { onReleaseSpecialSerializers(); }
    void postStartTransacting() { onPostStartTransacting(); }
    // For whatever translates the document into another form, such as an exporter.
    void translatorCallback(ETranslation station) { onTranslatorCallback(station); }
    void preDelete() { onPreDelete(); }
    Segment * designSegment() const { return onDesignSegment(); }
    Segment * transientSegment() const { return onTransientSegment(); }

    // The virtual operations.  Their order is binding, since modules built at other times call them
    // by their place; it begins with what Object declares: the destructor, getInterfaceId and
    // queryInterface.  The hooks do nothing unless an adapter overrides them.

    // Whether the document has changes to save.
    virtual bool isAssetDirty() const;

private:
    // The document was saved.
    virtual void onPostAssetSave();

public:
    // Whether changes are anything to save at all; without that the document is never dirty.
    virtual bool canDirtyAsset() const;

private:
    // The document was made.
    virtual void onInitializeNewAsset();
    // It was loaded, or is new.
    virtual void onInitializeLoadedAsset();
    // It is complete with everything that belongs to it.
    virtual void onFullyInitializeLoadedAsset();
    // The document was loaded from a file in which a class had an older version.
    virtual void onUpgradeMetaType(MetaType * type, unsigned version);
    // Around a save: for what writes or collects things that entities don't.  If the first throws,
    // the save fails, and the second isn't called; it is called whatever comes of the save, and
    // what it throws is dropped.
    virtual void onCreateSpecialSerializers();
    virtual void onReleaseSpecialSerializers();
    // An outermost transaction has begun.  What is changed here is a part of it; an exception ends
    // it.
    virtual void onPostStartTransacting();
    // The document is complete, and may now be brought up to date as a whole.
    virtual void onPostAssetLoadUpdate();
    // The document is about to be translated into another form, or was.
    virtual void onTranslatorCallback(ETranslation station);
    // The segments of these kinds; null if there is none.
    virtual Segment * onDesignSegment() const;
    virtual Segment * onTransientSegment() const;
    // The document is about to be closed, and is still whole.  What this throws is dropped.
    virtual void onPreDelete();

    Asset * const m_pAsset;
};

} // namespace Vn

#endif
