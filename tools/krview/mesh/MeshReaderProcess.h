#pragma once
#include <common/Descriptor.h>

#include <sys/types.h>

#include <string>

/// The program's hidden first argument, ahead of the path of a mesh file, that makes it run readMeshHere().
inline constexpr const char* kMeshReaderArgument = "--read-mesh-here";
/// The descriptor that readMeshHere() writes to.
inline constexpr int kMeshReaderOutput = 3;

/// This program, started once more to read a mesh file: what the file does to its reader befalls no other. It ends with
/// this object.
class MeshReaderProcess
{
public:
    /// Throws a std::system_error when it cannot be started.
    explicit MeshReaderProcess(const std::string& path);
    MeshReaderProcess(const MeshReaderProcess&) = delete;
    MeshReaderProcess& operator=(const MeshReaderProcess&) = delete;
    ~MeshReaderProcess();

    /// Where its records come from.
    [[nodiscard]] int output() const noexcept { return fOutput.get(); }
    /// Waits for its end, once nothing more comes from it.
    /// @return  what has ended it ahead of time, in words
    [[nodiscard]] std::string waitForEnd();

private:
    pid_t fId = -1;
    krTools::Descriptor fOutput;
};
