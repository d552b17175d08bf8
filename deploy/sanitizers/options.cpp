// What a program that is built with a sanitizer runs with, unless its environment says otherwise: a finding ends it at
// once with a status of its own, 66, which none of the programs has.

#if defined(__clang__)
#pragma clang diagnostic ignored "-Wreserved-identifier"
#endif

extern "C" {

char const* __asan_default_options();
char const* __lsan_default_options();
char const* __tsan_default_options();
char const* __ubsan_default_options();

char const* __asan_default_options() {
    return "halt_on_error=1:exitcode=66";
}

char const* __lsan_default_options() {
    return "exitcode=66";
}

char const* __tsan_default_options() {
    return "halt_on_error=1:exitcode=66";
}

char const* __ubsan_default_options() {
    return "halt_on_error=1:print_stacktrace=1:exitcode=66";
}

}  // extern "C"
