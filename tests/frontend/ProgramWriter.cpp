#include "ProgramWriter.h"

#include <algorithm>
#include <cctype>

namespace generator
{

unsigned ProgramWriter::below(std::size_t end)
{
    fState += 0x9E3779B97F4A7C15u;
    std::uint64_t z = fState;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return static_cast<unsigned>((z ^ (z >> 31)) % end);
}

Type ProgramWriter::anyType()
{
    const char base = pick(std::string_view("ffffffiibm"));
    return {base, base == 'f' ? from(1, 4) : base != 'm' && chance(60) ? 1 : from(2, 4)};
}

// Forms.

std::string ProgramWriter::choose(std::string_view form)
{
    std::string chosen;
    for (std::size_t i = 0; i < form.size(); ++i)
    {
        if (!form.substr(i).starts_with("@("))
        {
            chosen += form[i];
            continue;
        }
        std::vector<std::size_t> ends{i + 1}; // of the ways, from the one before the first
        for (int depth = 1; depth > 0;)
        {
            i = form.find('@', i + 1) + 1;
            depth += form[i] == '(' ? 1 : form[i] == ')' ? -1 : 0;
            if (depth == 0 || (depth == 1 && form[i] == '|'))
                ends.push_back(i);
        }
        const std::size_t way = 1 + below(ends.size() - 1);
        chosen += choose(form.substr(ends[way - 1] + 1, ends[way] - ends[way - 1] - 2));
    }
    return chosen;
}

/// Whether no function of a form is hidden, and there are the samplers that it reads.
bool ProgramWriter::isUsable(std::string_view chosen) const
{
    for (std::size_t i = 0; i + 1 < chosen.size(); ++i)
        if (const Kind* kind = chosen[i] == '$' ? kindOf(chosen[i + 1]) : nullptr;
            kind && Type{kind->base}.isSampler() &&
            readable([&](const Variable& v) { return kind->has(v.type); }).empty())
            return false;
    for (std::size_t open = chosen.find('('); open != std::string_view::npos; open = chosen.find('(', open + 1))
    {
        std::size_t begin = open;
        while (begin > 0 && (std::isalnum(static_cast<unsigned char>(chosen[begin - 1])) || chosen[begin - 1] == '$'))
            --begin;
        const std::string_view name = chosen.substr(begin, open - begin);
        const bool isType = name.starts_with('$') || name == "float" || name == "int" || name == "bool" ||
                            name.empty() || (name.starts_with("float") && name.size() == 6);
        if (!isType && (fConstantOnly || visible(name)))
            return false;
    }
    return true;
}

std::string ProgramWriter::fill(std::string_view chosen, Frame& frame)
{
    std::string text;
    for (std::size_t i = 0; i < chosen.size(); ++i)
    {
        const char c = chosen[i];
        if (c == '@')
            text += part(chosen[++i], frame);
        else if (c == '$')
        {
            const char letter = chosen[++i];
            const bool isDigit = i + 1 < chosen.size() && std::isdigit(static_cast<unsigned char>(chosen[i + 1])) != 0;
            const unsigned least = isDigit ? static_cast<unsigned>(chosen[++i] - '0') : 0;
            text += operand(letter, least, frame);
        }
        else
        {
            if (c == ',' || c == ';')
                endDeclarator(frame);
            if (c == '{')
                openScope();
            if (c == '}')
                closeScope();
            text += c;
        }
    }
    return text;
}

std::string ProgramWriter::operand(char letter, unsigned least, Frame& frame)
{
    const unsigned size = frame.type.size;
    const unsigned depth = frame.depth > 0 ? frame.depth - 1 : 0;
    if (const Kind* kind = kindOf(letter))
        return value({kind->base, kind->least == kind->most ? kind->least
                                  : kind->isOwn             ? frame.own
                                                            : size},
                     depth, least);
    for (const Production& macro : productions("macro"))
        if (macro.letter == letter)
            return fill(choose(macro.text), frame);
    switch (letter)
    {
    case 's':
        return nameOf(frame.type);
    case 'c':
    {
        // Components one by one or, of a matrix, column by column.
        const bool isMatrix = frame.type.base == 'm';
        const Type one = !isMatrix ? Type{frame.type.base, 1} : chance(70) ? Type{'f', size} : kFloat;
        std::string text = value(one, depth);
        for (unsigned i = isMatrix ? size * size / one.size : size; --i > 0;)
            text += ", " + value(one, depth);
        return text;
    }
    default:
        return index(letter == 'n' || letter == 'x' ? size : frame.own, letter == 'n' || letter == 'k');
    }
}

std::string ProgramWriter::part(char letter, Frame& frame)
{
    if (const auto known = frame.names.find(letter); known != frame.names.end())
        return known->second;
    switch (letter)
    {
    case '[':
        openScope();
        return "";
    case ']':
        closeScope();
        return "";
    case 'v':
        return tame(frame.type);
    case 'w':
        return tame({'m', frame.type.size});
    case 'r':
        return tame(fResult);
    case 's':
        return statements(frame.depth - 1);
    case 'b': // a declaration would be of no use where there are no braces
        if (const auto to = place(); to && chance(25))
            return to->text + " = " + tame(to->type) + ";\n";
        return fill("{\n@s}\n", frame);
    case 'o':
        return callWithOutputs(frame);
    case 'g':
        for (const char* name : {"gLightWorldDir", "gLightAmbientColor", "gLightDiffuseColor", "gLightSpecularColor"})
            declare(name, {'f', 3});
        return "";
    default:
        return newName(letter, frame);
    }
}

// Values.

std::string ProgramWriter::value(Type type, unsigned depth, unsigned least)
{
    Text found;
    const bool isDeep = depth > 0 && !type.isSampler() && chance(75);
    std::optional<Text> known = isDeep ? std::nullopt : leaf(type);
    std::vector<const Function*> functions = isDeep && chance(12) ? callable(false) : std::vector<const Function*>{};
    std::erase_if(functions, [&](const Function* f) { return f->result != type; });
    if (known && (type.isSampler() || chance(75)))
        found = *known;
    else if (!isDeep)
        found = type == kBool && chance(85) ? Text{value(kFloat, 0, 6) + " < " + value(kFloat, 0, 6), 5}
                                            : written("literal", type, 0);
    else if (!functions.empty())
        found = {callOf(*pick(functions), depth - 1, {}), 9};
    else if (const unsigned size = std::max(type.size, from(2, 4)); type.base != 'm' && chance(10))
        found = {value({type.base, size}, depth - 1, 9) + "." + letters(size, type.size, false), 9};
    else
        found = written("expression", type, depth);
    return found.second < least ? "(" + found.first + ")" : found.first;
}

ProgramWriter::Text ProgramWriter::written(const std::string& category, Type type, unsigned depth)
{
    for (;;)
    {
        const Production& form = pick(productions(category));
        if (!kindOf(form.letter)->has(type))
            continue;
        const std::string chosen = choose(form.text);
        Frame frame{type, from(2, 4), depth};
        if (isUsable(chosen))
            return {fill(chosen, frame), form.number};
        if (category == "tame") // where a name hides a function
            return written("literal", type, 0);
    }
}

/// A variable, or a part of one.
std::optional<ProgramWriter::Text> ProgramWriter::leaf(Type type)
{
    const auto list = readable(
        [&](const Variable& v)
        {
            const bool isPart = v.type.base == type.base && type.base != 'm' && v.type.size > 1;
            return v.type == type || (isPart && v.length == 0);
        });
    if (list.empty())
        return std::nullopt;
    const Variable& variable = *pick(list);
    if (variable.length > 0)
        return Text{variable.name + "[" + index(variable.length, chance(50)) + "]", 9};
    if (variable.type == type && (type.size == 1 || type.base == 'm' || chance(70)))
        return Text{variable.name, 9};
    return Text{variable.name + "." + letters(variable.type.size, type.size, false), 9};
}

std::string ProgramWriter::index(unsigned size, bool isConstant)
{
    if (isConstant || fConstantOnly || visible("clamp"))
        return std::to_string(below(size));
    return "int(clamp(" + value(kFloat, 0) + " * 2.0, 0.0, " + std::to_string(size - 1) + ".25))";
}

std::string ProgramWriter::letters(unsigned size, unsigned count, bool areDifferent)
{
    std::string set = chance(70) ? "xyzw" : "rgba";
    set.resize(size);
    std::string found;
    while (found.size() < count)
    {
        const std::size_t at = below(set.size());
        found += set[at];
        if (areDifferent)
            set.erase(at, 1);
    }
    return found;
}

std::vector<const Function*> ProgramWriter::callable(bool haveOutputs) const
{
    std::vector<const Function*> found;
    const auto isMissing = [&](const Parameter& p)
    { return p.type.isSampler() && readable([&](const Variable& v) { return v.type == p.type; }).empty(); };
    for (const Function& f : fFunctions)
        if (!fConstantOnly && f.hasOutput == haveOutputs && !visible(f.name) &&
            std::none_of(f.parameters.begin(), f.parameters.end(), isMissing))
            found.push_back(&f);
    return found;
}

std::string ProgramWriter::callOf(const Function& function, unsigned depth, const std::vector<std::string>& outputs)
{
    std::string text = function.name + "(";
    std::size_t output = 0;
    for (const Parameter& parameter : function.parameters)
        text += (text.ends_with('(') ? "" : ", ") + (parameter.mode != 'i'   ? outputs[output++]
                                                     : function.isOverloaded ? value(parameter.type, depth)
                                                                             : wanted(parameter.type, depth));
    return text + ")";
}

} // namespace generator
