// Places in the tree of a document, as a person names them.
//
//   Groups/CmnData[0]/CmnData[2]    the object path: the key of a root, and the place of each child
//                                   among its siblings
//   0/2                             the same below the root "Groups"
//   Groups or .                     that root itself
//   #12                             the entity with the id 12

#ifndef VN_CONSOLE_DOCUMENTS_PLACE_H
#define VN_CONSOLE_DOCUMENTS_PLACE_H

#include <cstddef>
#include <string>

#include "Platform/DataModel/Entity.h"
#include "Server/CommonData/Managed/TreePlace.h"

namespace Vn::Console {

class DocumentSession;

// A place, and the object path by which it is shown.
struct DocumentPlace : Managed::TreePlace {
    std::wstring path;
};

// Finds the place that a text names in the open document.  The answer is empty, or says why there
// is none; `place` is then left as it was.
std::wstring findPlace(DocumentSession const & session, std::wstring const & text,
                       DocumentPlace & place);

// The path of a child, from that of its group.
void appendChild(std::wstring & path, std::size_t index);
std::wstring childPath(std::wstring path, std::size_t index);
// That of an entity, by its parents; empty if they don't lead to a root.
std::wstring entityPath(Entity const & entity);
// A path as it is shown: of a long one only the end.
std::wstring shownPath(std::wstring const & path);

// The longest path that is shown in full.
inline constexpr std::size_t c_longestPath = 1000;

} // namespace Vn::Console

#endif
