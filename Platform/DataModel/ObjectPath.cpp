#include "Platform/DataModel/ObjectPath.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Platform/Base/InterfaceId.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/ScriptableObject.h"
#include "Platform/DataModel/Segment.h"

namespace Vn {

namespace {

constexpr std::wstring_view c_marks = L"/[]\\";

void appendEscaped(std::wstring & text, std::wstring const & part) {
    for (wchar_t const c : part) {
        if (c_marks.find(c) != std::wstring_view::npos) text += L'\\';
        text += c;
    }
}

// Reads up to the first mark that belongs to no name, and leaves `text` there.  False if a
// backslash stands in front of something else than a mark.
bool readEscaped(std::wstring_view & text, std::wstring & part) {
    std::size_t i = 0;
    for (; i < text.size() && (text[i] == L'\\' || c_marks.find(text[i]) == c_marks.npos); ++i) {
        if (text[i] == L'\\' && (++i == text.size() || c_marks.find(text[i]) == c_marks.npos))
            return false;
        part += text[i];
    }
    text.remove_prefix(i);
    return true;
}

// Reads one name and leaves `text` after it.
bool readOnk(std::wstring_view & text, Onk & onk) {
    std::wstring name;
    if (!readEscaped(text, name) || name.empty()) return false;
    std::wstring rep;
    if (!text.empty() && text.front() == L'[') {
        text.remove_prefix(1);
        if (!readEscaped(text, rep) || rep.empty() || text.empty() || text.front() != L']')
            return false;
        text.remove_prefix(1);
    }
    onk.strName(name);
    onk.rep(rep);
    return true;
}

} // namespace

Onk::Onk(std::wstring name, int number) : m_strName(std::move(name)) { rep(number); }

void Onk::rep(int number) { m_rep = std::to_wstring(number); }

int Onk::repAsInt() const noexcept {
    if (m_rep.empty()) return -1;
    int number = 0;
    for (wchar_t const c : m_rep) {
        if (c < L'0' || c > L'9') return -1;
        int const digit = static_cast<int>(c - L'0');
        if (number > (std::numeric_limits<int>::max() - digit) / 10) return -1;
        number = number * 10 + digit;
    }
    return number;
}

std::wstring Onk::toString() const {
    std::wstring text;
    appendEscaped(text, m_strName);
    if (!m_rep.empty()) {
        text += L'[';
        appendEscaped(text, m_rep);
        text += L']';
    }
    return text;
}

bool Onk::fromString(std::wstring_view text, Onk & onk) {
    Onk read;
    if (!readOnk(text, read) || !text.empty()) return false;
    onk = std::move(read);
    return true;
}

ObjectPath::ObjectPath(Segment const * segment, std::vector<Onk> onks)
    : m_rAsset(segment ? segment->asset() : nullptr),
      m_segmentType(segment ? segment->segmentType()->type() : 0U), m_onks(std::move(onks)) {}

ObjectPath ObjectPath::of(Entity const & object,
                          StrongRef<Entity> (*parentOf)(Entity const & object)) {
    Segment const * const segment = object.segment();
    if (!segment) return {};
    std::vector<Onk> onks;
    StrongRef<Entity> held; // whose name is to come, if it isn't `object`
    Entity const * walk = &object;
    while (true) {
        if (std::string const * const key = segment->rootKey(walk)) {
            onks.emplace_back(Text::fromUtf8(*key));
            break;
        }
        StrongRef<Entity> parent = parentOf(*walk);
        auto const * const scriptable = query<IScriptableObject>(walk);
        if (!parent || !scriptable) return {};
        Onk onk;
        scriptable->getOnk(onk);
        if (onk.strName().empty()) return {};
        onks.push_back(std::move(onk));
        // A way longer than all there is leads in a circle, and to no root.
        if (onks.size() > segment->asset()->entities()) return {};
        held = std::move(parent);
        walk = held.get();
    }
    std::reverse(onks.begin(), onks.end());
    return ObjectPath(segment, std::move(onks));
}

StrongRef<Entity> ObjectPath::leaf() const { return m_bBound ? m_rBound.lock() : resolve(); }

void ObjectPath::bind() {
    m_rBound = leaf();
    m_bBound = true;
}

StrongRef<Entity> ObjectPath::resolve() const {
    StrongRef<Asset> const asset = m_rAsset.lock();
    if (!asset || m_onks.empty()) return nullptr;
    Segment const * const segment = asset->segment(m_segmentType);
    if (!segment || !m_onks.front().rep().empty()) return nullptr;
    StrongRef<Entity> walk = segment->rootEntity(Text::toUtf8(m_onks.front().strName()));
    for (std::size_t i = 1; walk && i < m_onks.size(); ++i) {
        auto const * const scriptable = query<IScriptableObject>(walk.get());
        IScriptableObject * const child =
            scriptable ? scriptable->getChildObject(m_onks[i], *this) : nullptr;
        walk = StrongRef<Entity>(query<Entity>(child));
    }
    return walk;
}

std::wstring ObjectPath::toString() const {
    std::wstring text;
    for (Onk const & onk : m_onks) {
        if (!text.empty()) text += L'/';
        text += onk.toString();
    }
    return text;
}

bool ObjectPath::fromString(std::wstring_view text, Segment const * segment, ObjectPath & path) {
    std::vector<Onk> onks;
    while (true) {
        if (!readOnk(text, onks.emplace_back())) return false;
        if (text.empty()) break;
        if (text.front() != L'/') return false;
        text.remove_prefix(1);
    }
    path = ObjectPath(segment, std::move(onks));
    return true;
}

bool operator==(ObjectPath const & a, ObjectPath const & b) noexcept {
    return a.m_rAsset == b.m_rAsset && a.m_segmentType == b.m_segmentType && a.m_onks == b.m_onks;
}

} // namespace Vn
