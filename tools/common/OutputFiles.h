#pragma once
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace krTools
{

/// What becomes of an output whose folder does not exist.
enum class MissingFolders
{
    Fail,
    Make,
};

/// Files that come into being together, whole, or not at all. "-" is standard output.
class OutputFiles
{
public:
    void add(std::string path, std::string text) { fFiles.emplace_back(std::move(path), std::move(text)); }

    [[nodiscard]] const std::vector<std::pair<std::string, std::string>>& files() const noexcept { return fFiles; }

    /// Writes all of them. Each is first written without its name; once all are on the disk they take their names. Throws
    /// a FileError, and then no file has changed and no folder is new; likewise when a signal ends the program.
    void publish(MissingFolders missing = MissingFolders::Fail) const;

private:
    std::vector<std::pair<std::string, std::string>> fFiles; ///< path and text
};

} // namespace krTools
