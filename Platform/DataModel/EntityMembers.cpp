#include "Platform/DataModel/EntityMembers.h"

#include <algorithm>
#include <map>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/File/Text.h"
#include "Platform/DataModel/File/Values.h"
#include "Platform/DataModel/MemberLayoutInternal.h"
#include "Platform/DataModel/MetaType.h"

namespace Vn {

using DataModel::isReference;
using DataModel::JsonReader;
using DataModel::Leaf;
using DataModel::memberKind;
using DataModel::WordBuffer;

namespace {

constexpr char const * c_notAList = localizable("it isn't a list of that kind");

// A value as it is kept in a log, given up at the end.
class KeptValue {
public:
    explicit KeptValue(Leaf const & leaf) noexcept : m_leaf(leaf) {}
    ~KeptValue() {
        if (m_words.size() == 0) return;
        std::uint64_t * words = m_words.data();
        DataModel::release(m_leaf, words);
    }
    KeptValue(KeptValue const &) = delete;
    KeptValue & operator=(KeptValue const &) = delete;

    // The answer is what is wrong with the text; null if nothing is.
    char const * parse(std::wstring_view text) {
        if (m_leaf.kind != EMemberKind::Vector) return memberKind(m_leaf.kind).parse(text, m_words);
        return parseList(Text::toUtf8(text));
    }
    void keep(void const * field) { DataModel::keep(m_leaf, field, nullptr, m_words); }

    bool isThatOf(void const * field) const {
        std::uint64_t const * words = m_words.data();
        return DataModel::isKept(m_leaf, field, words);
    }
    void putInto(void * field) const {
        std::uint64_t const * words = m_words.data();
        DataModel::restore(m_leaf, field, words);
    }

private:
    char const * parseList(std::string const & text) {
        JsonReader json(text);
        m_words.push(0); // the number of elements
        return parseElements(json);
    }

    char const * parseElements(JsonReader & json) {
        skipBlanks(json);
        if (!json.skip('[')) return c_notAList;
        skipBlanks(json);
        if (json.peek() != ']') {
            do {
                skipBlanks(json);
                if (char const * const wrong = parseOne(json)) return wrong;
                skipBlanks(json);
            } while (json.skip(','));
        }
        if (!json.skip(']')) return c_notAList;
        skipBlanks(json);
        return json.atEnd() ? nullptr : c_notAList;
    }

    // Counted once it is whole: only whole elements are given up.
    char const * parseOne(JsonReader & json) {
        std::size_t const begin = m_words.size();
        if (m_leaf.elementKind != EMemberKind::Value) {
            if (char const * const wrong =
                    memberKind(m_leaf.elementKind).parseElement(m_reader, json, m_words))
                return wrong;
            ++m_words[0];
            return nullptr;
        }
        char const * const wrong = parseParts(json);
        if (!wrong)
            ++m_words[0];
        else
            m_words.truncate(begin);
        return wrong;
    }

    char const * parseParts(JsonReader & json) {
        std::size_t done = 0;
        std::size_t const begin = m_words.size();
        char const * wrong = json.skip('{') ? nullptr : c_notAList;
        for (Leaf const & part : *m_leaf.elementLeaves) {
            if (wrong) break;
            wrong = parsePart(json, part, done > 0);
            if (!wrong) ++done;
        }
        skipBlanks(json);
        if (!wrong && !json.skip('}')) wrong = c_notAList;
        if (!wrong) return nullptr;
        std::uint64_t * words = m_words.data() + begin;
        for (std::size_t i = 0; i < done; ++i)
            DataModel::release((*m_leaf.elementLeaves)[i], words);
        return wrong;
    }

    char const * parsePart(JsonReader & json, Leaf const & part, bool isNext) {
        skipBlanks(json);
        if (isNext && !json.skip(',')) return c_notAList;
        skipBlanks(json);
        std::string name;
        if (!json.readString(name) || name != nameOf(part)) return c_notAList;
        skipBlanks(json);
        if (!json.skip(':')) return c_notAList;
        skipBlanks(json);
        return memberKind(part.kind).parseElement(m_reader, json, m_words);
    }

    static void skipBlanks(JsonReader & json) noexcept {
        while (json.skip(' ')) {}
    }

