// Which fields of a class are persisted, and where they lie.

#ifndef VN_PLATFORM_DATAMODEL_MEMBERSET_H
#define VN_PLATFORM_DATAMODEL_MEMBERSET_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <tbb/spin_rw_mutex.h>

#include "Platform/Base/Status.h"
#include "Platform/DataModel/Export.h"
#include "Platform/DataModel/MemberMetaType.h"

// The mutex under the name by which member sets have always offered it.
namespace tbb {
// The present mutex.
using spin_rw_mutex_v3 = spin_rw_mutex;
} // namespace tbb

namespace Vn {

class Entity;
class MetaType;

// One persisted field.
class VN_DATAMODEL_API Member {
public:
    // Bits of `options`.
    enum EOption : std::uint32_t {
        OptionUndoable = 1,  // recorded by brackets
        OptionPersisted = 2, // written to the file
        OptionFollowed = 16, // a walk along references, to copy or to collect, goes on through it
        OptionParent =
            32, // the reference to what the entity stands in; of the first member with it
        OptionsDefault = OptionUndoable | OptionPersisted | OptionFollowed
    };

    // `functions` is taken over, and is null for a field that isn't a container.  The others are
    // told below.
    Member(std::string name, std::ptrdiff_t offset, bool inHelper, std::string typeName,
           MemberMetaType * type, std::unique_ptr<TemplatizedFunctions> functions);
    ~Member();
    Member(Member const &) = delete;
    Member & operator=(Member const &) = delete;

    // The key of the field in documents.
    std::string const & name() const noexcept { return m_name; }
    // The run-time type name of the field, as the class gave it.
    std::string const & typeName() const noexcept { return m_typeName; }
    // The kind of the field; of a vector, that of vectors.
    MemberMetaType * type() const noexcept { return m_pType; }
    // How to handle the container; null for a field that is none.
    TemplatizedFunctions * functions() const noexcept { return m_pFunctions.get(); }
    // From the object to the field; with `inHelper` from its migration helper.
    std::ptrdiff_t offset() const noexcept { return m_offset; }
    bool inHelper() const noexcept { return m_bInHelper; }

    // What is done with the field; all there is unless the class says otherwise.
    std::uint32_t options() const noexcept { return m_options; }
    bool test(std::uint32_t options) const noexcept { return (m_options & options) != 0; }
    Member & set(std::uint32_t options) noexcept {
        m_options |= options;
        return *this;
    }
    Member & clear(std::uint32_t options) noexcept {
        m_options &= ~options;
        return *this;
    }

    // How EntityMembers sets the field, which stores values by itself unless the class says here
    // what else is to happen.  Undo, redo and loading ask neither.

    // Has the field refuse every value, with the reason as a part of a sentence: "the number is
    // given when the group is made".
    Member & readOnly(std::string reason) {
        m_readOnly = std::move(reason);
        return *this;
    }
    // Why the field can't be set; empty if it can.
    std::string const & readOnly() const noexcept { return m_readOnly; }

    // Has values go through an operation of the class, which opens its own bracket, or refuses the
    // value with a Status whose cause says why.  `Value` is the type of the field.
    template <class Class, class Value>
    Member & setter(Status (*operation)(Class & object, Value const & value)) {
        m_setter = [operation](Entity & entity, std::function<void(void *)> const & read) {
            Value value{};
            read(&value);
            return operation(static_cast<Class &>(entity), value);
        };
        return *this;
    }
    // Whether there is such an operation, and calling it: `read` puts the value into a field of the
    // type.  For the data model's own use.
    bool hasSetter() const noexcept { return static_cast<bool>(m_setter); }
    Status set(Entity & entity, std::function<void(void *)> const & read) const {
        return m_setter(entity, read);
    }

private:
    std::string const m_name;
    std::string const m_typeName;
    MemberMetaType * const m_pType;
    std::unique_ptr<TemplatizedFunctions> const m_pFunctions;
    std::ptrdiff_t const m_offset;
    bool const m_bInHelper;
    std::uint32_t m_options = OptionsDefault;
    std::string m_readOnly;
    std::function<Status(Entity &, std::function<void(void *)> const &)> m_setter;
};

// The persisted fields of one class in one version, in order, chained to those of its base.  It is
// filled once, under its mutex, by the first object of the class, and only read afterwards.
//
// A class that describes itself wrongly is a programmer's mistake.  It shows at the first object:
// the operations that fill the set throw std::invalid_argument, which names the class and the
// member, and the set is empty again, so that each further object of the class fails in the same
// way.  If memory runs out they throw std::bad_alloc, the set is empty too, and the next object
// fills it.  What else may throw while a class fills its set ends with `clear`.
class VN_DATAMODEL_API MemberSet {
public:
    // `type` is the class's meta type.
    explicit MemberSet(MetaType * type);
    ~MemberSet();
    MemberSet(MemberSet const &) = delete;
    MemberSet & operator=(MemberSet const &) = delete;

    // Guards the filling.
    tbb::spin_rw_mutex_v3 & mutex() noexcept { return m_mutex; }
    // Whether `initialize` ran.
    bool initialized() const noexcept { return m_bInitialized; }
    // Begins the set.  `object` is the instance whose fields are added, from which the offsets are
    // taken; `className` the name of the class without its namespaces.  A class whose meta type
    // isn't registered is refused.
    void initialize(void * object, char const * className);
    // Appends a member.  `functions`, which is taken over, tells how to handle a container and is
    // null for other fields.  `extra` may be null; what it points to is set to null.  A field
    // outside the object is one of its migration helper.
    //
    // `typeName` is the run-time type name of the field, as the compiler or as a person writes it.
    // Refused are a name that the class has already, a kind that is null, a kind that the field is
    // known not to be of, and a vector without functions or functions without a vector.  A whole
    // number may be of a kind of its size with or without a sign.  A type of another name, such as
    // an enumeration, is taken for what the kind says.
    Member * addNewMember(std::string const & name, void * fieldAddress, char const * typeName,
                          MemberMetaType * type, TemplatizedFunctions * functions, void ** extra);
    // Empties the set, as it was before `initialize`: for a filling that something ended.
    void clear() noexcept;
    // The set of the base class; null at the end.
    void base(MemberSet * set) noexcept { m_pBase = set; }
    MemberSet * base() const noexcept { return m_pBase; }

    // The class's meta type and its name.
    MetaType * metaType() const noexcept { return m_pMetaType; }
    std::string const & className() const noexcept { return m_className; }
    // The class's own members.
    unsigned members() const noexcept { return static_cast<unsigned>(m_members.size()); }
    Member const & member(unsigned index) const { return m_members[index]; }
    // A member of this class by its name; null if there is none.
    Member const * find(std::string_view name) const noexcept;

private:
    Member * add(std::string const & name, void * fieldAddress, char const * typeName,
                 MemberMetaType * type, std::unique_ptr<TemplatizedFunctions> & functions);
    [[noreturn]] void refuse(std::string const & cause);
    void checkKind(std::string const & path, char const * typeName, MemberMetaType * type,
                   TemplatizedFunctions const * functions);

    MetaType * const m_pMetaType;
    tbb::spin_rw_mutex_v3 m_mutex;
    bool m_bInitialized = false;
    MemberSet * m_pBase = nullptr;
    void * m_pObject = nullptr;
    std::string m_className;
    std::deque<Member> m_members; // a deque, so that a Member keeps its address
    std::unordered_map<std::string_view, Member const *> m_byName;
};

} // namespace Vn

#endif
