#ifndef VN_PLATFORM_BASE_STATUS_H
#define VN_PLATFORM_BASE_STATUS_H

#include <string>
#include <string_view>

#include "Platform/Base/Export.h"
#include "Platform/Base/RefCounted.h"

namespace Vn {

// Why an operation failed.
enum EStatus {
    StatusOk = 0,
    StatusFailed,          // for none of the reasons below
    StatusInvalidArgument, // the caller asked for something that has no meaning
    StatusNotFound,
    StatusAlreadyExists,
    StatusAccessDenied,
    StatusIO,          // the device or the operating system failed
    StatusCorrupt,     // what was read isn't what was once written
    StatusNewerFormat, // written by a later version, and not readable by this one
    StatusNoSpace,
    StatusOutOfMemory,
    StatusBusy, // another user holds it
    StatusUnsupported,
    StatusCancelled,
    StatusChanged // it isn't any more what the caller last saw of it
};

// The outcome of an operation that can fail: success, or a reason with what was being done, to
// what, and what stood in the way.  Texts are UTF-8.
//
// Success is one null pointer.  A failure is shared by its copies and never changes, so that a
// Status may be copied and read by several threads.
class VN_BASE_API Status {
public:
    // Success.
    Status() noexcept;
    // A failure of kind `code`.  `operation` names what was being done ("open the document"),
    // `subject` the file or name it was done to, and `cause` what stood in the way; each may be
    // empty.  The causes of the libraries are in the user's language, as
    // Platform/Base/LocalizedText.h has them when the status is made; the other texts are English.
    // With StatusOk the texts are dropped.
    Status(EStatus code, std::string_view operation, std::string_view subject = {},
           std::string_view cause = {});
    Status(Status const & other) noexcept;
    Status(Status && other) noexcept;
    Status & operator=(Status const & other) noexcept;
    Status & operator=(Status && other) noexcept;
    ~Status();

    // Says in a return statement what the default constructor means.
    static Status success() noexcept { return Status(); }
    // A failure of the kind that the name says, with the texts of the constructor.
    static Status failed(std::string_view operation, std::string_view subject = {},
                         std::string_view cause = {});
    static Status invalidArgument(std::string_view operation, std::string_view subject = {},
                                  std::string_view cause = {});
    static Status notFound(std::string_view operation, std::string_view subject = {},
                           std::string_view cause = {});
    static Status io(std::string_view operation, std::string_view subject = {},
                     std::string_view cause = {});
    static Status corrupt(std::string_view operation, std::string_view subject = {},
                          std::string_view cause = {});
    static Status newerFormat(std::string_view operation, std::string_view subject = {},
                              std::string_view cause = {});
    static Status noSpace(std::string_view operation, std::string_view subject = {},
                          std::string_view cause = {});
    static Status outOfMemory(std::string_view operation, std::string_view subject = {},
                              std::string_view cause = {});
    static Status cancelled(std::string_view operation, std::string_view subject = {},
                            std::string_view cause = {});
    // A failure that the operating system reported by its `errno` value, with the nearest code and
    // the system's own message as the cause.  Zero gives success.
    static Status fromErrno(int error, std::string_view operation, std::string_view subject = {});

    // Whether this is success.
    bool ok() const noexcept { return !m_rFailure; }
    explicit operator bool() const noexcept { return ok(); }

    // The kind of failure; StatusOk for success.
    EStatus code() const noexcept;

    // Empty for success.  The references stay valid as long as this Status or a copy of it does.
    std::string const & operation() const noexcept;
    std::string const & subject() const noexcept;
    std::string const & cause() const noexcept;

    // "ok", or a line such as
    //     cannot open the document 'a.vnd': damaged: the page count is wrong
    std::string toString() const;

    // A word or two for a code, such as "not found".
    static std::string_view codeText(EStatus code) noexcept;

private:
    class Failure;

    StrongRef<Failure> m_rFailure;
};

} // namespace Vn

#endif
