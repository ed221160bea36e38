#include "Platform/DataModel/MemberSet.h"

#include <cstring>
#include <utility>

#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/MigrationHelper.h"
#include "Platform/DataModel/Segment.h"

namespace Vn {

Member::Member(std::string name, std::ptrdiff_t offset, bool inHelper, std::string typeName,
               MemberMetaType * type, std::unique_ptr<TemplatizedFunctions> functions)
    : m_name(std::move(name)), m_typeName(std::move(typeName)), m_pType(type),
      m_pFunctions(std::move(functions)), m_offset(offset), m_bInHelper(inHelper) {}

Member::~Member() = default;

MemberSet::MemberSet(MetaType * type) : m_pMetaType(type) {}
MemberSet::~MemberSet() = default;

void MemberSet::initialize(void * object, char const * className) {
    m_pObject = object;
    m_className = className;
    m_bInitialized = true;
}

Member * MemberSet::addNewMember(std::string const & name, void * fieldAddress,
                                 char const * typeName, MemberMetaType * type,
                                 TemplatizedFunctions * functions, void ** extra) {
    std::unique_ptr<TemplatizedFunctions> owned(functions);
    if (extra) *extra = nullptr;
    char const * origin = static_cast<char const *>(m_pObject);
    char const * const place = static_cast<char const *>(fieldAddress);
    bool inHelper = false;
    if (auto * const entityType = dynamic_cast<EntityMetaType *>(m_pMetaType)) {
        std::size_t const size = entityType->instanceSize();
        if (place < origin || place >= origin + size) {
            auto * const entity = static_cast<Entity *>(m_pObject);
            if (MigrationHelper * const helper =
                    entity->segment()->migrationHelper(entity, entityType)) {
                origin = reinterpret_cast<char const *>(helper);
                inHelper = true;
            }
        }
    }
    return &m_members.emplace_back(name, place - origin, inHelper, typeName, type,
                                   std::move(owned));
}

Member const * MemberSet::find(std::string_view name) const noexcept {
    for (Member const & member : m_members)
        if (member.name() == name) return &member;
    return nullptr;
}

} // namespace Vn
