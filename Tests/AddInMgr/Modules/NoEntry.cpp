// A module that is no add-in: it lacks _GetIAddIn.

#include "Platform/AddInMgr/Export.h"

extern "C" VN_ADDIN_EXPORT int somethingElse() { return 1; }
