// Names of the objects of a document, by which scripts and selections refer to them.
//
// A path is written as the names from a root downwards, with a slash between:
//
//     NamedViews/CmnData[2]
//
// The first is the key of a root, each further one is told by its object.  In a name and in a
// repetition a backslash stands in front of each slash, bracket and backslash that belongs to it.

#ifndef VN_PLATFORM_DATAMODEL_OBJECTPATH_H
#define VN_PLATFORM_DATAMODEL_OBJECTPATH_H

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/RefCounted.h"
#include "Platform/DataModel/Entity.h"
#include "Platform/DataModel/Export.h"

namespace Vn {

class Asset;
class Segment;

// One name of a path: a word, and which of the siblings that bear the same word.
class VN_DATAMODEL_API Onk {
public:
    // Without word and repetition; with a word; with both.
    Onk() = default;
    explicit Onk(std::wstring name) : m_strName(std::move(name)) {}
    Onk(std::wstring name, int number);

    // The word.
    std::wstring const & strName() const noexcept { return m_strName; }
    void strName(std::wstring const & name) { m_strName = name; }

    // The repetition as a text, empty if there is none; and set as a number or as a text.
    std::wstring const & rep() const noexcept { return m_rep; }
    void rep(int number);
    void rep(std::wstring const & text) { m_rep = text; }
    // The repetition as a number; -1 if there is none, or if it isn't a number from 0 to the
    // largest int.
    int repAsInt() const noexcept;

    // "CmnData[3]", or the word alone if there is no repetition.
    std::wstring toString() const;
    // Reads what toString writes.  False for anything else; `onk` is then left as it was.
    static bool fromString(std::wstring_view text, Onk & onk);

    // Equal in word and repetition.
    friend bool operator==(Onk const &, Onk const &) = default;

private:
    std::wstring m_strName;
    std::wstring m_rep;
};

// The way to an object of a document.  It keeps neither the object nor the document alive, and
// isn't a part of the document: a change there may make it lead nowhere, or to another object.
class VN_DATAMODEL_API ObjectPath {
public:
    // Leads nowhere.
    ObjectPath() = default;
    // Leads through `onks` from the roots of a segment, which may be null.
    ObjectPath(Segment const * segment, std::vector<Onk> onks);

    // The path of an object: upwards by `parentOf`, which returns null at a root, and by the names
    // that the objects give themselves.  Empty if the way up doesn't end at a root of the object's
    // segment, or if an object on it has no name.
    static ObjectPath of(Entity const & object,
                         StrongRef<Entity> (*parentOf)(Entity const & object));

    // The names, and whether there are none.
    std::vector<Onk> const & onks() const noexcept { return m_onks; }
    bool empty() const noexcept { return m_onks.empty(); }

    // The object at the end; null if the path leads nowhere at present.
    StrongRef<Entity> leaf() const;
    // Makes `leaf` answer with the object at the end at present, also where the path comes to lead
    // elsewhere; null while that isn't alive, and if there is none.  For callers that change things
    // that several paths lead through.
    void bind();

    // "NamedViews/CmnData[2]"; empty for an empty path.
    std::wstring toString() const;
    // Reads what toString writes, from the roots of `segment`.  False if the text is malformed or
    // empty; `path` is then left as it was.
    static bool fromString(std::wstring_view text, Segment const * segment, ObjectPath & path);

    // Equal in the segment and in the names.
    friend VN_DATAMODEL_API bool operator==(ObjectPath const & a, ObjectPath const & b) noexcept;

private:
    StrongRef<Entity> resolve() const;

    PassiveRef<Asset> m_rAsset;
    unsigned m_segmentType = 0;
    std::vector<Onk> m_onks;
    PassiveRef<Entity> m_rBound;
    bool m_bBound = false;
};

} // namespace Vn

#endif
