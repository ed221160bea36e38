// How near one name is to another, to suggest what a mistyped name was meant to be.

#ifndef VN_PLATFORM_BASE_SPELLING_H
#define VN_PLATFORM_BASE_SPELLING_H

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <ranges>
#include <string_view>
#include <vector>

#include "Platform/Base/Export.h"

namespace Vn::Spelling {

// The number of characters to insert, drop, replace, or swap with their neighbour to get from one
// name to the other, ASCII case not counted.  The cost is the product of the lengths.
VN_BASE_API std::size_t mistakes(std::wstring_view a, std::wstring_view b);

// How many mistakes a name of that length may have and still be recognised.
constexpr std::size_t allowedMistakes(std::size_t length) {
    return length < 3 ? 0 : length < 6 ? 1 : length < 10 ? 2 : 3;
}

// Those of `items` whose names are the nearest to `name`, in their order; none if all have more
// than `allowed` mistakes.  An item whose name shares nothing with `name` isn't meant by it.
// `nameOf` gives the name of an item.  What is returned points to the items.  A name whose length
// differs by more than `allowed` costs nothing.
template <std::ranges::forward_range Items, class NameOf = std::identity>
auto nearest(std::wstring_view name, Items const & items, std::size_t allowed, NameOf nameOf = {}) {
    std::vector<std::ranges::range_value_t<Items> const *> found;
    std::size_t least = allowed;
    for (auto const & item : items) {
        auto const & text = std::invoke(nameOf, item);
        std::wstring_view const candidate(text);
        auto const [shorter, longer] = std::minmax({name.size(), candidate.size()});
        if (longer - shorter > least) continue;
        std::size_t const count = mistakes(name, candidate);
        if (count > least || count >= candidate.size()) continue;
        if (count < least) found.clear();
        least = count;
        found.push_back(std::addressof(item));
    }
    return found;
}

} // namespace Vn::Spelling

#endif
