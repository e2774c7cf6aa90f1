#include "Grammar.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>

namespace generator
{

namespace
{

const auto gProductions = []
{
    std::map<std::string, std::vector<Production>> found;
    std::ifstream file(KRENDER_GRAMMAR);
    for (std::string line; std::getline(file, line);)
    {
        const std::size_t bar = line.find(" | ");
        if (line.starts_with('#') || bar == std::string::npos)
            continue;
        std::istringstream head(line.substr(0, bar));
        std::string category;
        Production row;
        head >> category >> row.letter >> row.number >> row.bodies;
        row.text = line.substr(bar + 3);
        for (std::size_t at = 0; (at = row.text.find("\\n", at)) != std::string::npos;)
            row.text.replace(at, 2, "\n");
        found[category].push_back(row);
    }
    return found;
}();

const auto gWords = []
{
    std::map<std::string, std::vector<std::string>> found;
    for (const auto& [category, rows] : gProductions)
        for (const Production& row : rows)
        {
            std::istringstream text(row.text);
            std::copy(std::istream_iterator<std::string>(text), {}, std::back_inserter(found[category]));
        }
    return found;
}();

const auto gKinds = []
{
    std::map<char, Kind> found;
    for (const Production& row : gProductions.at("type"))
    {
        std::istringstream text(row.text);
        Kind& kind = found[row.letter];
        text >> kind.base >> kind.least >> kind.most;
        kind.isOwn = row.text.ends_with("own");
    }
    return found;
}();

} // namespace

const std::vector<Production>& productions(const std::string& category) { return gProductions.at(category); }

const std::vector<std::string>& words(const std::string& category) { return gWords.at(category); }

const Kind* kindOf(char letter)
{
    const auto found = gKinds.find(letter);
    return found == gKinds.end() ? nullptr : &found->second;
}

std::string nameOf(Type type)
{
    for (const Production& row : productions("base"))
        if (row.letter == type.base)
            return row.text + (type.size > 1 ? std::to_string(type.size) : "");
    return "";
}

} // namespace generator
