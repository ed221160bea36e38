// The units of a document for those who only ask: the file is read, and not kept open.

#ifndef VN_CONSOLE_DOCUMENTS_DOCUMENTUNITS_H
#define VN_CONSOLE_DOCUMENTS_DOCUMENTUNITS_H

#include <iosfwd>
#include <optional>
#include <string>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Asset.h"
#include "Server/CommonData/Units/UnitContext.h"
#include "Server/CommonData/Units/UnitSystem.h"

namespace Vn::Console {

// Which unit system is asked for what.
struct DocumentUnits {
    std::optional<std::wstring> file;   // the document; none: there is no system
    std::optional<std::wstring> system; // its identifier; the only one if it is left out
    std::optional<std::wstring> kind;   // a kind of quantity
    std::optional<std::wstring> id;     // the key of a choice
};

// A system, and the document that it belongs to, which has to stay as long as it is asked.
struct OpenedUnits {
    StrongRef<Asset> asset;
    StrongRef<Units::UnitSystem> system;
};

// Opens the system; what is wrong is told on `err`, and the answer is an exit status.
int openUnits(DocumentUnits const & options, OpenedUnits & units, std::ostream & err);

// The context of the constructor that fits what is asked for: a unit as a text, or a kind, or
// neither, with or without a key.  As above.
int makeDocumentContext(DocumentUnits const & options, std::optional<std::wstring> const & unit,
                        OpenedUnits const & units, Units::UnitContext & context,
                        std::ostream & err);

} // namespace Vn::Console

#endif
