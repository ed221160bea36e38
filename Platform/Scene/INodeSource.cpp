#include "Platform/Scene/INodeSource.h"

#include "Platform/Base/InterfaceId.h"

namespace Vn::Scene {

namespace {

// The way from nodes, which may outlive their source, to the source.
class SourceTag final : public RefCounted {
public:
    explicit SourceTag(INodeSource * source) noexcept : m_pSource(source) {}

    INodeSource * m_pSource; // null once it is gone
};

} // namespace

INodeSource::~INodeSource() {
    if (m_rTag) static_cast<SourceTag *>(m_rTag.get())->m_pSource = nullptr;
}

UniqueString const * INodeSource::interfaceId() {
    static constinit InterfaceId s_id("Vn::Scene::INodeSource");
    return s_id.get();
}

UniqueString const * INodeSource::getInterfaceId() const { return interfaceId(); }

void * INodeSource::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<INodeSource *>(this) : nullptr;
}

INodeSource * INodeSource::of(Vrx::Graphics::ARenderNode const * node) noexcept {
    auto const * const tag = node ? dynamic_cast<SourceTag const *>(node->tag()) : nullptr;
    return tag ? tag->m_pSource : nullptr;
}

StrongRef<RefCounted> INodeSource::tag() {
    if (!m_rTag) m_rTag = StrongRef<RefCounted>(new SourceTag(this));
    return m_rTag;
}

} // namespace Vn::Scene
