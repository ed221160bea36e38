// The entities of a document as a list.

#ifndef VN_CONSOLE_DOCUMENTS_TREE_H
#define VN_CONSOLE_DOCUMENTS_TREE_H

#include <cstddef>
#include <iosfwd>

#include "Platform/DataModel/Entity.h"

namespace Vn::Console {

class DocumentSession;
struct DocumentPlace;

// Writes a line for each entity of the tree, parents first and siblings in order: its path, its id
// and its text.  With `json` each is an object; its path is null if it is too long to be shown.  A
// group that stands at several places is shown with its children at the first.
void writeTree(DocumentSession const & session, bool json, std::ostream & out);
// The same for the part of the tree at a place.
void writeTree(DocumentPlace const & place, bool json, std::ostream & out);

// The number of entities below one, itself not counted.
std::size_t entitiesBelow(Entity const & entity);

} // namespace Vn::Console

#endif
