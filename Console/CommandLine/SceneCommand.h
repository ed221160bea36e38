// vnconsole scene: the render graph of a document.

#ifndef VN_CONSOLE_COMMANDLINE_SCENECOMMAND_H
#define VN_CONSOLE_COMMANDLINE_SCENECOMMAND_H

#include <iosfwd>
#include <string>

namespace Vn::Console {

// Opens the document, which stays as it is, and shows the nodes of its graph, each before those
// below it: as a table, or as JSON Lines with all numbers of the meshes.
int runScene(std::wstring const & file, bool json, std::ostream & out, std::ostream & err);

} // namespace Vn::Console

#endif
