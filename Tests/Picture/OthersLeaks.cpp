// The library that draws keeps a few hundred bytes of its own to the end of the process, which
// isn't a leak of ours.  Whoever looks for leaks asks this function what to pass over.

extern "C" __attribute__((visibility("default"))) char const * __lsan_default_suppressions() {
    return "leak:libOSMesa\n";
}
