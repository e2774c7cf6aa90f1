#pragma once
#include <optional>
#include <span>
#include <string>
#include <vector>

/// A list of files, and of names that stand for built-in ones, in a popup of ImGui's.
class FileChooser
{
public:
    /// @param endings   of the files, in small letters: ".png"
    /// @param builtIns  names ahead of the files
    FileChooser(std::vector<std::string> endings, std::vector<std::string> builtIns);

    /// Opens the popup, to be called where build() is.
    /// @param folder  whose files are listed first; empty for the working folder
    void open(const std::string& folder);
    /// Builds the popup while it is open.
    /// @return  the built-in name or the path that the user takes
    [[nodiscard]] std::optional<std::string> build();

private:
    void list(const std::string& folder);

    std::vector<std::string> fEndings;
    std::vector<std::string> fBuiltIns;
    std::string fFolder;
    std::vector<std::string> fFolders; ///< in it
    std::vector<std::string> fFiles;
};
