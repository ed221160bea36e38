#ifndef VN_PLATFORM_BASE_OPTIONGROUP_H
#define VN_PLATFORM_BASE_OPTIONGROUP_H

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Platform/Base/Export.h"
#include "Platform/Base/OptionBase.h"
#include "Platform/Base/Status.h"
#include "Platform/Base/SubOptionGroup.h"

namespace Vn {

// The names of the option files, without a directory and without ".xml": the one that an
// administrator may provide, and the user's own.
VN_BASE_API std::wstring serverOptionFileName();
VN_BASE_API std::wstring globalOptionFileName();

// A page of preferences, and where they are kept.
//
// An option's value is that of the group's own file, if it is missing there that of the further
// files in their order, and then the default.  A save writes the own file only, and there only what
// was changed here: other groups, options that aren't known, comments and what other processes have
// written stay.  Docs/preferences.md tells what a file looks like.
//
// A derived class makes its options and says where the file is.  A group, and what it lists, is
// used by one thread at a time; any number of groups and of processes may share a file.
class VN_BASE_API OptionGroup {
public:
    // `id` is ASCII, names the group in files and doesn't change; the other texts are for the user.
    OptionGroup(std::string const & id, std::wstring const & userName);
    OptionGroup(std::string const & id, std::wstring const & userName,
                std::wstring const & toolTip);
    // The options are gone by now.
    virtual ~OptionGroup();
    OptionGroup(OptionGroup const &) = delete;
    OptionGroup & operator=(OptionGroup const &) = delete;

    // Makes the options of a group that puts that off until they are needed.  A group that has
    // them makes nothing, and so does this one.
    virtual void createOptionsIfNeeded();
    // An option has changed.
    virtual void onOptionChanged(OptionBase * option);
    // The user has chosen the choice with that value.
    virtual void onChoiceChanged(OptionBase * option, std::wstring value);
    // The group's own file; further ones are added to `otherFiles`.  PathInfo::fromText() makes
    // paths of the texts.  An empty text is no file: such a group isn't kept.
    virtual std::wstring onPersistFile(std::vector<std::wstring> & otherFiles) const;

    // What the constructor was given.
    std::string const & id() const noexcept { return m_id; }
    std::wstring const & userName() const noexcept { return m_userName; }
    std::wstring const & toolTip() const noexcept { return m_toolTip; }

    // The options in the order in which they were made, without the sub-groups; and those.
    std::span<OptionBase * const> options() const noexcept { return m_options; }
    std::span<std::unique_ptr<SubOptionGroup> const> subGroups() const noexcept {
        return m_subGroups;
    }
    // The option with that id; null if there is none.
    OptionBase * findOption(std::string_view id) const noexcept;

    // Reads the files; what wasn't saved is forgotten.  Nothing on the disk is touched, and a file
    // that isn't there is no failure.  One that can't be read leaves the options to the other
    // files and the defaults; an option whose text isn't a value keeps the one it had.  The status
    // is of the first file that failed, or names such options.
    void load(Status & status);
    // The status of the last load.  A save that succeeds puts right what it told of the own file.
    Status const & loadStatus() const noexcept { return m_loadStatus; }

    // Writes what was changed, and takes over what others have written meanwhile.  A file that is
    // damaged is kept beside it first, with ".damaged" after its name.  StatusBusy if others save
    // all the time.  If it fails, the file is as it was, and what was changed still waits to be
    // saved.
    void save(Status & status);

    // Takes the default of each option.
    void reset(Status & status);

protected:
    // Makes a sub-group, which belongs to this object.
    SubOptionGroup * makeSubGroup(std::string const & id, std::wstring const & userName,
                                  std::wstring const & toolTip, bool isShown, bool isExpanded);
    // Is called after each load, and after a save that took over what others had written.
    void postLoadOperation(std::function<void()> operation);

private:
    friend class OptionBase;
    class Quiet;

    void join(OptionBase * option);
    void leave(OptionBase * option) noexcept;
    // Whether changes are told to nobody now.
    bool isQuiet() const noexcept { return m_bQuiet; }
    void finishLoading();

    std::string const m_id;
    std::wstring const m_userName;
    std::wstring const m_toolTip;
    std::vector<OptionBase *> m_options;
    std::vector<std::unique_ptr<SubOptionGroup>> m_subGroups;
    std::function<void()> m_postLoad;
    Status m_loadStatus;
    bool m_bQuiet = false;
};

} // namespace Vn

#endif
