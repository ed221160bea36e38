// A program of someone else's that uses the package through its public headers.

#include <iostream>
#include <typeinfo>

#include "Platform/Base/Initializer.h"
#include "Platform/Base/Text.h"
#include "Platform/DataModel/Asset.h"
#include "Platform/DataModel/DocumentFile.h"
#include "Platform/DataModel/EntityChange.h"
#include "Platform/DataModel/Segment.h"
#include "Server/CommonData/Expressions/Expression.h"
#include "Server/CommonData/Managed/CommonBaseGroupEntity.h"
#include "Server/CommonData/Managed/ManagedEntityUtils.h"
#include "Server/CommonData/Units/SimpleUnits.h"
#include "Server/CommonData/Units/UnitSystem.h"
#include "Server/CommonData/Units/UnitSystemChoice.h"

using namespace Vn;
using Expressions::Expression;
using Units::UnitContext;

namespace {

std::string utf8(std::wstring const & text) { return Text::toUtf8(text); }

bool isBase(Units::Unit const & unit) {
    return dynamic_cast<Units::BaseUnit const *>(&unit) != nullptr;
}

// An entity of the program's own, which documents keep.
class Note : public Managed::Persisted<Note, Managed::ManagedEntity> {
public:
    static constexpr Managed::PersistedClass c_class{"Consumer::Note",
                                                     "5D1C6E0A-77B1-4F6B-9D53-6E1B2A90C4F7", 0};
    static EntityMetaType * s_metaType();
    static StrongRefCreator<Note> make(PassiveRef<Entity> const & parent) { return create(parent); }

    std::wstring const & text() const { return m_text; }
    void text(std::wstring const & text) {
        EntityChange const change(this, DataChange::TransactDirect, DataChange::ChangeValue,
                                  DataChange::TimingPreAndPost, nullptr, true);
        m_text = text;
    }

private:
    friend Managed::PersistedAccess;

    explicit Note(PassiveRef<Entity> const & parent) : Persisted(parent) {
        initializeMemberSetIfNeeded();
    }
    Note(Segment * segment, unsigned long long id) : Persisted(segment, id) {
        initializeMemberSetIfNeeded();
    }
    void initializeMemberSet(unsigned, MemberSet * set) { Managed::addMember(set, "text", m_text); }

    std::wstring m_text;
};

class NoteMetaType final : public Managed::PersistedMetaType<Note> {
public:
    NoteMetaType() : PersistedMetaType("Consumer") {}
} s_note;

EntityMetaType * Note::s_metaType() { return &s_note; }

// Saves a document with a note, and loads it again.
bool keepNote(char const * file) {
    constexpr char c_root[] = "Notes";
    StrongRef<Asset> asset = Asset::make(nullptr);
    Segment * const segment = asset->segment(SegmentType::DesignSegment);
    StrongRef<CommonData::CommonBaseGroupEntity> const notes =
        CommonData::CommonBaseGroupEntity::make(segment);
    segment->addRoot(notes, c_root);
    StrongRef<Note> const note = Note::make(PassiveRef<Entity>(notes));
    note->text(L"a note that was saved");
    if (!DocumentFile::saveAs(*asset, file)) return false;

    StrongRef<Asset> loaded;
    if (!DocumentFile::load(file, nullptr, loaded)) return false;
    StrongRef<Entity> const root = loaded->segment(SegmentType::DesignSegment)->rootEntity(c_root);
    auto const * const group = query<Managed::ManagedGroupEntity>(root.get());
    if (!group || group->children() != 1) return false;
    auto const * const found = query<Note>(group->child(0).get());
    if (!found) return false;
    std::cout << utf8(Managed::ManagedEntityUtils::objectPath(*found).toString()) << ": "
              << utf8(found->text()) << '\n';
    return true;
}

} // namespace

// The argument is a file to write.
int main(int argc, char ** argv) {
    Initializer::runAll();

    Expression const length(L"2' 6 3/4\"", UnitContext(L"cm"));
    if (!length) return 1;
    std::cout << "2' 6 3/4\" = " << *length.value() << " cm = " << utf8(length.textToStore())
              << '\n';

    Expression const speed(L"1 km / hr");
    std::cout.precision(16);
    std::cout << utf8(speed.rebuilt()) << " = " << *speed.value() << " cm / s\n";

    // The types are the same on both sides of the library's border.
    Units::Unit const & meter = *Units::UnitMeter::get(1.0);
    Units::Unit const & newton = *Units::UnitNewton::get(1.0);
    if (typeid(meter) != typeid(Units::UnitMeter)) return 2;
    std::cout << "meter is " << (isBase(meter) ? "a" : "no") << " base unit, newton "
              << (isBase(newton) ? "is" : "isn't") << '\n';

    // A document that measures in inches.
    StrongRef<Asset> const asset = Asset::make(nullptr);
    StrongRef<Units::UnitSystems> const systems = Units::UnitSystems::make(asset->segment(1U));
    StrongRef<Units::UnitSystem> const inches =
        Units::UnitSystem::make(systems, std::wstring(L"Inches"), "inches");
    StrongRef<Units::UnitSystemChoice> const choice =
        Units::UnitSystemChoiceByUnit::make(inches, Units::UnitInch::get());
    UnitContext const document(inches);
    Units::ComplexUnit shown;
    Units::ComplexUnit const centimetre(Units::UnitMeter::get(0.01));
    if (!document.findDefault(centimetre, shown)) return 3;
    std::cout << shown.toThisUnit(30.48) << " in by default: " << shown.toInternal(12.0) << " cm\n";

    std::cout << "sqrt(16) " << (Expression(L"sqrt(16)") ? "is" : "isn't") << " read, wurzel(16) "
              << (Expression(L"wurzel(16)") ? "is" : "isn't") << '\n';
    return argc == 2 && keepNote(argv[1]) ? 0 : 4;
}
