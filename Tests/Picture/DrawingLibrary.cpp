// What the sanitizers find in the library that draws, which isn't built for them: it keeps a few
// hundred bytes to the end of the process, and its threads wait for each other in a way that isn't
// seen.  They ask these functions what to pass over; so with what the system's loader keeps of the
// modules that it has loaded.

extern "C" __attribute__((visibility("default"))) char const * __lsan_default_suppressions() {
    return "leak:libOSMesa\nleak:_dl_map_object_deps\nleak:add_name_to_object\n";
}

extern "C" __attribute__((visibility("default"))) char const * __tsan_default_suppressions() {
    return "race:libOSMesa\ncalled_from_lib:libOSMesa.so\nrace:libLLVM\ndeadlock:libLLVM\n";
}

// They would tell on the standard error what they have passed over.  And where a block with the
// thread's own variables of a loaded module starts 16 bytes into a page, they take what stands
// before it for its limits and read there, wherever that is: such blocks aren't searched for
// references, so that more is taken for lost and not less.
extern "C" __attribute__((visibility("default"))) char const * __lsan_default_options() {
    return "print_suppressions=0:use_tls=0";
}
