#pragma once
#include <common/SourceReader.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

/// The library sources of a compilation, entered into the spec library, and where each function came from.
class Libraries
{
public:
    /// Reads a file; its findings are kept. Throws a FileError when it cannot be read.
    void read(const std::string& path);
    /// Prints what was found, and then forgets it.
    /// @return  whether there was no error
    [[nodiscard]] bool report();

    /// The function of exactly that name that has a body, the first read winning; null when there is none.
    [[nodiscard]] static const krShadingDag::ShadingNodeSpec* definition(const std::string& name);
    /// Any function of exactly that name.
    [[nodiscard]] static const krShadingDag::ShadingNodeSpec* function(const std::string& name);
    /// The names of the functions that could be lights: those with a body and without a return value.
    [[nodiscard]] static std::vector<std::string> lightNames();

    /// Adds a finding where a function's name stands, or did last if it stands in several places.
    void add(const krShadingDag::ShadingNodeSpec& spec, krTools::Severity severity, std::string_view name,
             std::string text);

private:
    struct Library
    {
        krTools::Source source;
        krTools::Findings findings;
    };
    struct Origin
    {
        Library* library;
        std::size_t position;
    };

    std::vector<std::unique_ptr<Library>> fLibraries;
    std::map<const krShadingDag::ShadingNodeSpec*, Origin> fOrigins;
};
