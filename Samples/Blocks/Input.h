#ifndef VN_SAMPLES_BLOCKS_INPUT_H
#define VN_SAMPLES_BLOCKS_INPUT_H

#include <string>
#include <vector>

#include "Server/CommonData/Managed/ICommonDataClientObject.h"
#include "Server/CommonData/Managed/ManagedEntity.h"

namespace Vn::Blocks {

// The client object of a part or an assembly: what the user typed for it, as texts that mean the
// same whatever the units of the document are.  The common data has the lengths that they mean; it
// owns its client, and so both come and go together.
class Input : public Managed::Persisted<Input, Managed::ManagedEntity,
                                        CommonData::ICommonDataClientObjectHelper> {
public:
    static constexpr Managed::PersistedClass c_class{"Vn::Blocks::Input",
                                                     "6A3C1B70-4C55-4B0E-8F4B-52B6E9D10001", 0};
    static EntityMetaType * s_metaType();
    // With the texts of the sizes, which an assembly hasn't, and of the place: x, y and z, or
    // nothing for the origin.  Null without a segment.
    static StrongRefCreator<Input> make(Segment * segment, std::vector<std::wstring> sizes,
                                        std::vector<std::wstring> place);

    // As `make` was given them.  The setters are changes of their own.
    std::vector<std::wstring> const & sizes() const noexcept { return m_sizes; }
    void sizes(std::vector<std::wstring> sizes);
    std::vector<std::wstring> const & place() const noexcept { return m_place; }
    void place(std::vector<std::wstring> place);

protected:
    // A new one, and one that is being loaded.
    Input(Segment * segment, std::vector<std::wstring> sizes, std::vector<std::wstring> place);
    Input(Segment * segment, unsigned long long id);

    void onPreDeletion(DataChange::ETransact transact) override;

private:
    friend class Managed::PersistedAccess;

    void initializeMemberSet(unsigned version, MemberSet * set);

    std::vector<std::wstring> m_sizes;
    std::vector<std::wstring> m_place;
};

} // namespace Vn::Blocks

#endif
