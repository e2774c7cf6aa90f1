#pragma once
#include "Grammar.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace generator
{

struct Variable
{
    std::string name;
    Type type;
    unsigned length = 0; ///< of an array
    bool isWritable = false;
    std::size_t scope = 0; ///< 0: of the file
};

struct Parameter
{
    Type type;
    char mode = 'i'; ///< 'i' in, 'o' out, 'b' both
};

struct Function
{
    std::string name;
    Type result;
    std::vector<Parameter> parameters;
    bool isOverloaded = false;
    bool hasOutput = false;
};

/// Writes random expressions and statements of what is in sight, from the grammar.
class ProgramWriter
{
protected:
    explicit ProgramWriter(std::uint64_t seed) : fState(seed * 0x9E3779B97F4A7C15u + 0x1234567) {}

    unsigned below(std::size_t end);
    bool chance(unsigned percent) { return below(100) < percent; }
    unsigned from(unsigned first, unsigned last) { return first + below(last - first + 1); }
    template <class List>
    const typename List::value_type& pick(const List& list)
    {
        return list[below(list.size())];
    }

    /// Begins a body of a kind, as the grammar has them.
    void beginBody(char kind, Type result, unsigned statements);
    std::string statements(unsigned depth);

    /// A type of a variable.
    Type anyType();
    /// An expression, in parentheses where its outermost operator binds less than least.
    std::string value(Type type, unsigned depth, unsigned least = 0);
    /// One that does not grow, however often it comes round.
    std::string tame(Type type) { return written("tame", type, from(1, 3)).first; }
    /// For a place that turns an int into a float.
    std::string wanted(Type type, unsigned depth) { return value(type == kFloat && chance(15) ? kInt : type, depth); }
    /// Makes the choices of a form.
    std::string choose(std::string_view form);

    /// What a name means now; null: nothing.
    [[nodiscard]] const Variable* visible(std::string_view name) const;
    template <class Test>
    [[nodiscard]] std::vector<const Variable*> readable(Test test) const;
    std::string declare(const std::string& name, Type type, bool isWritable = false);
    /// A name that nothing has.
    std::string freshName(const std::string& stem) { return stem + std::to_string(fNumber++); }
    void openScope() { fScopes.push_back(fVariables.size()); }
    void closeScope();

    std::vector<Variable> fVariables;
    std::vector<Function> fFunctions;
    unsigned fNumber = 0; ///< of the next fresh name
    bool fConstantOnly = false;

private:
    using Text = std::pair<std::string, unsigned>; // and how strongly it binds

    /// What a statement sets.
    struct Place
    {
        std::string text;
        Type type;
        std::string root; ///< the variable
        bool isColumn = false;
    };

    /// A production while it is written.
    struct Frame
    {
        Frame(Type its, unsigned another, unsigned nesting) : type(its), own(another), depth(nesting) {}

        Type type;
        unsigned own; ///< the size that it has beside the type's
        unsigned depth;
        std::map<char, std::string> names; ///< what an @ and the letter stand for
        std::optional<Variable> pending;   ///< a new name that is known when its declarator ends
        std::vector<std::string> locked;
    };

    std::string fill(std::string_view chosen, Frame& frame);
    std::string operand(char letter, unsigned least, Frame& frame);
    std::string part(char letter, Frame& frame);
    [[nodiscard]] bool isUsable(std::string_view chosen) const;

    Text written(const std::string& category, Type type, unsigned depth);
    std::optional<Text> leaf(Type type);
    std::string index(unsigned size, bool isConstant);
    std::string letters(unsigned size, unsigned count, bool areDifferent);
    [[nodiscard]] std::vector<const Function*> callable(bool haveOutputs) const;
    std::string callOf(const Function& function, unsigned depth, const std::vector<std::string>& outputs);

    std::string statement(const Production& form, const std::string& chosen, Frame& frame);
    bool choosePlaces(std::string_view chosen, char letter, Frame& frame);
    std::optional<Place> place();
    std::string newName(char letter, Frame& frame);
    std::string callWithOutputs(Frame& frame);
    void lock(const std::string& name, Frame& frame);
    void endDeclarator(Frame& frame);

    std::uint64_t fState;
    std::vector<std::size_t> fScopes; ///< how many variables there were when each began
    std::set<std::string> fLocked;    ///< variables that the statement at hand changes: not to be read elsewhere in it
    char fKind = 'm';
    Type fResult;
    unsigned fBudget = 0; ///< statements that may still come
    unsigned fLoops = 0;
    bool fIsHiding = false; ///< the statement has a name that hides another one: another might clash with it
};

template <class Test>
std::vector<const Variable*> ProgramWriter::readable(Test test) const
{
    std::vector<const Variable*> found;
    for (const Variable& v : fVariables)
        if (visible(v.name) == &v && !fLocked.contains(v.name) && (!fConstantOnly || v.scope == 0) && test(v))
            found.push_back(&v);
    return found;
}

} // namespace generator
