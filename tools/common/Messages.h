#pragma once
#include <common/Findings.h>
#include <common/Source.h>

#include <krender/frontend/Diagnostic.h>
#include <krender/frontend/Module.h>
#include <krender/frontend/Program.h>
#include <krender/frontend/SourceSet.h>

#include <cstddef>
#include <string>
#include <vector>

namespace krTools
{

/// Takes what is found in the sources of a run, and counts the errors.
class Messages
{
public:
    Messages() = default;
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;
    virtual ~Messages() = default;

    /// Takes all that was found in a module.
    virtual void add(const krFrontend::Module& module) = 0;
    virtual void add(const krFrontend::SourceSet& sources, krFrontend::Diagnostic diagnostic) = 0;
    /// Takes what was found in a source that the front end does not read.
    virtual void add(const Source& source, Findings findings) = 0;
    /// Takes an error that has no place in a source.
    virtual void error(const std::string& text) = 0;
    /// Takes something that is neither wrong nor suspicious.
    virtual void note(const krFrontend::SourceSet& sources, const krFrontend::Diagnostic& diagnostic) = 0;
    virtual void note(const std::string& text) = 0;

    /// Takes what was found while programs were made, once where several targets have it in common.
    void add(const std::vector<krFrontend::ProgramDiagnostic>& problems);

    [[nodiscard]] std::size_t errorCount() const noexcept { return fErrorCount; }

protected:
    std::size_t fErrorCount = 0;
};

} // namespace krTools
