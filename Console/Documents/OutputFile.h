// The files that commands on documents write beside the document, such as models.

#ifndef VN_CONSOLE_DOCUMENTS_OUTPUTFILE_H
#define VN_CONSOLE_DOCUMENTS_OUTPUTFILE_H

#include <filesystem>
#include <initializer_list>
#include <string>
#include <string_view>

namespace Vn::Console {

// Why a name can't be that of what a command writes; empty if it can.  It has to end with one of
// the extensions, ".png", in any case, and must not lead to the document, whose file may be empty.
// To be asked before the work is done.
std::wstring whyNoOutput(std::wstring const & name,
                         std::initializer_list<std::wstring_view> extensions,
                         std::filesystem::path const & document);

// Whether two paths lead to one file, which needn't be there yet.
bool isSameFile(std::filesystem::path const & one, std::filesystem::path const & other);

// Whether a name ends with an extension, in any case.
bool hasExtension(std::wstring const & name, std::wstring_view extension);

// Writes the file wholly, or leaves what was there.  The answer is empty, or says why it failed.
std::wstring writeOutput(std::wstring const & name, std::string_view bytes);

} // namespace Vn::Console

#endif
