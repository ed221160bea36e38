// What the tests of scenes share.

#ifndef VN_TESTS_SCENE_SCENETESTING_H
#define VN_TESTS_SCENE_SCENETESTING_H

#include <functional>
#include <span>
#include <utility>
#include <vector>

#include "Platform/Graphics/NodeObservers.h"
#include "Platform/Graphics/RenderNode.h"

namespace Vn::Scene::Testing {

using Vrx::Graphics::ARenderNode;
using Vrx::Graphics::GroupNode;

using Told = std::vector<std::pair<ARenderNode *, int>>;
using Row = std::vector<ARenderNode *>;

// Writes down what it is told, and does what a test wants meanwhile.
class Recorder : public Vrx::Graphics::INodeObserver {
public:
    void nodesChanged(std::span<Vrx::Graphics::ChangedNode const> nodes) override {
        Told told;
        for (Vrx::Graphics::ChangedNode const & change : nodes)
            told.emplace_back(change.node(), change.changes());
        m_told.push_back(std::move(told));
        if (m_then) m_then();
    }

    std::vector<Told> m_told;
    std::function<void()> m_then;
};

inline Row childrenOf(GroupNode const & group) {
    Row found;
    for (ARenderNode * node = group.firstChild(); node; node = node->next()) found.push_back(node);
    return found;
}

} // namespace Vn::Scene::Testing

#endif
