// A module as an add-in is one: what it offers registers itself while it is loaded.

#include "Platform/Base/Initializer.h"
#include "Platform/Base/TextCommand.h"
#include "Platform/Base/UnitTest.h"

namespace {

int s_initialized = 0;

class Greet : public Vn::TextCommand {
public:
    Greet() : Vn::TextCommand(L"TestModule", L"Greet", L"Greets") {}

private:
    Vn::TextCommandResult onRun(Vn::TextCommandParameters const & parameters) override {
        return {0, L"Hello " + parameters.parameter(0)};
    }
};

Vn::TextCommandSubjectArea const s_area(L"TestModule", L"Commands of a loaded module");
Greet s_greet;
Vn::Initializer const s_initializer([] { ++s_initialized; });
Vn::UnitTest s_check("TestModule", "check", [](Vn::UnitTest & test) {
    test.Assert(s_initialized == 1, L"the initializer ran once");
});

} // namespace

extern "C"
#ifdef _WIN32
    __declspec(dllexport)
#else
    __attribute__((visibility("default")))
#endif
        int testModuleInitialized() {
    return s_initialized;
}
