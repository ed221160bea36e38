#include "Platform/DataModel/DocumentFile.h"
#include "Platform/Base/LocalizedText.h"

#include <exception>
#include <mutex>
#include <new>
#include <utility>

#include "Platform/Base/OS.h"
#include "Platform/DataModel/AssetAdapter.h"
#include "Platform/DataModel/File/Checker.h"
#include "Platform/DataModel/File/Reader.h"
#include "Platform/DataModel/File/Writer.h"

namespace Vn {

namespace {

// The name of the virtual file system.
class FileSystemName {
public:
    static void set(std::string name) {
        std::lock_guard const guard(s_mutex);
        value() = std::move(name);
    }
    static std::string get() {
        std::lock_guard const guard(s_mutex);
        return value();
    }

private:
    static std::string & value() {
        static auto * const s_name = new std::string;
        return *s_name;
    }
    static inline std::mutex s_mutex;
};

// Runs what may throw, and tells the outcome in a Status.
template <class Work>
Status guarded(char const * operation, std::filesystem::path const & file, Work && work) {
    OS::FileSizeLimitFails const limit;
    try {
        work();
        return Status::success();
    } catch (DataModel::FileFailure const & failure) {
        if (failure.status.code() == StatusIO && limit.wasReached())
            return Status(StatusNoSpace, operation, DataModel::pathText(file),
                          localized("it would be larger than files may be"));
        return failure.status;
    } catch (std::bad_alloc const &) {
        return Status(StatusOutOfMemory, operation);
    } catch (std::exception const & exception) {
        return Status::failed(operation, DataModel::pathText(file), exception.what());
    } catch (...) {
        return Status::failed(operation, DataModel::pathText(file),
                              localized("a hook of an entity threw"));
    }
}

constexpr char c_save[] = "save the document";
constexpr char c_open[] = "open the document";
constexpr char c_check[] = "check the document";

// Has the adapter bring what it needs for a save, and let go of it afterwards.
class SpecialSerializers {
public:
    explicit SpecialSerializers(Asset & asset) : m_asset(asset) {
        if (AssetAdapter * const adapter = asset.adapter()) adapter->createSpecialSerializers();
    }
    ~SpecialSerializers() {
        try {
            if (AssetAdapter * const adapter = m_asset.adapter())
                adapter->releaseSpecialSerializers();
        } catch (...) { // the outcome of the save is settled
        }
    }
    SpecialSerializers(SpecialSerializers const &) = delete;
    SpecialSerializers & operator=(SpecialSerializers const &) = delete;

private:
    Asset & m_asset;
};

Status refuseWithinChanges(Asset & asset, std::filesystem::path const & file) {
    ChangeHistory const & history = asset.history();
    if (!history.isUsable())
        return Status::failed(
            c_save, DataModel::pathText(file),
            localized("memory ran out while a change was taken back or made again"));
    if (!history.isInTransaction() && !history.isReplaying()) return Status::success();
    return Status::failed(c_save, DataModel::pathText(file),
                          history.isReplaying() ? localized("an undo or a redo is running")
                                                : localized("a transaction is open"));
}

} // namespace

Status DocumentFile::save(Asset & asset) {
    if (asset.m_file.empty())
        return Status::invalidArgument(c_save, {}, localized("the document has no file yet"));
    if (Status refused = refuseWithinChanges(asset, asset.m_file); !refused) return refused;
    std::filesystem::path const file = asset.m_file;
    return guarded(c_save, file, [&] {
        SpecialSerializers const serializers(asset);
        Writer writer(asset, c_save, FileSystemName::get());
        writer.noteStale();
        writer.saveChanges();
    });
}

Status DocumentFile::saveAs(Asset & asset, std::filesystem::path const & file) {
    std::vector<std::filesystem::path> kept;
    return saveAsKeeping(asset, file, kept);
}

Status DocumentFile::saveAsKeeping(Asset & asset, std::filesystem::path const & file,
                                   std::vector<std::filesystem::path> & kept) {
    kept.clear();
    if (file.empty()) return Status::invalidArgument(c_save, {}, localized("the name is empty"));
    if (Status refused = refuseWithinChanges(asset, file); !refused) return refused;
    return guarded(c_save, file, [&] {
        SpecialSerializers const serializers(asset);
        Writer(asset, c_save, FileSystemName::get()).saveWhole(file, kept);
    });
}

Status DocumentFile::load(std::filesystem::path const & file, AssetType const * type,
                          StrongRef<Asset> & asset) {
    asset.reset();
    if (file.empty()) return Status::invalidArgument(c_open, {}, localized("the name is empty"));
    return guarded(c_open, file, [&] {
        Reader reader(file, type, c_open, FileSystemName::get());
        asset = reader.read();
    });
}

Status DocumentFile::check(std::filesystem::path const & file,
                           std::vector<std::string> & findings) {
    std::vector<std::string> unknownTypes;
    return check(file, findings, unknownTypes);
}

Status DocumentFile::check(std::filesystem::path const & file, std::vector<std::string> & findings,
                           std::vector<std::string> & unknownTypes) {
    findings.clear();
    unknownTypes.clear();
    if (file.empty()) return Status::invalidArgument(c_check, {}, localized("the name is empty"));
    return guarded(c_check, file, [&] {
        DataModel::DocumentChecker checker(file, c_check, FileSystemName::get(), findings,
                                           unknownTypes);
        checker.endsWhenInterrupted();
        checker.check();
    });
}

void DocumentFile::fileSystem(std::string name) { FileSystemName::set(std::move(name)); }

} // namespace Vn
