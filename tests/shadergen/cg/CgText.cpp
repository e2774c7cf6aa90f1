#include "CgText.h"

#include <map>
#include <regex>
#include <set>
#include <sstream>

namespace
{

/// The text between two marks, without them; empty when they are not there.
std::string between(const std::string& text, const std::string& from, const std::string& to)
{
    const std::size_t begin = text.find(from);
    const std::size_t end = begin == std::string::npos ? begin : text.find(to, begin + from.size());
    return end == std::string::npos ? "" : text.substr(begin + from.size(), end - begin - from.size());
}

/// What a member's semantic has to be; empty for members that may have any texture coordinate.
std::string requiredSemantic(const std::string& structName, const std::string& member)
{
    static const std::map<std::string, std::string> fixed = {
        {"app2vert gObjPos", "POSITION"},         {"app2vert gObjNormal", "NORMAL"},
        {"app2vert gObjTangent", "TEXCOORD0"},    {"vert2frag gWindowPos", "POSITION"},
        {"vert2frag gWorldPos", "TEXCOORD0"},     {"vert2frag gWorldNormal", "TEXCOORD1"},
        {"vert2frag gWorldTangent", "TEXCOORD2"},
    };
    const auto found = fixed.find(structName + ' ' + member);
    if (found != fixed.end())
        return found->second;
    return structName == "vert2frag" ? member.substr(1) : "";
}

void checkStruct(const std::string& program, const std::string& name, std::ostream& faults)
{
    static const std::regex memberForm(R"(\tfloat[1-4] (\w+)\s*: (POSITION|NORMAL|TEXCOORD[0-7]);)");
    std::istringstream lines(between(program, "struct " + name + "\n{\n", "};"));
    std::set<std::string> taken;
    unsigned members = 0;
    for (std::string line; std::getline(lines, line);)
    {
        if (line.find_first_not_of('\t') == std::string::npos || line.find("\t//") == 0)
            continue;
        std::smatch member;
        if (!std::regex_match(line, member, memberForm))
        {
            faults << name << ": no member with a known semantic: " << line << '\n';
            continue;
        }
        ++members;
        const std::string required = requiredSemantic(name, member[1]);
        if (!required.empty() && required != member[2])
            faults << name << ": " << member[1] << " belongs to " << required << '\n';
        if (!taken.insert(member[2]).second)
            faults << name << ": " << member[2] << " is taken twice\n";
    }
    if (members < 3)
        faults << name << ": hardly any members\n";
}

void checkParameters(const std::string& program, std::ostream& faults)
{
    static const std::regex comment("//[^\n]*");
    static const std::regex parameterForm(R"(\s*uniform \w+ \w+\s*|\s*vert2frag IN)");
    const std::string list = std::regex_replace(between(program, "float4 main(", ") : COLOR\n"), comment, "");
    if (list.empty())
        faults << "the fragment program returns no colour\n";
    std::istringstream parameters(list + ',');
    for (std::string parameter; std::getline(parameters, parameter, ',');)
        if (!std::regex_match(parameter, parameterForm))
            faults << "no parameter: \"" << parameter << "\"\n";
}

} // namespace

std::string cgTextFaults(const scenes::Programs& programs)
{
    std::ostringstream faults;
    for (const char* name : {"app2vert", "vert2frag"})
        checkStruct(programs.vertex, name, faults);
    checkParameters(programs.fragment, faults);
    if (between(programs.vertex, "struct", "#define") != between(programs.fragment, "struct", "#define"))
        faults << "the programs connect through different structs\n";
    return faults.str();
}
