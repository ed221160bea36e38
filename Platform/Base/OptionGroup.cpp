#include "Platform/Base/OptionGroup.h"

#include <algorithm>
#include <utility>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/OptionFileInternal.h"
#include "Platform/Base/PathInfo.h"

namespace Vn {

std::wstring serverOptionFileName() { return L"ServerOptions"; }
std::wstring globalOptionFileName() { return L"GlobalOptions"; }

// While it lives, nobody is told of changes.
class OptionGroup::Quiet {
public:
    explicit Quiet(OptionGroup & group) : m_rGroup(group), m_bBefore(group.m_bQuiet) {
        m_rGroup.m_bQuiet = true;
    }
    ~Quiet() { m_rGroup.m_bQuiet = m_bBefore; }
    Quiet(Quiet const &) = delete;
    Quiet & operator=(Quiet const &) = delete;

private:
    OptionGroup & m_rGroup;
    bool const m_bBefore;
};

namespace {

// The options whose texts in a file weren't values, as one failure.
class Unreadable {
public:
    void add(Status const & status) {
        if (m_ids.empty()) m_first = status;
        m_ids += (m_ids.empty() ? "" : ", ") + status.subject();
    }
    Status status() const {
        if (m_ids.empty()) return Status::success();
        return Status(m_first.code(), m_first.operation(), m_ids, m_first.cause());
    }

private:
    std::string m_ids;
    Status m_first;
};

bool isThere(Status const & status) { return status.code() != StatusNotFound; }

Status hasNoPlace(std::string const & group) {
    return Status::notFound("save the options", group,
                            localized("the system has no place for them"));
}

} // namespace

OptionGroup::OptionGroup(std::string const & id, std::wstring const & userName)
    : OptionGroup(id, userName, {}) {}

OptionGroup::OptionGroup(std::string const & id, std::wstring const & userName,
                         std::wstring const & toolTip)
    : m_id(id), m_userName(userName), m_toolTip(toolTip) {}

OptionGroup::~OptionGroup() = default;

void OptionGroup::createOptionsIfNeeded() {}
void OptionGroup::onOptionChanged(OptionBase *) {}
void OptionGroup::onChoiceChanged(OptionBase *, std::wstring) {}
std::wstring OptionGroup::onPersistFile(std::vector<std::wstring> &) const { return {}; }

OptionBase * OptionGroup::findOption(std::string_view id) const noexcept {
    auto const found = std::find_if(m_options.begin(), m_options.end(),
                                    [id](OptionBase const * option) { return option->id() == id; });
    return found == m_options.end() ? nullptr : *found;
}

void OptionGroup::load(Status & status) {
    createOptionsIfNeeded();
    std::vector<std::wstring> names;
    std::wstring const own = onPersistFile(names);
    names.insert(names.begin(), own);

    Status failure;
    Unreadable unreadable;
    std::vector<bool> isFound(m_options.size(), false);
    {
        Quiet const quiet(*this);
        for (std::size_t file = 0; file < names.size(); ++file) {
            if (names[file].empty()) continue;
            OptionFile options(PathInfo::fromText(names[file]));
            Status const read = options.read();
            if (!read && isThere(read) && failure.ok()) failure = read;
            if (!read) continue;
            std::vector<XMLNode> nodes = options.find(m_id, m_options);
            for (std::size_t i = 0; i < nodes.size(); ++i) {
                if (!nodes[i] || isFound[i]) continue;
                isFound[i] = true;
                Status loaded;
                m_options[i]->load(nodes[i], loaded);
                if (!loaded) unreadable.add(loaded);
            }
        }
        for (std::size_t i = 0; i < isFound.size(); ++i) {
            if (isFound[i]) continue;
            Status ignored;
            m_options[i]->reset(ignored);
            m_options[i]->postSave();
        }
    }
    if (failure.ok()) failure = unreadable.status();
    m_loadStatus = failure;
    status = failure;
    finishLoading();
}

void OptionGroup::save(Status & status) {
    createOptionsIfNeeded();
    std::vector<std::wstring> others;
    std::wstring const name = onPersistFile(others);
    if (name.empty()) {
        status = hasNoPlace(m_id);
        return;
    }
    OptionFile file(PathInfo::fromText(name));
    status = file.lock();
    if (!status) return;
    Status const read = file.read();
    bool const isDamaged = read.code() == StatusCorrupt;
    if (!read && !isDamaged && isThere(read)) {
        status = read;
        return;
    }

    // What was changed here is written; the rest follows the file.
    std::vector<XMLNode> nodes = file.find(m_id, m_options);
    std::vector<OptionBase *> written;
    Unreadable unreadable;
    bool isChanged = false;
    {
        Quiet const quiet(*this);
        XMLNode group;
        for (std::size_t i = 0; i < nodes.size() && status; ++i) {
            OptionBase & option = *m_options[i];
            Status reloaded;
            if (!option.needsSaving()) {
                if (nodes[i]) isChanged |= option.reload(nodes[i], reloaded);
                if (!reloaded) unreadable.add(reloaded);
                continue;
            }
            if (!nodes[i]) {
                if (!group) group = file.group(m_id);
                nodes[i] = OptionFile::makeOption(group, option.id());
            }
            option.save(nodes[i], status);
            written.push_back(&option);
        }
        if (isDamaged) file.group(m_id);
    }
    if (status && (isDamaged || !written.empty())) status = file.write();
    if (status) {
        for (OptionBase * const option : written) option->postSave();
        m_loadStatus = unreadable.status();
    }
    file.unlock(); // what is told now may save another group
    if (isChanged) finishLoading();
}

void OptionGroup::reset(Status & status) {
    for (OptionBase * const option : m_options) {
        Status one;
        option->reset(one);
        if (!one && status) status = one;
    }
}

SubOptionGroup * OptionGroup::makeSubGroup(std::string const & id, std::wstring const & userName,
                                           std::wstring const & toolTip, bool isShown,
                                           bool isExpanded) {
    m_subGroups.push_back(
        std::make_unique<SubOptionGroup>(id, userName, toolTip, this, isShown, isExpanded));
    return m_subGroups.back().get();
}

void OptionGroup::postLoadOperation(std::function<void()> operation) {
    m_postLoad = std::move(operation);
}

void OptionGroup::join(OptionBase * option) { m_options.push_back(option); }

void OptionGroup::leave(OptionBase * option) noexcept { std::erase(m_options, option); }

void OptionGroup::finishLoading() {
    if (m_postLoad) m_postLoad();
}

} // namespace Vn
