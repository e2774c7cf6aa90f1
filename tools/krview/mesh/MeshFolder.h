#pragma once
#include "MeshWire.h"

#include <assimp/IOSystem.hpp>

#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>

/// Lets Assimp read a mesh file and the files below its folder, and nothing else; tells of each that it looks for.
class MeshFolder : public Assimp::IOSystem
{
public:
    /// @param output  borrowed
    MeshFolder(const std::string& mesh, const MeshWireOutput& output);

    [[nodiscard]] bool Exists(const char* path) const override;
    [[nodiscard]] char getOsSeparator() const override { return '/'; }
    /// @return  null for a file that may not or cannot be read, or is too large
    Assimp::IOStream* Open(const char* path, const char* mode) override;
    void Close(Assimp::IOStream* stream) override;
    bool CreateDirectory(const std::string&) override { return false; }
    bool ChangeDirectory(const std::string&) override { return false; }
    bool DeleteFile(const std::string&) override { return false; }

private:
    /// Where a file that may be read really stands; empty if there is none.
    [[nodiscard]] std::filesystem::path find(const std::string& name) const;
    /// Likewise of a name that may be a URI, as glTF files have them.
    [[nodiscard]] std::filesystem::path findByNameOrUri(const std::string& name) const;

    std::filesystem::path fMesh;
    std::filesystem::path fFolder; ///< without links
    const MeshWireOutput& fOutput;
    mutable std::set<std::string> fTold;
    /// Assimp opens a file again and again to find out its format.
    std::map<std::filesystem::path, std::shared_ptr<const std::string>> fRead;
};
