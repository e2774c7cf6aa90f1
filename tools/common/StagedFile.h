#pragma once
#include <common/Descriptor.h>
#include <common/PassingName.h>

#include <memory>
#include <string>
#include <string_view>

namespace krTools
{

/// The file that is written when a path is: where its symbolic links lead, also when nothing stands there yet. A path
/// whose links lead nowhere is its own answer.
[[nodiscard]] std::string followLinks(const std::string& path);

/// A file that is written without its name, on the disk of its folder, and takes it whole. Until then no file has changed,
/// and nothing is left of it when the program ends, by whatever signal. Where the file system has no files without names,
/// it has a passing one.
class StagedFile
{
public:
    /// Writes the file. Throws a FileError.
    /// @param mayStayOpen  whether it may hold a descriptor, of which a process has few
    StagedFile(const std::string& path, std::string_view text, bool mayStayOpen);

    /// Forces the file to the disk, if the constructor has not. Of many files it is cheap for all but the first when they
    /// are all written by then. Throws a FileError.
    void settle() const;
    /// Gives the file its name. Throws a FileError, and then it has not got it.
    void publish();

private:
    void openUnnamed(unsigned mode);
    void openPassing(unsigned mode);
    void write(std::string_view text);
    void linkPassing();

    std::string fPath; ///< as the user wrote it
    std::string fTarget;
    Descriptor fDescriptor; ///< open as long as the file has no name
    std::unique_ptr<PassingName> fPassing;
};

/// Forces what was written to the disk, as far as there is one; answers 0 or the error number.
[[nodiscard]] int forceToDisk(int descriptor) noexcept;

} // namespace krTools
