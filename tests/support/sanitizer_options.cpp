// Tests ask for memory that cannot be had. The address sanitizer ends the program then, unless it
// is told to refuse as the system does.
extern "C" const char* __asan_default_options();

extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}
