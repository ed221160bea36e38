#ifndef VN_SAMPLES_BLOCKS_ASSEMBLY_H
#define VN_SAMPLES_BLOCKS_ASSEMBLY_H

#include <cstddef>
#include <string>
#include <vector>

#include "Platform/DataModel/IRenameTarget.h"
#include "Samples/Blocks/Item.h"
#include "Server/CommonData/Components/IComponent.h"

namespace Vn::Blocks {

// Parts and assemblies that are placed together.  An assembly that stands by itself is a root of
// the document's design segment; the others stand in another assembly.
//
// It is the component of the parts in it, and is told before and after each change of one of them,
// once per bracket.  It isn't told of what comes, goes or is moved, which is no change of a part.
class Assembly
    : public Managed::Persisted<Assembly, Item, CommonData::IComponent, DataModel::IRenameTarget> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Blocks::Assembly",
                                                     "6A3C1B70-4C55-4B0E-8F4B-52B6E9D10007", 0};
    static EntityMetaType * s_metaType();
    // A new, empty assembly at the end of a group, which is the workbench or another assembly, at
    // its origin.  Null if the group is null or its document is closed.
    static StrongRef<Assembly> make(PassiveRef<Entity> const & group, std::wstring name);

    // The name for people; several may have one.  Renaming is a change, and a step of the history
    // within a transaction.
    std::wstring const & name() const noexcept { return m_name; }
    void name(std::wstring name);

    // The key of the root that the assembly is while it stands by itself.
    std::string rootKey() const;

    // How often the assembly was told of a change of a part, before and after it, since the
    // document was opened.
    struct Summaries {
        std::size_t before = 0;
        std::size_t after = 0;
    };
    Summaries const & summaries() const noexcept { return m_summaries; }

    // As of IComponent.
    void onComponentPreChange(CommonData::ComponentDataChange const * change) override;
    void onComponentPostChange(CommonData::ComponentDataChange const * change, bool flag) override;
    void collectComponents(std::vector<CommonData::IComponent *> & components) override;

protected:
    // As of Item.
    Assembly(PassiveRef<Entity> const & group, StrongRef<Input> input, std::wstring name);
    Assembly(Segment * segment, unsigned long long id);

    void onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                     DataChange * details) override;
    void onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                      DataChange * details) override;
    Measures calculated(Measures const & below) const override { return below; }

private:
    friend class Managed::PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);
    bool onCanRename() const override { return true; }
    std::wstring onRenameText() override { return m_name; }
    void onRename(std::wstring const & name) override { this->name(name); }

    std::wstring m_name;
    // Not persisted.
    Summaries m_summaries;
    std::vector<StrongRef<Managed::ManagedEntity>> m_childrenBefore; // while a replay changes them
};

} // namespace Vn::Blocks

#endif
