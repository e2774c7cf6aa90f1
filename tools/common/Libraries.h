#pragma once
#include <common/SourceReader.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace krTools
{

/// The library sources of a compilation, entered into the spec library, and where each function came from. The spec
/// library is emptied at the end; one object exists at a time.
class Libraries
{
public:
    /// @param program  the name of the program, for messages without a place in a source
    explicit Libraries(std::string program) : fProgram(std::move(program)) {}
    Libraries(const Libraries&) = delete;
    Libraries& operator=(const Libraries&) = delete;
    ~Libraries() { krShadingDag::ShadingNodeSpec::clearLibrary(); }

    /// Reads a file; its findings are kept. Throws a FileError when it cannot be read.
    void read(const std::string& path);
    /// Prints what was found, and then forgets it.
    /// @return  whether there was no error
    [[nodiscard]] bool report();

    /// The light function of that name that has a body; null when there is none, and then why not is printed or, where it
    /// has a place, added.
    /// @param origin  where the name was given, for the message
    [[nodiscard]] const krShadingDag::ShadingNodeSpec* findLight(const std::string& name, const std::string& origin);
    /// The source that a function of a library came from.
    [[nodiscard]] const Source& source(const krShadingDag::ShadingNodeSpec& spec) const
    {
        return fOrigins.at(&spec).library->source;
    }

    /// Adds a finding where a function's name stands, or did last if it stands in several places.
    void add(const krShadingDag::ShadingNodeSpec& spec, Severity severity, std::string_view name, std::string text);

private:
    struct Library
    {
        Source source;
        Findings findings;
    };
    struct Origin
    {
        Library* library;
        std::size_t position;
    };

    std::string fProgram;
    std::vector<std::unique_ptr<Library>> fLibraries;
    std::map<const krShadingDag::ShadingNodeSpec*, Origin> fOrigins;
};

} // namespace krTools
