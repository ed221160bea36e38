#include "Platform/Base/UniqueString.h"

#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

#include "Platform/Base/Shared.h"

namespace Vn {

namespace {

struct Table {
    std::shared_mutex mutex;
    // The keys are views of the identifiers' own texts.
    std::unordered_map<std::string_view, std::unique_ptr<UniqueString const>> strings;
};

constinit Shared<Table> s_table;

} // namespace

UniqueString const * UniqueString::find(std::string_view text, bool create) {
    Table & table = s_table.get([] { return new Table; });
    {
        std::shared_lock const guard(table.mutex);
        auto const found = table.strings.find(text);
        if (found != table.strings.end()) return found->second.get();
    }
    if (!create) return nullptr;
    std::unique_ptr<UniqueString const> made(new UniqueString(text));
    std::unique_lock const guard(table.mutex);
    // Another thread may have been faster; then its identifier is the one.
    std::string_view const key = made->string();
    return table.strings.try_emplace(key, std::move(made)).first->second.get();
}

} // namespace Vn
