#include "Platform/DataModel/Log/Losses.h"

#include <string>
#include <utility>

#include "Platform/Base/UniqueString.h"
#include "Platform/DataModel/Entity.h"

namespace Vn {

namespace {

std::string counted(std::size_t count, std::string const & word) {
    return std::to_string(count) + ' ' + word + (count == 1 ? "" : "s");
}

} // namespace

Status UnrecordedChanges::status() const {
    if (changes == 0) return Status();
    std::string const kind = interfaceId ? interfaceId->string() : entity ? "entity" : "roots";
    return Status::failed("keep the history", entity ? kind + ' ' + std::to_string(entity) : kind,
                          "changed outside of a transaction (" + counted(changes, "change") +
                              "): lost " + counted(undoSteps, "step") + " to undo and " +
                              std::to_string(redoSteps) + " to redo");
}

} // namespace Vn

namespace Vn::DataModel {

namespace {

void add(UnrecordedChanges & sum, UnrecordedChanges const & change) noexcept {
    if (sum.changes == 0) {
        sum.entity = change.entity;
        sum.interfaceId = change.interfaceId;
    }
    sum.changes += change.changes;
    sum.undoSteps += change.undoSteps;
    sum.redoSteps += change.redoSteps;
}

} // namespace

void Losses::function(ChangeHistory::UnrecordedFunction function) {
    std::shared_ptr<ChangeHistory::UnrecordedFunction const> made;
    if (function)
        made = std::make_shared<ChangeHistory::UnrecordedFunction const>(std::move(function));
    m_pFunction = std::move(made);
    m_told = {};
    m_bFirst = true;
}

bool Losses::note(std::size_t undoSteps, std::size_t redoSteps, Entity const * entity,
                  bool isMade) noexcept {
    UnrecordedChanges change;
    change.changes = 1;
    change.undoSteps = undoSteps;
    change.redoSteps = redoSteps;
    if (entity) change.entity = entity->id();
    if (entity && !isMade) change.interfaceId = entity->getInterfaceId();
    add(m_taken, change);
    if (!m_pFunction || m_bTelling) return false;
    // What goes on after the first change loses nothing more, until there are steps again.
    if (!m_bFirst && m_told.changes == 0 && undoSteps == 0 && redoSteps == 0) return false;
    add(m_told, change);
    return true;
}

void Losses::tell() noexcept {
    // The function may set another.
    std::shared_ptr<ChangeHistory::UnrecordedFunction const> const told = m_pFunction;
    if (!told) return;
    UnrecordedChanges const changes = std::exchange(m_told, {});
    m_bFirst = false;
    m_bTelling = true;
    try {
        (*told)(changes);
    } catch (...) { // the change is made, whatever the host makes of it
    }
    m_bTelling = false;
}

UnrecordedChanges Losses::take() noexcept { return std::exchange(m_taken, {}); }

} // namespace Vn::DataModel
