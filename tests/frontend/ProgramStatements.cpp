#include "ProgramWriter.h"

#include <algorithm>

namespace generator
{

namespace
{

bool has(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

} // namespace

void ProgramWriter::beginBody(char kind, Type result, unsigned statements)
{
    fKind = kind;
    fResult = result;
    fBudget = statements;
}

std::string ProgramWriter::statements(unsigned depth)
{
    static const std::vector<const Production*> weighted = []
    {
        std::vector<const Production*> forms;
        for (const Production& form : productions("statement"))
            forms.insert(forms.end(), form.number, &form);
        return forms;
    }();
    std::string text;
    for (unsigned i = from(1, depth > 1 ? 6 : 3); i > 0 && fBudget > 0;)
    {
        const Production& form = *pick(weighted);
        const std::string chosen = choose(form.text);
        const bool isNested = has(chosen, "@s") || has(chosen, "@b");
        Frame frame{anyType(), from(2, 4), depth};
        if ((form.bodies == "*" || has(form.bodies, {&fKind, 1})) && (depth > 0 || !isNested) &&
            (fLoops < 2 || !has(chosen, "@i")) && isUsable(chosen) && choosePlaces(chosen, form.letter, frame))
        {
            --i;
            --fBudget;
            text += statement(form, chosen, frame);
        }
        for (const std::string& name : frame.locked)
            fLocked.erase(name);
    }
    return text;
}

std::string ProgramWriter::statement(const Production& form, const std::string& chosen, Frame& frame)
{
    const bool isLoop = has(chosen, "@i") || form.bodies == "m";
    fIsHiding = false;
    fLoops += isLoop ? 1 : 0;
    const char kind = std::exchange(fKind, form.bodies == "m" ? 'i' : fKind);
    frame.depth += has(chosen, "@s") || has(chosen, "@b") ? 0 : 3 - frame.depth;
    frame.names['t'] = nameOf(frame.type);
    const std::string text = fill(chosen, frame);
    fKind = kind;
    fLoops -= isLoop ? 1 : 0;
    endDeclarator(frame);
    return text.ends_with('\n') ? text : text + "\n";
}

/// Chooses what a statement sets.
/// @return  whether it has a type of the letter's, and what it needs
bool ProgramWriter::choosePlaces(std::string_view chosen, char letter, Frame& frame)
{
    const auto fits = [&](Type type) { return letter == '*' || kindOf(letter)->has(type); };
    if (has(chosen, "@z"))
    {
        const auto list =
            readable([&](const Variable& v) { return v.isWritable && v.length == 0 && v.type == frame.type; });
        if (list.empty() || !fits(frame.type))
            return false;
        lock(frame.names['z'] = pick(list)->name, frame);
        return true;
    }
    if (!has(chosen, "@x"))
        return fits(frame.type);
    const auto to = place();
    const auto other = place();
    if (!to || !fits(to->type))
        return false;
    frame.type = to->type;
    frame.names['x'] = to->text;
    frame.names['y'] = other->text;
    return !has(chosen, "@y") ||
           (other->type == to->type && !has(to->text, other->root) && !has(other->text, to->root));
}

std::optional<ProgramWriter::Place> ProgramWriter::place()
{
    const auto list = readable([](const Variable& v) { return v.isWritable; });
    if (list.empty())
        return std::nullopt;
    const Variable& v = *pick(list);
    Place found{v.name, v.type, v.name};
    const auto takeElement = [&](unsigned size) { found.text += "[" + index(size, chance(60)) + "]"; };
    if (v.length > 0)
        takeElement(v.length);
    while (found.type.size > 1 && chance(60))
    {
        const bool isMatrix = found.type.base == 'm';
        if (!isMatrix && chance(60))
        {
            const unsigned count = from(1, found.type.size);
            found.text += "." + letters(found.type.size, count, true);
            found.type.size = count;
            break;
        }
        takeElement(found.type.size);
        found.type = isMatrix ? Type{'f', found.type.size} : Type{found.type.base, 1};
        found.isColumn = isMatrix;
    }
    return found;
}

/// A call of a function that has outputs, all of them different variables that nothing else in the statement reads.
std::string ProgramWriter::callWithOutputs(Frame& frame)
{
    const std::vector<const Function*> fitting = callable(true);
    if (fitting.empty())
        return ";\n";
    const Function& function = *pick(fitting);
    std::string text;
    std::vector<std::string> outputs;
    for (const Parameter& parameter : function.parameters)
    {
        if (parameter.mode == 'i')
            continue;
        const auto to = place();
        const auto reads = [&](const std::string& output) { return has(output, to->root); };
        const bool isFound =
            to && to->type == parameter.type && !to->isColumn && std::none_of(outputs.begin(), outputs.end(), reads);
        outputs.push_back(isFound ? to->text : freshName("o"));
        if (!isFound)
        {
            text += nameOf(parameter.type) + " " + outputs.back() + " = " + tame(parameter.type) + ";\n";
            declare(outputs.back(), parameter.type, true);
        }
        lock(isFound ? to->root : outputs.back(), frame);
    }
    const std::string call = callOf(function, 2, outputs) + ";\n";
    if (function.result.base == 'v' || chance(20))
        return text + call;
    frame.type = function.result;
    return text + nameOf(frame.type) + " " + newName('d', frame) + " = " + call;
}

// Names.

const Variable* ProgramWriter::visible(std::string_view name) const
{
    const auto found =
        std::find_if(fVariables.rbegin(), fVariables.rend(), [&](const Variable& v) { return v.name == name; });
    return found == fVariables.rend() ? nullptr : &*found;
}

std::string ProgramWriter::declare(const std::string& name, Type type, bool isWritable)
{
    fVariables.push_back({name, type, 0, isWritable, fScopes.size()});
    return name;
}

void ProgramWriter::closeScope()
{
    fVariables.resize(fScopes.back());
    fScopes.pop_back();
}

std::string ProgramWriter::newName(char letter, Frame& frame)
{
    const bool isCounter = letter == 'i';
    std::string name = freshName(isCounter ? "i" : "v");
    if (const bool hides = chance(50) && fScopes.size() > 1; !isCounter && !fIsHiding && chance(30))
    {
        const std::string found = hides ? pick(fVariables).name : pick(words("name"));
        const Variable* outer = visible(found);
        fIsHiding = !fLocked.contains(found) && !found.starts_with("out") && found != "kCount" &&
                    (!outer || outer->scope < fScopes.size());
        name = fIsHiding ? found : name;
    }
    frame.names[isCounter ? 'j' : 'e'] = name;
    const Type type = isCounter ? kInt : letter == 'D' ? kBool : frame.type;
    frame.pending = Variable{name, type, letter == 'a' ? 3u : 0u, letter != 'c' && !isCounter, fScopes.size()};
    if (letter == 'u' || letter == 'a')
        lock(name, frame);
    return name;
}

void ProgramWriter::endDeclarator(Frame& frame)
{
    if (frame.pending)
        fVariables.push_back(*std::exchange(frame.pending, std::nullopt));
}

void ProgramWriter::lock(const std::string& name, Frame& frame)
{
    if (fLocked.insert(name).second)
        frame.locked.push_back(name);
}

} // namespace generator
