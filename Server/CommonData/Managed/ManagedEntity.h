#ifndef VN_SERVER_COMMONDATA_MANAGED_MANAGEDENTITY_H
#define VN_SERVER_COMMONDATA_MANAGED_MANAGEDENTITY_H

#include <string>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/ScriptableObject.h"
#include "Server/CommonData/Export.h"
#include "Server/CommonData/Managed/PersistedEntity.h"

namespace Vrx::Graphics {
class GroupNode;
}

namespace Vn::Managed {

class ManagedGroupEntity;

// An entity that hangs in the document's managed tree: the base of all of them.
//
// A parent group owns its children and lists them; a child knows its parent by a passive reference.
// The parent may be any entity; one that isn't a group lists no children.
class VN_COMMONDATA_API ManagedEntity : public Persisted<ManagedEntity, Entity, IScriptableObject> {
public:
    // Name, meta-type id and version; and the meta type.
    static constexpr PersistedClass c_class{"Vn::Managed::ManagedEntity",
                                            "CB844AB6-240D-4fc9-9C9F-3679DC896D6F", 0};
    static EntityMetaType * s_metaType();
    // A new one under a parent, whose list it joins if that is a group; and one without a parent.
    // Null without a parent or a segment.
    static StrongRefCreator<ManagedEntity> make(PassiveRef<Entity> const & parent);
    static StrongRefCreator<ManagedEntity> make(Segment * segment);

    ~ManagedEntity() override;

    // The parent; null if there is none, or if it is gone.
    StrongRef<Entity> parent() const { return m_rParent.lock(); }
    // The parent if it is a group, else null.
    StrongRef<ManagedGroupEntity> managedParent() const;
    // Forgets the parent, in a change of its own.  A group that lists the entity isn't told:
    // the caller sees to that.
    void nullParent();

protected:
    // The answer of insertionIndex for the end of the list.
    static constexpr unsigned c_atEnd = 0xFFFFFFFFU;
    // The place in the parent's list for which the entity is made.  It stands right after the
    // virtual operations of Entity, which is binding.
    virtual unsigned insertionIndex() const;

public:
    // "CmnData" with the place among the siblings; `onk` stays as it came if no group lists the
    // entity.
    void getOnk(Onk & onk) const override;
    // An entity without children asks its parent; null if it has none.
    IScriptableObject * getChildObject(Onk const & onk, ObjectPath const & path) const override;

protected:
    // In the segment of `parent`, which mustn't be null, and whose list isn't touched yet; as a
    // root; and as one that is being loaded.
    explicit ManagedEntity(PassiveRef<Entity> const & parent);
    explicit ManagedEntity(Segment * segment);
    ManagedEntity(Segment * segment, unsigned long long id);

    // Whether this entity may list another, or have it as its parent: only what is alive and in the
    // same document, since a document is saved and undone by itself.
    bool canReferTo(Entity const & other) const noexcept {
        return other.isAlive() && other.asset() == asset();
    }
    // Sets the parent, in a change of its own.  One that isn't alive or is in another document is
    // ignored.
    void parent(StrongRef<Entity> const & parent);
    // Has the parent, if it is a group, list the entity.
    void addToParent();
    // The group node of the nearest ancestor that shows itself in the render graph, which may have
    // none; null if no ancestor does.
    Vrx::Graphics::GroupNode * _parentGroupNode() const;

    void onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                     DataChange * details) override;
    void onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                      DataChange * details) override;
    void onPostCreation(DataChange::ETransact transact) override;
    std::wstring onToString() const override;

private:
    friend class PersistedAccess;
    friend class ManagedGroupEntity;

    void initializeMemberSet(unsigned version, MemberSet * set);

    PassiveRef<Entity> m_rParent;
};

} // namespace Vn::Managed

#endif
