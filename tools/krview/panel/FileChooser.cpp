#include "FileChooser.h"

#include <imgui.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <utility>

namespace fs = std::filesystem;

namespace
{

constexpr const char* kPopup = "files";
constexpr std::size_t kMostListed = 2000;

} // namespace

FileChooser::FileChooser(std::vector<std::string> endings, std::vector<std::string> builtIns)
    : fEndings(std::move(endings)), fBuiltIns(std::move(builtIns))
{
}

void FileChooser::open(const std::string& folder)
{
    if (fFolder.empty() || !folder.empty())
        list(folder.empty() ? "." : folder);
    ImGui::OpenPopup(kPopup);
}

void FileChooser::list(const std::string& folder)
{
    std::error_code failure;
    fFolder = fs::weakly_canonical(folder, failure).string();
    fFolders.clear();
    fFiles.clear();
    fs::directory_iterator entry(fFolder, failure);
    for (; !failure && entry != fs::directory_iterator(); entry.increment(failure))
    {
        std::error_code unknown;
        const std::string name = entry->path().filename().string();
        if (name.starts_with('.') || fFolders.size() + fFiles.size() >= kMostListed)
            continue;
        std::string ending = entry->path().extension().string();
        std::transform(ending.begin(), ending.end(), ending.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        if (entry->is_directory(unknown))
            fFolders.push_back(name);
        else if (std::find(fEndings.begin(), fEndings.end(), ending) != fEndings.end())
            fFiles.push_back(name);
    }
    std::sort(fFolders.begin(), fFolders.end());
    std::sort(fFiles.begin(), fFiles.end());
}

std::optional<std::string> FileChooser::build()
{
    ImGui::SetNextWindowSize({300, 320});
    if (!ImGui::BeginPopup(kPopup))
        return std::nullopt;
    std::optional<std::string> taken;
    for (const std::string& name : fBuiltIns)
        if (ImGui::Selectable(name.c_str()))
            taken = name;
    if (!fBuiltIns.empty())
        ImGui::Separator();
    ImGui::PushStyleColor(ImGuiCol_Text, ImGui::GetStyleColorVec4(ImGuiCol_TextDisabled));
    ImGui::TextWrapped("%s", fFolder.c_str());
    ImGui::PopStyleColor();
    std::string next;
    // An id keeps what a name has of ImGui's own signs from being read.
    const auto line = [](const std::string& name, const char* end)
    {
        ImGui::PushID(name.c_str());
        const bool isTaken = ImGui::Selectable("##name", false, ImGuiSelectableFlags_DontClosePopups);
        ImGui::SameLine(0, 0);
        ImGui::Text("%s%s", name.c_str(), end);
        ImGui::PopID();
        return isTaken;
    };
    if (line("..", ""))
        next = fs::path(fFolder).parent_path().string();
    for (const std::string& name : fFolders)
        if (line(name, "/"))
            next = (fs::path(fFolder) / name).string();
    for (const std::string& name : fFiles)
        if (line(name, ""))
            taken = (fs::path(fFolder) / name).string();
    if (fFiles.empty())
        ImGui::TextDisabled("no such files here");
    if (!next.empty())
        list(next);
    if (taken)
        ImGui::CloseCurrentPopup();
    ImGui::EndPopup();
    return taken;
}
