// A library that is loaded ahead of a program's own. It lets memory run out, and has no files without names, as environment
// variables say:
//   KRENDER_FAIL_AFTER=N   from the Nth call on, nothing that takes memory does
//   KRENDER_NO_TMPFILE=1   files without names cannot be made
#include <dlfcn.h>
#include <fcntl.h>

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdlib>

namespace
{

std::atomic<long> gLeft{-1}; ///< calls that still succeed; -1: all do

template <class Function>
Function next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

/// Counts a call.
bool fails() noexcept
{
    long left = gLeft.load(std::memory_order_relaxed);
    while (left > 0 && !gLeft.compare_exchange_weak(left, left - 1, std::memory_order_relaxed))
        ;
    if (left != 0)
        return false;
    errno = ENOMEM;
    return true;
}

using Main = int (*)(int, char**, char**);
Main gMain = nullptr;

/// What is taken before a program's main function begins, by its libraries' globals, is not counted.
int countedMain(int argc, char** argv, char** environment)
{
    if (const char* text = std::getenv("KRENDER_FAIL_AFTER"))
        gLeft = std::atol(text);
    return gMain(argc, argv, environment);
}

} // namespace

extern "C"
{
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);

void* malloc(std::size_t size) { return fails() ? nullptr : __libc_malloc(size); }
void* calloc(std::size_t count, std::size_t size) { return fails() ? nullptr : __libc_calloc(count, size); }
void* realloc(void* block, std::size_t size) { return fails() ? nullptr : __libc_realloc(block, size); }
void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return fails() ? nullptr : __libc_memalign(alignment, size);
}

int __libc_start_main(Main main, int argc, char** argv, void (*init)(), void (*fini)(), void (*loaderEnd)(), void* stackEnd)
{
    gMain = main;
    return next<int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*)>("__libc_start_main")(
        countedMain, argc, argv, init, fini, loaderEnd, stackEnd);
}

int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = va_arg(arguments, mode_t);
    va_end(arguments);
    static const auto real = next<int (*)(const char*, int, mode_t)>("open");
    if ((flags & O_TMPFILE) == O_TMPFILE && std::getenv("KRENDER_NO_TMPFILE"))
    {
        errno = EOPNOTSUPP;
        return -1;
    }
    return real(path, flags, mode);
}
}
