#include "Platform/Base/Status.h"

#include <cerrno>
#include <new>
#include <system_error>

#include "Platform/Base/LocalizedText.h"
#include "Platform/Base/Shared.h"

namespace Vn {

namespace {

constinit Shared<std::string> s_noText;

// Without memory from the heap: there may be none when the reason of a failure is asked for.
std::string const & noText() noexcept {
    alignas(std::string) static unsigned char s_place[sizeof(std::string)];
    return s_noText.get([] { return new (s_place) std::string; });
}

EStatus codeOfErrno(int error) {
    switch (error) {
    case 0:
        return StatusOk;
    case ENOENT:
    case ENOTDIR:
        return StatusNotFound;
    case EEXIST:
        return StatusAlreadyExists;
    case EACCES:
    case EPERM:
    case EROFS:
        return StatusAccessDenied;
    case ENOSPC:
    case EFBIG: // there is a limit, and it is reached
#ifdef EDQUOT
    case EDQUOT:
#endif
        return StatusNoSpace;
    case ENOMEM:
        return StatusOutOfMemory;
    case EINVAL:
    case ENAMETOOLONG:
        return StatusInvalidArgument;
    case EAGAIN:
    case EBUSY:
        return StatusBusy;
    case ENOSYS:
    case ENOTSUP:
        return StatusUnsupported;
    case ECANCELED:
        return StatusCancelled;
    default:
        return StatusIO;
    }
}

} // namespace

class Status::Failure final : public RefCounted {
public:
    Failure(EStatus code, std::string_view operation, std::string_view subject,
            std::string_view cause)
        : m_code(code), m_operation(operation), m_subject(subject), m_cause(cause) {}

    EStatus const m_code;
    std::string const m_operation;
    std::string const m_subject;
    std::string const m_cause;
};

Status::Status() noexcept = default;
Status::Status(Status const & other) noexcept = default;
Status::Status(Status && other) noexcept = default;
Status & Status::operator=(Status const & other) noexcept = default;
Status & Status::operator=(Status && other) noexcept = default;
Status::~Status() = default;

Status::Status(EStatus code, std::string_view operation, std::string_view subject,
               std::string_view cause)
    : m_rFailure(code == StatusOk ? nullptr : new Failure(code, operation, subject, cause)) {}

Status Status::failed(std::string_view operation, std::string_view subject,
                      std::string_view cause) {
    return Status(StatusFailed, operation, subject, cause);
}

Status Status::invalidArgument(std::string_view operation, std::string_view subject,
                               std::string_view cause) {
    return Status(StatusInvalidArgument, operation, subject, cause);
}

Status Status::notFound(std::string_view operation, std::string_view subject,
                        std::string_view cause) {
    return Status(StatusNotFound, operation, subject, cause);
}

Status Status::io(std::string_view operation, std::string_view subject, std::string_view cause) {
    return Status(StatusIO, operation, subject, cause);
}

Status Status::corrupt(std::string_view operation, std::string_view subject,
                       std::string_view cause) {
    return Status(StatusCorrupt, operation, subject, cause);
}

Status Status::newerFormat(std::string_view operation, std::string_view subject,
                           std::string_view cause) {
    return Status(StatusNewerFormat, operation, subject, cause);
}

Status Status::noSpace(std::string_view operation, std::string_view subject,
                       std::string_view cause) {
    return Status(StatusNoSpace, operation, subject, cause);
}

Status Status::outOfMemory(std::string_view operation, std::string_view subject,
                           std::string_view cause) {
    return Status(StatusOutOfMemory, operation, subject, cause);
}

Status Status::cancelled(std::string_view operation, std::string_view subject,
                         std::string_view cause) {
    return Status(StatusCancelled, operation, subject, cause);
}

Status Status::fromErrno(int error, std::string_view operation, std::string_view subject) {
    EStatus const code = codeOfErrno(error);
    if (code == StatusOk) return success();
    return Status(code, operation, subject,
                  localizedIn("OperatingSystem", "%1%", std::generic_category().message(error)));
}

EStatus Status::code() const noexcept { return ok() ? StatusOk : m_rFailure->m_code; }

std::string const & Status::operation() const noexcept {
    return ok() ? noText() : m_rFailure->m_operation;
}

std::string const & Status::subject() const noexcept {
    return ok() ? noText() : m_rFailure->m_subject;
}

std::string const & Status::cause() const noexcept { return ok() ? noText() : m_rFailure->m_cause; }

std::string Status::toString() const {
    if (ok()) return std::string(codeText(StatusOk));
    std::string text;
    if (!operation().empty()) text += "cannot " + operation();
    if (!subject().empty()) {
        if (!text.empty()) text += ' ';
        text += '\'' + subject() + '\'';
    }
    if (!text.empty()) text += ": ";
    text += codeText(code());
    if (!cause().empty()) text += ": " + cause();
    return text;
}

std::string_view Status::codeText(EStatus code) noexcept {
    switch (code) {
    case StatusOk:
        return "ok";
    case StatusFailed:
        return "failed";
    case StatusInvalidArgument:
        return "invalid argument";
    case StatusNotFound:
        return "not found";
    case StatusAlreadyExists:
        return "exists already";
    case StatusAccessDenied:
        return "access denied";
    case StatusIO:
        return "input or output error";
    case StatusCorrupt:
        return "damaged";
    case StatusNewerFormat:
        return "written by a later version";
    case StatusNoSpace:
        return "no space left";
    case StatusOutOfMemory:
        return "out of memory";
    case StatusBusy:
        return "in use";
    case StatusUnsupported:
        return "not supported";
    case StatusCancelled:
        return "cancelled";
    case StatusChanged:
        return "changed meanwhile";
    }
    return "unknown failure";
}

} // namespace Vn
