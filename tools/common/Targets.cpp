#include <common/Targets.h>

#include <common/PrintedMessage.h>
#include <common/UsageError.h>

#include <krender/shadergen/Target.h>

#include <algorithm>
#include <utility>

namespace krTools
{

namespace
{

#ifdef KRENDER_HAS_TARGETS
constexpr bool kTranslates = true;
#else
constexpr bool kTranslates = false;
#endif

/// Why a run cannot write programs for a target; empty when it can.
std::string obstacle(const Target& target, bool asPlain, bool keepsIlluminance)
{
    if (asPlain && target.language == TargetLanguage::VulkanGlsl)
        return "it takes full KRSL, which --plain does not read";
    if (target.isTranslated && !kTranslates)
        return "this program was built without krender-targets";
    if (target.isTranslated && keepsIlluminance)
        return "what --keep-illuminance leaves in a program cannot be translated";
    return "";
}

} // namespace

bool canTranslate() noexcept { return kTranslates; }

std::string targetNames()
{
    std::string names;
    for (const Target& target : targets())
        names.append(names.empty() ? "" : ", ").append(target.name);
    return names;
}

void addTargets(const std::string& list, std::vector<TargetChoice>& choices)
{
    const auto add = [&choices](const Target& target, bool isNamed)
    {
        const auto known = std::find_if(choices.begin(), choices.end(),
                                        [&target](const TargetChoice& choice) { return choice.target == &target; });
        if (known == choices.end())
            choices.push_back({&target, isNamed});
        else
            known->isNamed |= isNamed;
    };
    for (std::size_t begin = 0, end = 0; end < list.size() || begin == 0; begin = end + 1)
    {
        end = std::min(list.find(',', begin), list.size());
        const std::string name = list.substr(begin, end - begin);
        const Target* const target = findTarget(name);
        if (name == "all")
            for (const Target& each : targets())
                add(each, false);
        else if (target)
            add(*target, true);
        else
            throw UsageError("there is no target " + inQuotes(name) + ": there are " + targetNames() + " and all");
        if (end == list.size())
            break;
    }
}

void settleTargets(std::vector<TargetChoice>& choices, bool asPlain, bool keepsIlluminance, Messages& messages)
{
    std::vector<TargetChoice> settled;
    std::vector<std::pair<std::string, std::string>> leftOut; // reason, names
    for (const TargetChoice& choice : choices)
    {
        const std::string why = obstacle(*choice.target, asPlain, keepsIlluminance);
        const std::string name(choice.target->name);
        if (why.empty())
            settled.push_back(choice);
        else if (choice.isNamed)
            throw UsageError("--target " + name + ": " + why);
        else if (leftOut.empty() || leftOut.back().first != why)
            leftOut.emplace_back(why, name);
        else
            leftOut.back().second += ", " + name;
    }
    for (const auto& [why, names] : leftOut)
        messages.note("left out: " + names + ": " + why);
    choices = std::move(settled);
}

std::optional<krTargets::Translation> TargetTranslator::translate(const Target& target,
                                                                  const krFrontend::Program& program,
                                                                  std::vector<krFrontend::ProgramDiagnostic>& faults)
{
#ifdef KRENDER_HAS_TARGETS
    if (!fBinary && !fIsFaulty)
        fBinary = krTargets::SpirvProgram::build(program, faults);
    fIsFaulty = !fBinary;
    return fBinary ? fBinary->translate(target, faults) : std::nullopt;
#else
    (void)target;
    (void)program;
    (void)faults;
    return std::nullopt;
#endif
}

} // namespace krTools
