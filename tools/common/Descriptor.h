#pragma once
#include <unistd.h>

#include <utility>

namespace krTools
{

/// Owns an open file, and leaves standard input open.
class Descriptor
{
public:
    explicit Descriptor(int descriptor = -1) noexcept : fDescriptor(descriptor) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { (void)close(); }

    [[nodiscard]] int get() const noexcept { return fDescriptor; }
    void reset(int descriptor) noexcept
    {
        (void)close();
        fDescriptor = descriptor;
    }
    /// @return  0, or -1 with the reason in errno
    int close() noexcept
    {
        const int descriptor = std::exchange(fDescriptor, -1);
        return descriptor > STDIN_FILENO ? ::close(descriptor) : 0;
    }

private:
    int fDescriptor;
};

} // namespace krTools
