#include "Samples/Blocks/Assembly.h"

#include <utility>

#include "Platform/Base/InterfaceId.h"
#include "Platform/DataModel/EntityChange.h"
#include "Samples/Blocks/Children.h"

namespace Vn::Blocks {

using Scene::INodeSource;
using Scene::NodeChange;

Assembly::Assembly(PassiveRef<Entity> const & group, StrongRef<Input> input, std::wstring name)
    : Persisted(group, std::move(input), TgPoint3d::kOrigin), m_name(std::move(name)) {
    initializeMemberSetIfNeeded();
}

Assembly::Assembly(Segment * segment, unsigned long long id) : Persisted(segment, id) {
    initializeMemberSetIfNeeded();
}

StrongRef<Assembly> Assembly::make(PassiveRef<Entity> const & group, std::wstring name) {
    if (!group || !group->segment()) return nullptr;
    StrongRef<Input> const input = Input::make(group->segment(), {}, {});
    StrongRef<Assembly> assembly = create(group, input, std::move(name));
    if (assembly && input) input->commonData(query<CommonData::ICommonData>(assembly.get()));
    return assembly;
}

void Assembly::initializeMemberSet(unsigned, MemberSet * set) {
    Managed::addMember(set, "name", m_name);
}

void Assembly::name(std::wstring name) {
    if (name == m_name) return;
    EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    m_name = std::move(name);
}

std::string Assembly::rootKey() const { return "Blocks.Assembly." + std::to_string(id()); }

void Assembly::onComponentPreChange(CommonData::ComponentDataChange const *) {
    ++m_summaries.before;
}

void Assembly::onComponentPostChange(CommonData::ComponentDataChange const *, bool) {
    ++m_summaries.after;
}

// An assembly around this one isn't told: what changed stands in this.
void Assembly::collectComponents(std::vector<CommonData::IComponent *> &) {}

void Assembly::onPreChange(DataChange::ETransact transact, DataChange::EChangeType type,
                           DataChange * details) {
    if (DataChange::test(transact, DataChange::TransactReplay) && isShown())
        m_childrenBefore = childrenVector();
    Item::onPreChange(transact, type, details);
}

void Assembly::onPostChange(DataChange::ETransact transact, DataChange::EChangeType type,
                            DataChange * details) {
    Item::onPostChange(transact, type, details);
    bool const isReplay = DataChange::test(transact, DataChange::TransactReplay);
    Children const before = std::exchange(m_childrenBefore, {});
    if (!isShown()) return;
    ChildrenChange const change =
        isReplay ? ChildrenChange::replayed(*this, before) : ChildrenChange::direct(*this, details);
    NodeChange group(groupNode(), false);
    change.follow<INodeSource>(group);
}

} // namespace Vn::Blocks
