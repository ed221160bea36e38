// Entities as a person names them.

#ifndef VN_CONSOLE_DOCUMENTS_ENTITYTEXTS_H
#define VN_CONSOLE_DOCUMENTS_ENTITYTEXTS_H

#include <string>

#include "Platform/DataModel/Entity.h"

namespace Vn::Console {

// "CommonBaseEntity" for an entity of the meta type "CommonBaseEntityMetaType".
std::string className(Entity const & entity);

// What an entity is, in a word or two: "group", "view"; of a class that the console doesn't know,
// the name of the class.
std::wstring kindOf(Entity const & entity);

// What tells an entity from others of its kind, on a line: the name of a view, the unit of a
// choice, how many entities a group lists.  Empty if nothing does.
std::wstring gistOf(Entity const & entity);

} // namespace Vn::Console

#endif
