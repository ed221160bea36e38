#include "Platform/DataModel/MemberSet.h"

#include <cstring>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <utility>

#include "Platform/Base/OS.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/MetaType.h"
#include "Platform/DataModel/MigrationHelper.h"
#include "Platform/DataModel/Segment.h"

namespace Vn {

namespace {

constexpr bool c_isLongWide = sizeof(long) == sizeof(long long);

constexpr std::pair<std::string_view, EMemberKind> c_typeNames[] = {
    {"bool", EMemberKind::Bool},
    {"int", EMemberKind::Int},
    {"int32_t", EMemberKind::Int},
    {"unsigned int", EMemberKind::UnsignedInt},
    {"unsigned", EMemberKind::UnsignedInt},
    {"uint32_t", EMemberKind::UnsignedInt},
    {"long", c_isLongWide ? EMemberKind::Int64 : EMemberKind::Int},
    {"long long", EMemberKind::Int64},
    {"__int64", EMemberKind::Int64},
    {"int64_t", EMemberKind::Int64},
    {"unsigned long", c_isLongWide ? EMemberKind::UnsignedInt64 : EMemberKind::UnsignedInt},
    {"unsigned long long", EMemberKind::UnsignedInt64},
    {"unsigned __int64", EMemberKind::UnsignedInt64},
    {"uint64_t", EMemberKind::UnsignedInt64},
    {"float", EMemberKind::Float},
    {"double", EMemberKind::Double},
    {"string", EMemberKind::String},
    {"wstring", EMemberKind::WideString},
    {"GlobalizedString", EMemberKind::GlobalizedString},
    {"StrongRef", EMemberKind::StrongRef},
    {"PassiveRef", EMemberKind::PassiveRef},
    {"vector", EMemberKind::Vector},
    {"Vector", EMemberKind::Vector},
};

// The beginnings of the names of templates.
constexpr std::pair<std::string_view, EMemberKind> c_templateNames[] = {
    {"basic_string<char, std::char_traits<char>", EMemberKind::String},
    {"basic_string<char,std::char_traits<char>", EMemberKind::String},
    {"basic_string<wchar_t, std::char_traits<wchar_t>", EMemberKind::WideString},
    {"basic_string<wchar_t,std::char_traits<wchar_t>", EMemberKind::WideString},
    {"StrongRef<", EMemberKind::StrongRef},
    {"PassiveRef<", EMemberKind::PassiveRef},
    {"vector<", EMemberKind::Vector},
};

// Types that no kind is of.
constexpr std::string_view c_otherTypes[] = {
    "char",    "signed char", "unsigned char", "short",    "unsigned short",
    "wchar_t", "char8_t",     "char16_t",      "char32_t", "long double",
    "int8_t",  "uint8_t",     "int16_t",       "uint16_t", "void"};

bool dropPrefix(std::string_view & name, std::string_view prefix) noexcept {
    if (!name.starts_with(prefix)) return false;
    name.remove_prefix(prefix.size());
    return true;
}

// Whole numbers of one size come back as they were, with a sign or without.
EMemberKind withoutSign(EMemberKind kind) noexcept {
    if (kind == EMemberKind::Int) return EMemberKind::UnsignedInt;
    return kind == EMemberKind::Int64 ? EMemberKind::UnsignedInt64 : kind;
}

// Whether a field whose type has that name may be of a kind.  False only for what is known to
// differ.
bool mayBe(char const * typeName, MemberMetaType const & type) {
    std::string const whole = typeName ? OS::className(typeName) : std::string();
    std::string_view name = whole;
    for (std::string_view const word : {"class ", "struct ", "enum ", "const "})
        dropPrefix(name, word);
    if (name.ends_with('*') || name.ends_with('&')) return false;
    if (name == type.kindName()) return true;
    bool const isStandard = dropPrefix(name, "std::");
    for (std::string_view const space : {"__cxx11::", "__1::", "Vn::"}) dropPrefix(name, space);
    if (name == type.kindName()) return true;
    for (auto const & [known, kind] : c_typeNames)
        if (name == known) return withoutSign(type.kind()) == withoutSign(kind);
    for (auto const & [known, kind] : c_templateNames)
        if (name.starts_with(known)) return type.kind() == kind;
    for (std::string_view const known : c_otherTypes)
        if (name == known) return false;
    MemberMetaType const * const value = MemberMetaType::find(name);
    if (value && value->kind() == EMemberKind::Value) return false; // of another class
    return !isStandard || type.kind() == EMemberKind::Value;
}

// The values of a class describe themselves while the entities do, and not once one of them
// changes.
void describeValues(MemberMetaType & type) {
    if (type.kind() != EMemberKind::Value) return;
    auto & values = static_cast<ValueMetaType &>(type);
    auto const end = [&](void * value) { values.destruct(value); };
    std::unique_ptr<void, decltype(end)> const value(values.construct(), end);
    values.memberSetOf(value.get());
}

} // namespace

Member::Member(std::string name, std::ptrdiff_t offset, bool inHelper, std::string typeName,
               MemberMetaType * type, std::unique_ptr<TemplatizedFunctions> functions)
    : m_name(std::move(name)), m_typeName(std::move(typeName)), m_pType(type),
      m_pFunctions(std::move(functions)), m_offset(offset), m_bInHelper(inHelper) {}

Member::~Member() = default;

MemberSet::MemberSet(MetaType * type) : m_pMetaType(type) {}
MemberSet::~MemberSet() = default;

void MemberSet::refuse(std::string const & cause) {
    std::string const text = "the class " + m_className + " can't be registered: " + cause;
    clear();
    throw std::invalid_argument(text);
}

void MemberSet::clear() noexcept {
    m_byName.clear();
    m_members.clear();
    m_pObject = nullptr;
    m_pBase = nullptr;
    m_bInitialized = false;
}

void MemberSet::checkKind(std::string const & path, char const * typeName, MemberMetaType * type,
                          TemplatizedFunctions const * functions) {
    if (!type) refuse("the member " + path + " has no kind");
    auto const mismatch = [&](char const * what, char const * name, MemberMetaType const & kind) {
        refuse(what + path + " is of the type " + OS::className(name ? name : "") +
               ", and not of the kind " + kind.kindName());
    };
    if (!mayBe(typeName, *type)) mismatch("the member ", typeName, *type);
    bool const isVector = type->kind() == EMemberKind::Vector;
    if (isVector != (functions != nullptr))
        refuse("the member " + path +
               (isVector ? " is a vector without functions" : " has functions and isn't a vector"));
    if (!isVector) return describeValues(*type);
    MemberMetaType * const element = functions->elementType();
    if (!element) refuse("the elements of the member " + path + " have no kind");
    if (element->kind() == EMemberKind::Vector) refuse(path + " is a vector of vectors");
    if (!mayBe(functions->elementTypeName(), *element))
        mismatch("an element of the member ", functions->elementTypeName(), *element);
    describeValues(*element);
}

void MemberSet::initialize(void * object, char const * className) {
    if (m_pMetaType && !m_pMetaType->isRegistered()) {
        m_className = className;
        refuse("another class has its id, " + m_pMetaType->identifier());
    }
    m_className = className;
    m_pObject = object;
    m_bInitialized = true;
}

Member * MemberSet::addNewMember(std::string const & name, void * fieldAddress,
                                 char const * typeName, MemberMetaType * type,
                                 TemplatizedFunctions * functions, void ** extra) {
    std::unique_ptr<TemplatizedFunctions> owned(functions);
    if (extra) *extra = nullptr;
    try {
        return add(name, fieldAddress, typeName, type, owned);
    } catch (...) { // a set that isn't complete would be taken for one that is
        clear();
        throw;
    }
}

Member * MemberSet::add(std::string const & name, void * fieldAddress, char const * typeName,
                        MemberMetaType * type, std::unique_ptr<TemplatizedFunctions> & functions) {
    std::string const path = m_className + '.' + name;
    if (!m_bInitialized) refuse("the member " + name + " comes before the class is named");
    if (m_byName.contains(name)) refuse("there are two members " + path);
    checkKind(path, typeName, type, functions.get());
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
    Member & added = m_members.emplace_back(name, place - origin, inHelper,
                                            typeName ? typeName : "", type, std::move(functions));
    m_byName.emplace(added.name(), &added);
    return &added;
}

Member const * MemberSet::find(std::string_view name) const noexcept {
    auto const i = m_byName.find(name);
    return i == m_byName.end() ? nullptr : i->second;
}

} // namespace Vn
