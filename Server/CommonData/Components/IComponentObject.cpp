#include "Server/CommonData/Components/IComponentObject.h"

#include "Platform/Base/InterfaceId.h"
#include "Server/CommonData/Components/IComponent.h"
#include "Server/CommonData/Managed/Ancestors.h"
#include "Server/CommonData/Managed/ICommonData.h"
#include "Server/CommonData/Managed/ManagedGroupEntity.h"

namespace Vn::CommonData {

using Managed::ManagedEntity;
using Managed::ManagedGroupEntity;

namespace {

// The question that objects hand on upwards: what the component is.
using ComponentQuestion = Managed::UpwardQuestion<IComponent *>;

thread_local constinit ComponentQuestion * s_pComponentQuestion = nullptr;

} // namespace

UniqueString const * IComponentObject::interfaceId() {
    static constinit InterfaceId s_id("Vn::CommonData::IComponentObject");
    return s_id.get();
}

UniqueString const * IComponentObject::getInterfaceId() const { return interfaceId(); }

void * IComponentObject::queryInterface(UniqueString const * id) const {
    return id == interfaceId() ? const_cast<IComponentObject *>(this) : nullptr;
}

StrongRef<Entity> IComponentObject::_coParent() const {
    if (auto const * const managed = query<ManagedEntity>(this)) return managed->parent();
    if (auto * const data = query<ICommonData>(this)) return data->commonDataParent();
    return nullptr;
}

IComponent * IComponentObject::component() const {
    StrongRef<Entity> const parent = _coParent();
    if (auto * const component = query<IComponent>(parent.get())) return component;
    if (!query<IComponentObject>(parent.get())) return nullptr;
    auto const ask = [&](ComponentQuestion & question) {
        return question.ask(
            parent,
            [](Entity & ancestor) { return query<IComponentObject>(&ancestor)->component(); },
            [](Entity & ancestor) -> StrongRef<Entity> {
                StrongRef<Entity> next = query<IComponentObject>(&ancestor)->_coParent();
                bool const asksOn =
                    !query<IComponent>(next.get()) && query<IComponentObject>(next.get());
                return asksOn ? next : nullptr;
            });
    };
    if (s_pComponentQuestion) return ask(*s_pComponentQuestion);
    ComponentQuestion question;
    ComponentQuestion::Scope const scope(s_pComponentQuestion, question);
    return ask(question);
}

IComponentObject * IComponentObject::componentObjectParent() const {
    StrongRef<Entity> const parent = _coParent();
    return query<IComponentObject>(parent.get());
}

unsigned IComponentObject::componentObjectChildren() const {
    auto const * const group = query<ManagedGroupEntity>(this);
    return group ? group->children() : 0;
}

IComponentObject * IComponentObject::componentObjectChild(unsigned index) const {
    auto const * const group = query<ManagedGroupEntity>(this);
    return group ? query<IComponentObject>(group->child(index).get()) : nullptr;
}

IVisibilityToggle * IComponentObject::visibilityToggle() const { return nullptr; }

} // namespace Vn::CommonData
