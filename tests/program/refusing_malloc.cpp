// To be loaded before a program: of the requests for memory that it makes from main on, number
// NEQUAR_REFUSE and, with NEQUAR_REFUSE_ALL, all that follow, are refused. At its end the program
// writes the number of requests to NEQUAR_REQUESTS.
#include <dlfcn.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
#define NEQUAR_SEEN __attribute__((visibility("default")))
}

namespace {

using Main = int (*)(int, char**, char**);

std::atomic<long> requests{0};
std::atomic<bool> is_in_main{false};
long first_refused = 0;  // 0: none
bool refuses_all = false;
Main program_main = nullptr;

bool refuses() {
    if (!is_in_main) return false;
    const long request = ++requests;
    const bool refused =
        first_refused > 0 && (request == first_refused || (refuses_all && request > first_refused));
    if (refused) errno = ENOMEM;
    return refused;
}

struct AtEnd {
    ~AtEnd() {
        is_in_main = false;
        std::FILE* const file = std::fopen(std::getenv("NEQUAR_REQUESTS"), "w");
        if (file == nullptr) return;
        std::fprintf(file, "%ld\n", requests.load());
        std::fclose(file);
    }
} at_end;

int main_with_refusals(int argument_count, char** arguments, char** environment) {
    first_refused = std::atol(std::getenv("NEQUAR_REFUSE"));
    refuses_all = std::getenv("NEQUAR_REFUSE_ALL") != nullptr;
    is_in_main = true;
    return program_main(argument_count, arguments, environment);
}

}  // namespace

extern "C" {

NEQUAR_SEEN int __libc_start_main(Main main, int argument_count, char** arguments, void (*init)(),
                                  void (*fini)(), void (*end_of_loader)(), void* end_of_stack) {
    using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
    program_main = main;
    const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(main_with_refusals, argument_count, arguments, init, fini, end_of_loader,
                 end_of_stack);
}
NEQUAR_SEEN void* malloc(std::size_t size) {
    return refuses() ? nullptr : __libc_malloc(size);
}
NEQUAR_SEEN void* calloc(std::size_t count, std::size_t size) {
    return refuses() ? nullptr : __libc_calloc(count, size);
}
NEQUAR_SEEN void* realloc(void* block, std::size_t size) {
    return refuses() ? nullptr : __libc_realloc(block, size);
}
NEQUAR_SEEN void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return refuses() ? nullptr : __libc_memalign(alignment, size);
}
}
