// A library that is loaded ahead of a program's own and lets its system fail, as environment variables say:
//   KRENDER_FAIL_AFTER=N      from the Nth call on, nothing that takes memory does
//   KRENDER_SIGNAL=S:N        signal S comes behind the Nth call that changes a file or folder
//   KRENDER_NO_TMPFILE=1      files without names cannot be made
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

namespace
{

std::atomic<long> gCallsLeft{-1}; ///< that take memory and succeed; -1: all do
int gSignal = 0;
int gChangesLeft = 0; ///< until the signal comes

template <class Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// Counts a call.
bool fails() noexcept
{
    long left = gCallsLeft.load();
    while (left > 0 && !gCallsLeft.compare_exchange_weak(left, left - 1))
        ;
    if (left != 0)
        return false;
    errno = ENOMEM;
    return true;
}

/// Counts a change.
template <class Result>
Result behind(Result result)
{
    const int error = errno;
    if (gSignal != 0 && gChangesLeft-- == 0)
        std::raise(gSignal);
    errno = error;
    return result;
}

using Main = int(int, char**, char**);
Main* gMain = nullptr;

/// What is taken before a program's main function begins, by its libraries' globals, is not counted.
int countedMain(int argc, char** argv, char** environment)
{
    if (const char* text = std::getenv("KRENDER_SIGNAL"))
        (void)std::sscanf(text, "%d:%d", &gSignal, &gChangesLeft);
    if (const char* text = std::getenv("KRENDER_FAIL_AFTER"))
        gCallsLeft = std::atol(text);
    return gMain(argc, argv, environment);
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier, readability-identifier-naming): names of the C library
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

    int __libc_start_main(Main* main, int argc, char** argv, void (*init)(), void (*fini)(), void (*loaderEnd)(),
                          void* stackEnd)
    {
        gMain = main;
        return next<int(Main*, int, char**, void (*)(), void (*)(), void (*)(), void*)>("__libc_start_main")(
            countedMain, argc, argv, init, fini, loaderEnd, stackEnd);
    }

    int open(const char* path, int flags, ...)
    {
        va_list arguments;
        va_start(arguments, flags);
        const auto mode = va_arg(arguments, mode_t);
        va_end(arguments);
        static const auto real = next<int(const char*, int, mode_t)>("open");
        if ((flags & O_TMPFILE) != O_TMPFILE)
            return (flags & O_CREAT) != 0 ? behind(real(path, flags, mode)) : real(path, flags, mode);
        if (!std::getenv("KRENDER_NO_TMPFILE"))
            return behind(real(path, flags, mode));
        errno = EOPNOTSUPP;
        return -1;
    }

    int fsync(int file)
    {
        static const auto real = next<int(int)>("fsync");
        return behind(real(file));
    }

    int mkdir(const char* path, mode_t mode)
    {
        static const auto real = next<int(const char*, mode_t)>("mkdir");
        return behind(real(path, mode));
    }

    int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags)
    {
        static const auto real = next<int(int, const char*, int, const char*, int)>("linkat");
        return behind(real(fromFolder, from, toFolder, to, flags));
    }

    int rename(const char* from, const char* to)
    {
        static const auto real = next<int(const char*, const char*)>("rename");
        return behind(real(from, to));
    }
}
// NOLINTEND(bugprone-reserved-identifier, readability-identifier-naming)
