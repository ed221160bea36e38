// The entities of a document as a list.

#ifndef VN_CONSOLE_DOCUMENTS_TREE_H
#define VN_CONSOLE_DOCUMENTS_TREE_H

#include <cstddef>
#include <iosfwd>

#include "Platform/DataModel/Entity.h"

namespace Vn::Console {

class DocumentSession;
struct DocumentPlace;

// How an entity is shown on its line.
enum class ETreeForm {
    Brief,   // its path, its id, what it is and what tells it from others
    Verbose, // its path, its id and its text
    Json     // an object with all of these; the path is null if it is too long to be shown
};

// Writes a line for each entity of the tree, parents first and siblings in order.  A group that
// stands at several places is shown with its children at the first.
void writeTree(DocumentSession const & session, ETreeForm form, std::ostream & out);
// The same for the part of the tree at a place.
void writeTree(DocumentPlace const & place, ETreeForm form, std::ostream & out);

// The number of entities below one, itself not counted.
std::size_t entitiesBelow(Entity const & entity);

} // namespace Vn::Console

#endif
