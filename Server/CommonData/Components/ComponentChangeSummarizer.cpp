#include "Server/CommonData/Components/ComponentChangeSummarizer.h"

#include <vector>

#include "Server/CommonData/AddIn/LoadOrder.h"
#include "Server/CommonData/Components/ComponentDataChange.h"
#include "Server/CommonData/Components/IComponent.h"
#include "Server/CommonData/Components/IComponentObject.h"
#include "Server/CommonData/Managed/ChangeSummariesInternal.h"

namespace Vn::CommonData {

namespace {

// Managed entities know nothing of components: this has them make the summaries.
class ComponentSummaries {
public:
    ComponentSummaries() noexcept {
        static constexpr Managed::ChangeSummaries c_summaries{
            &IComponentObject::interfaceId, &ComponentChangeSummarizer::interfaceId, &make};
        Managed::summarizeChanges(c_summaries);
    }

private:
    static EntityChangeSummarizer * make(void * object) {
        return new ComponentChangeSummarizer(static_cast<IComponentObject *>(object));
    }
};

[[maybe_unused]] ComponentSummaries const s_summaries VN_LOAD_CHANGE_SUMMARIES;

} // namespace

ComponentChangeSummarizer::~ComponentChangeSummarizer() = default;

template <class Tell>
void ComponentChangeSummarizer::tell(DataChange::EChangeType type, Tell && tell) {
    if (!m_pObject || !m_pObject->component()) return;
    std::vector<IComponent *> components{m_pObject->component()};
    components.front()->collectComponents(components);
    ComponentDataChange const change(m_pObject, type);
    for (IComponent * const component : components) tell(*component, change);
}

void ComponentChangeSummarizer::onPreChange(DataChange::EChangeType type) {
    tell(type, [](IComponent & component, ComponentDataChange const & change) {
        component.onComponentPreChange(&change);
    });
}

void ComponentChangeSummarizer::onPostChange(DataChange::EChangeType type) {
    tell(type, [](IComponent & component, ComponentDataChange const & change) {
        component.onComponentPostChange(&change, true);
    });
}

} // namespace Vn::CommonData
