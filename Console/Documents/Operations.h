// What the commands on documents do.  The table of the commands tells how each is called.

#ifndef VN_CONSOLE_DOCUMENTS_OPERATIONS_H
#define VN_CONSOLE_DOCUMENTS_OPERATIONS_H

#include <iosfwd>
#include <string>
#include <string_view>

#include "Platform/Base/TextCommand.h"

namespace Vn::Console {

class DocumentSession;

// The file, the tree and the history.
TextCommandResult newDocument(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult openDocument(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult saveDocument(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult saveDocumentAs(DocumentSession & session,
                                 TextCommandParameters const & parameters);
TextCommandResult showTree(DocumentSession const & session,
                           TextCommandParameters const & parameters, std::ostream & out);
TextCommandResult undoChange(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult redoChange(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult showHistory(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult checkDocument(DocumentSession & session,
                                TextCommandParameters const & parameters);

// The members of an entity.
TextCommandResult showMembers(DocumentSession const & session,
                              TextCommandParameters const & parameters, std::ostream & out);
TextCommandResult setMember(DocumentSession & session, TextCommandParameters const & parameters);

// The groups.
TextCommandResult makeGroupAt(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult addEntities(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult removeEntity(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult moveEntity(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult deleteGroup(DocumentSession & session, TextCommandParameters const & parameters);

// The unit systems.
TextCommandResult makeUnitSystem(DocumentSession & session,
                                 TextCommandParameters const & parameters);
TextCommandResult completeUnitSystem(DocumentSession & session,
                                     TextCommandParameters const & parameters);
TextCommandResult removeUnitSystem(DocumentSession & session,
                                   TextCommandParameters const & parameters);
TextCommandResult chooseUnit(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult chooseUnitById(DocumentSession & session,
                                 TextCommandParameters const & parameters);
TextCommandResult changeUnit(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult removeUnitChoice(DocumentSession & session,
                                   TextCommandParameters const & parameters);
TextCommandResult listUnitSystems(DocumentSession const & session,
                                  TextCommandParameters const & parameters, std::ostream & out);
TextCommandResult showUnitSystem(DocumentSession const & session,
                                 TextCommandParameters const & parameters, std::ostream & out);

TextCommandResult activateUnitSystem(DocumentSession & session,
                                     TextCommandParameters const & parameters);
TextCommandResult deactivateUnitSystem(DocumentSession & session,
                                       TextCommandParameters const & parameters);

// The settings.
TextCommandResult listSettings(DocumentSession const & session,
                               TextCommandParameters const & parameters, std::ostream & out);
TextCommandResult setSetting(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult resetSettings(DocumentSession & session,
                                TextCommandParameters const & parameters);
TextCommandResult resetAxes(DocumentSession & session, TextCommandParameters const & parameters);

// The named views.
TextCommandResult listViews(DocumentSession const & session,
                            TextCommandParameters const & parameters, std::ostream & out);
TextCommandResult newView(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult updateView(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult renameView(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult deleteView(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult moveViews(DocumentSession & session, TextCommandParameters const & parameters);
TextCommandResult synchronizeViews(DocumentSession & session,
                                   TextCommandParameters const & parameters);
TextCommandResult restoreViews(DocumentSession & session, TextCommandParameters const & parameters);

// What is made of the document.
TextCommandResult drawPicture(DocumentSession & session, TextCommandParameters const & parameters);

// A refusal: a message such as "cannot save: %1%", with the reason in its place.
TextCommandResult cannot(wchar_t const * refusal, std::wstring_view reason);

} // namespace Vn::Console

#endif
