// The persisted members of an entity by name and as text, for callers that don't know its class:
// consoles, scripts, property panels.

#ifndef VN_PLATFORM_DATAMODEL_ENTITYMEMBERS_H
#define VN_PLATFORM_DATAMODEL_ENTITYMEMBERS_H

#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/Base/Status.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

namespace DataModel {
struct Leaf;
}

// A member has the name that its class gives it, "boards"; a part of a value has a longer one,
// "origin.x".  Where two classes of a chain give the same name, it is that of the derived class;
// with the name of the class before it, "Shelf.boards", a name finds the member of any class.
//
// Values are texts:
//
//   bool                        true, false
//   whole numbers               decimal digits, with a "-" where the kind has a sign
//   float, double               the shortest number that reads back; inf, -inf, nan
//   texts                       the text itself.  What isn't UTF-8 in a std::string shows as U+FFFD
//   GlobalizedString            the text in the present language; once set, the same in all
//   references                  #12 for the entity with the id 12, or null.  They are never set
//   vectors                     [1,2,3] or ["a","b"], as JSON has it and Docs/document-format.md
//                               tells; blanks between the elements are passed over
class VN_DATAMODEL_API EntityMembers {
public:
    // One member.
    struct Info {
        std::string name;        // the shortest that finds it
        std::string className;   // of the class that declares it, without namespaces
        std::string kind;        // as in documents: "double"; "Vector of double"
        std::string whyReadOnly; // empty if it can be set
    };

    // Keeps the entity.
    explicit EntityMembers(StrongRef<Entity> entity) : m_rEntity(std::move(entity)) {}

    // All members, those of base classes first, each class's in its order.
    std::vector<Info> all() const;
    // The value of a member.  Fails with StatusNotFound if there is none of that name.
    Status get(std::string_view name, std::wstring & text) const;
    // Gives a member the value that a text says: by the setter that its class declares, or within a
    // bracket that tells of ChangeValue.  It can be undone if a transaction is open.  The value
    // that the member has already is no change, unless the class has a setter.  Nothing is changed
    // when it fails: with StatusNotFound for a name that isn't there, StatusAccessDenied for a
    // member that is read-only or a reference, StatusInvalidArgument for a text that isn't a value
    // of the kind, and for an entity that isn't in a document; and with what a setter answers.
    Status set(std::string_view name, std::wstring_view text) const;

private:
    DataModel::Leaf const * find(std::string_view name) const;

    StrongRef<Entity> m_rEntity;
};

} // namespace Vn

#endif
