#include "Platform/Base/Spelling.h"

#include <algorithm>
#include <vector>

#include "Platform/Base/Text.h"

namespace Vn::Spelling {

std::size_t mistakes(std::wstring_view a, std::wstring_view b) {
    std::vector<std::size_t> before(b.size() + 1);
    std::vector<std::size_t> above(b.size() + 1);
    std::vector<std::size_t> row(b.size() + 1);
    auto const same = [&](std::size_t i, std::size_t j) {
        return Text::foldedEqual(a.substr(i, 1), b.substr(j, 1));
    };
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        before.swap(above);
        above.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            row[j] = std::min(
                {above[j] + 1, row[j - 1] + 1, above[j - 1] + (same(i - 1, j - 1) ? 0 : 1)});
            if (i > 1 && j > 1 && same(i - 1, j - 2) && same(i - 2, j - 1))
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
    }
    return row[b.size()];
}

} // namespace Vn::Spelling
