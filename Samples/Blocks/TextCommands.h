#ifndef VN_SAMPLES_BLOCKS_TEXTCOMMANDS_H
#define VN_SAMPLES_BLOCKS_TEXTCOMMANDS_H

#include <memory>
#include <vector>

#include "Platform/Base/TextCommand.h"

namespace Vn::Blocks {

// The text commands of the subject area "Blocks", which are there as long as this object is.  They
// work on the active document, and each that changes it makes one step.  Their descriptions are in
// the language that the user has when the object is made.
class BlocksTextCommands {
public:
    BlocksTextCommands();
    ~BlocksTextCommands();
    BlocksTextCommands(BlocksTextCommands const &) = delete;
    BlocksTextCommands & operator=(BlocksTextCommands const &) = delete;

private:
    std::unique_ptr<TextCommandSubjectArea> m_pArea;
    std::vector<std::unique_ptr<TextCommand>> m_commands;
};

} // namespace Vn::Blocks

#endif
