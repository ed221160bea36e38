// Where there is no library that draws.

#include "Console/Documents/Operations.h"
#include "Console/Messages.h"

namespace Vn::Console {

TextCommandResult drawPicture(DocumentSession &, TextCommandParameters const &) {
    return cannot(tr(L"cannot draw the picture: %1%"),
                  message(L"there is no library for drawing on this system"));
}

} // namespace Vn::Console
