// What ThreadSanitizer is not to report in programs that use the binding; compiled and linked with that sanitizer only.
//
// libddsc: it is not built with the sanitizer, which so sees neither its atomics nor its reference counts. This hides
// races of handlers that the engine calls, too; these only take a sample, and hand it over under mutexes that clang's
// lock analysis checks.
// exception_ptr: its reference count is in the standard library, which is not built with the sanitizer either.
extern "C" char const* __tsan_default_suppressions();

extern "C" char const* __tsan_default_suppressions() {
    return "race:libddsc.so\n"
           "race:std::__exception_ptr::exception_ptr::_M_release\n";
}