    Leaf const & m_leaf;
    WordBuffer m_words;
    DataModel::ValueReader m_reader;
};

// References as people read them, by what is there.
class ElementWriter final : public DataModel::ValueWriter {
private:
    unsigned long long onIdOf(Entity const * target) const noexcept override {
        return target ? target->id() : 0;
    }
    unsigned long long onIdOf(PassiveRef<Entity> const & reference) const noexcept override {
        return onIdOf(reference.get());
    }
};

std::wstring listText(Leaf const & leaf, void * field) {
    ElementWriter writer;
    std::string json = "[";
    std::size_t const count = leaf.functions->elementCount(field);
    std::size_t const stride = leaf.functions->memberBytes(1);
    auto const * element = static_cast<char const *>(leaf.functions->firstElement(field));
    for (std::size_t i = 0; i < count; ++i, element += stride) {
        if (i > 0) json += ',';
        if (leaf.elementKind != EMemberKind::Value) {
            memberKind(leaf.elementKind).append(writer, element, json);
            continue;
        }
        char separator = '{';
        for (Leaf const & part : *leaf.elementLeaves) {
            json += std::exchange(separator, ',');
            DataModel::appendJsonText(json, std::string(nameOf(part)), true);
            json += ':';
            memberKind(part.kind).append(writer, element + part.offset, json);
        }
        if (separator == '{') json += '{';
        json += '}';
    }
    return Text::fromUtf8(json + ']');
}

// The member of the entity that a leaf is, or is a part of.
Member const & memberOf(Leaf const & leaf) {
    std::string_view const name = nameOf(leaf);
    return *leaf.set->find(name.substr(0, name.find('.')));
}

bool isShown(Leaf const & leaf) noexcept { return leaf.isPersisted && !leaf.isInHelper; }

bool leadsSomewhere(Leaf const & leaf) {
    if (isReference(leaf.kind)) return true;
    if (leaf.kind != EMemberKind::Vector) return false;
    if (leaf.elementKind != EMemberKind::Value) return isReference(leaf.elementKind);
    return std::any_of(leaf.elementLeaves->begin(), leaf.elementLeaves->end(),
                       [](Leaf const & part) { return isReference(part.kind); });
}

std::string whyReadOnly(Leaf const & leaf) {
    if (leadsSomewhere(leaf))
        return leaf.kind == EMemberKind::Vector ? localized("it holds references to entities")
                                                : localized("it is a reference to an entity");
    return localized(memberOf(leaf).readOnly().c_str());
}

constexpr char c_set[] = "set the member";

} // namespace

std::vector<EntityMembers::Info> EntityMembers::all() const {
    std::vector<Leaf> const & leaves = m_rEntity->metaType()->layout().leaves();
    std::map<std::string, Leaf const *> byName; // the most derived of a name
    for (Leaf const & leaf : leaves)
        if (isShown(leaf)) byName[std::string(nameOf(leaf))] = &leaf;
    std::vector<Info> infos;
    for (Leaf const & leaf : leaves) {
        if (!isShown(leaf)) continue;
        std::string name(nameOf(leaf));
        std::string kind = memberKind(leaf.kind).name;
        if (leaf.kind == EMemberKind::Vector)
            kind = kind + " of " + leaf.functions->elementType()->kindName();
        if (byName[name] != &leaf) name = leaf.path;
        infos.push_back(
            {std::move(name), leaf.set->className(), std::move(kind), whyReadOnly(leaf)});
    }
    return infos;
}

Leaf const * EntityMembers::find(std::string_view name) const {
    std::vector<Leaf> const & leaves = m_rEntity->metaType()->layout().leaves();
    auto const isNamed = [&](Leaf const & leaf) { return isShown(leaf) && nameOf(leaf) == name; };
    auto const derived = std::find_if(leaves.rbegin(), leaves.rend(), isNamed);
    if (derived != leaves.rend()) return &*derived;
    auto const whole = std::find_if(leaves.rbegin(), leaves.rend(), [&](Leaf const & leaf) {
        return isShown(leaf) && leaf.path == name;
    });
    return whole == leaves.rend() ? nullptr : &*whole;
}

Status EntityMembers::get(std::string_view name, std::wstring & text) const {
    Leaf const * const leaf = find(name);
    if (!leaf)
        return Status::notFound("show the member", name,
                                localized("the entity has no such member"));
    void * const field = DataModel::field(*m_rEntity, *leaf);
    text = leaf->kind == EMemberKind::Vector ? listText(*leaf, field)
                                             : memberKind(leaf->kind).print(field);
    return Status();
}

Status EntityMembers::set(std::string_view name, std::wstring_view text) const {
    Leaf const * const leaf = find(name);
    if (!leaf) return Status::notFound(c_set, name, localized("the entity has no such member"));
    if (!m_rEntity->isAlive())
        return Status::invalidArgument(c_set, name, localized("the entity isn't in a document"));
    if (std::string const why = whyReadOnly(*leaf); !why.empty())
        return Status(StatusAccessDenied, c_set, name, why);
    KeptValue value(*leaf);
    if (char const * const wrong = value.parse(text))
        return Status::invalidArgument(c_set, name, localized(wrong));

    Entity & entity = *m_rEntity;
    void * const field = DataModel::field(entity, *leaf);
    Member const & member = memberOf(*leaf);
    if (member.hasSetter()) {
        // The whole member, of which this may be a part.
        return member.set(entity, [&](void * place) {
            for (Leaf const & part : entity.metaType()->layout().leaves()) {
                if (part.set != leaf->set || &memberOf(part) != &member) continue;
                void * const into = static_cast<char *>(place) + (part.offset - member.offset());
                if (&part == leaf) {
                    value.putInto(into);
                    continue;
                }
                KeptValue present(part);
                present.keep(DataModel::field(entity, part));
                present.putInto(into);
            }
        });
    }
    if (value.isThatOf(field)) return Status();
    EntityChange const change(&entity, DataChange::TransactDirect, DataChange::ChangeValue,
                              DataChange::TimingPreAndPost, nullptr, true);
    value.putInto(field);
    return Status();
}

} // namespace Vn
