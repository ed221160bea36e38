// Reads the configurations of add-ins.

#ifndef VN_PLATFORM_ADDINMGR_ADDINCONFIGURATIONINTERNAL_H
#define VN_PLATFORM_ADDINMGR_ADDINCONFIGURATIONINTERNAL_H

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "Platform/AddInMgr/AddIn.h"
#include "Platform/Base/Status.h"

namespace Vn {

// What a file gave: a configuration, or the reason why it can't be used.  The fields that aren't
// known are empty, but for `file`.
struct ReadConfiguration {
    AddInConfiguration configuration;
    Status status;
};

// Reads all configurations below a root directory, sorted by file.  If a directory can't be read,
// or if there are too many files, `all` stays as it was.
[[nodiscard]] Status readConfigurations(std::filesystem::path const & root,
                                        std::vector<ReadConfiguration> & all);

// Gives those that can be used the order in which they are loaded and puts them first.  Those that
// can't, since they aren't alone with their identifier or module, or for what they require, get
// their reason and keep their order.  `others` are the identifiers that need no configuration.
void orderConfigurations(std::vector<ReadConfiguration> & all,
                         std::vector<std::string> const & others);

} // namespace Vn

#endif
