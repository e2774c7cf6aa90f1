#pragma once
#include "krender/frontend/private/NameTable.h"
#include <krender/shadergen/Target.h>

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace krFrontend
{

/// The names that one program uses, so that no two things in it share one by accident.
class ProgramNames
{
public:
    explicit ProgramNames(const Target& target) : fTarget(target) {}

    /// Keeps clear of every word of a module when a new name is made.
    void avoid(const NameTable& words);
    /// Marks a name as used.
    void take(std::string_view name) { fTaken.emplace(name); }
    [[nodiscard]] bool isTaken(std::string_view name) const { return fTaken.contains(std::string(name)); }
    /// Whether the target or the frame that every program has keeps the word for itself.
    [[nodiscard]] bool isReserved(std::string_view name) const noexcept;
    /// The name, if nothing has it, and else one like it that nothing has; it is taken then.
    [[nodiscard]] std::string claim(std::string_view name);
    /// A name like this one that no word of the sources equals; it is taken then.
    [[nodiscard]] std::string invent(std::string_view like);

private:
    const Target& fTarget;
    std::unordered_set<std::string> fTaken;
    std::unordered_set<std::string_view> fWords;
    std::unordered_map<std::string, unsigned> fNumbers; // the last one that was tried behind a stem
};

} // namespace krFrontend
