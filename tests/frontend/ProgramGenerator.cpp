#include "ProgramGenerator.h"

#include "ProgramWriter.h"

#include <algorithm>
#include <tuple>
#include <utility>
#include <vector>

namespace
{

using namespace generator;

/// Lines with the blanks that their braces ask for.
std::string indented(const std::string& text)
{
    std::string result;
    std::size_t depth = 0;
    for (std::size_t at = 0, end = 0; at < text.size(); at = end)
    {
        end = text.find('\n', at) + 1;
        const std::string_view line = std::string_view(text).substr(at, end - at);
        if (line.starts_with('}'))
            --depth;
        result.append(depth * 4, ' ').append(line);
        if (line.starts_with('{'))
            ++depth;
    }
    return result;
}

class Generator : private ProgramWriter
{
public:
    Generator(std::uint64_t seed, GeneratedKind kind)
        : ProgramWriter(seed), fIsDrawable(kind == GeneratedKind::Drawable)
    {
        for (const Production& base : productions("base"))
            if (const Type type{base.letter};
                type.isSampler() && (!fIsDrawable || base.letter == 'q' || base.letter == 'u'))
                fSamplers.push_back(type);
    }

    GeneratedProgram make(bool isInOneFile)
    {
        GeneratedProgram program;
        Parts parts{"const int kCount = 3;\n"};
        declare("kCount", kInt);
        for (const Production& part : productions("part"))
            if (chance(6))
                parts.push_back(part.text);
        addDefinitions(parts);
        const unsigned layout = isInOneFile ? 2 : below(4);
        if (layout == 0) // two modules, which share a file and nothing else: names may be the same
        {
            const auto shared = std::tuple(fVariables, fFunctions, fNumber);
            program.included = shuffled(std::move(parts));
            parts = {include()};
            addDefinitions(parts);
            addLights(parts);
            program.lights = shuffled(std::move(parts));
            std::tie(fVariables, fFunctions, fNumber) = shared;
            parts = {include()};
            addDefinitions(parts);
        }
        else
            addLights(parts);
        parts.push_back(material());
        if (layout == 1)
        {
            Parts others;
            for (std::string& part : parts)
                if (chance(50))
                    others.push_back(std::exchange(part, "\n"));
            parts.push_back(include());
            program.included = shuffled(std::move(others));
        }
        program.source = shuffled(std::move(parts));
        return program;
    }

private:
    using Parts = std::vector<std::string>;

    static std::string include() { return std::string("#include \"") + kIncludedName + "\"\n"; }

    /// Order says nothing at file level.
    std::string shuffled(Parts parts)
    {
        for (std::size_t i = parts.size(); i > 1; --i)
            std::swap(parts[i - 1], parts[below(static_cast<unsigned>(i))]);
        std::string text;
        for (const std::string& part : parts)
            text += part + "\n";
        return text;
    }

    void addDefinitions(Parts& parts)
    {
        for (unsigned i = below(4); i-- > 0;)
            parts.push_back(constant());
        for (unsigned i = below(6); i-- > 0;)
            parts.push_back(function());
    }

    void addLights(Parts& parts)
    {
        for (unsigned i = below(3); i-- > 0;)
            parts.push_back(light(i == 0 ? "sun" : "lamp"));
    }

    std::string constantValue(Type type, unsigned depth)
    {
        fConstantOnly = true;
        std::string text = wanted(type, depth);
        fConstantOnly = false;
        return text;
    }

    std::string constant()
    {
        const Type type = anyType();
        std::string text = "const " + nameOf(type) + " ";
        for (unsigned i = chance(20) ? 2 : 1; i-- > 0;)
        {
            const std::string name = freshName("kValue");
            text += name + " = " + constantValue(type, 3) + (i > 0 ? ", " : ";\n");
            declare(name, type);
        }
        return text;
    }

    void declareProvided()
    {
        for (const char* name : {"gWorldPos", "gWorldNormal", "gWorldTangent"})
            if (chance(30))
                declare(name, {'f', 3});
        if (chance(30))
            declare("gEyePos", {'f', 4});
    }

    // Functions.

    Parameter parameter()
    {
        if (chance(10))
            return {pick(fSamplers)};
        const Type type = anyType();
        return {type.base == 'b' ? kBool : type, pick(std::string_view("iiiob"))};
    }

    Function header()
    {
        Function function;
        function.result = chance(15) ? Type{'v', 1} : anyType();
        if (function.result.base == 'b')
            function.result = kBool;
        for (unsigned i = below(4); i-- > 0;)
            function.parameters.push_back(parameter());
        const auto isOutput = [](const Parameter& p) { return p.mode != 'i'; };
        function.hasOutput = std::any_of(function.parameters.begin(), function.parameters.end(), isOutput);
        if (function.result.base == 'v' && !std::exchange(function.hasOutput, true))
            function.parameters.push_back({kFloat, 'o'});
        function.name = freshName("f");
        if (chance(35) && !fFunctions.empty())
            function.name = pick(fFunctions).name;
        else if (chance(20))
            function.name = pick(words("function"));
        const auto isSame = [&](const Function& f)
        {
            return f.name == function.name &&
                   std::equal(f.parameters.begin(), f.parameters.end(), function.parameters.begin(),
                              function.parameters.end(), [](const auto& a, const auto& b) { return a.type == b.type; });
        };
        if (std::any_of(fFunctions.begin(), fFunctions.end(), isSame))
            function.name = freshName("g");
        for (Function& other : fFunctions)
            if (other.name == function.name)
                other.isOverloaded = function.isOverloaded = true;
        return function;
    }

    std::string function()
    {
        const Function function = header();
        beginBody(function.result.base == 'v' ? 'v' : 'f', function.result, 8);
        std::string head = nameOf(function.result) + " " + function.name + "(";
        std::string declared = head;
        std::string body = "{\n";
        openScope();
        declareProvided();
        for (const Parameter& parameter : function.parameters)
        {
            const std::string odd = chance(20) ? pick(words("name")) + "_" : "p";
            const std::string name = freshName(odd);
            std::string mode = parameter.mode == 'o' ? "out " : parameter.mode == 'b' ? "inout " : "";
            mode += choose("@(@|@|@|@|@|@|@|uniform @|uniform:fragment @|fragment @)") + nameOf(parameter.type) + " ";
            const char* comma = head.ends_with('(') ? "" : ", ";
            head += comma + mode + name;
            declared += comma + mode + freshName("q");
            if (parameter.mode == 'o')
                body += name + " = " + tame(parameter.type) + ";\n";
            declare(name, parameter.type, !parameter.type.isSampler());
        }
        body += functionBody(function.result);
        closeScope();
        fFunctions.push_back(function);
        return (chance(20) ? declared + ");\n" : "") + head + ")\n" + indented(body + "}\n");
    }

    std::string functionBody(Type result)
    {
        if (result.base == 'v')
            return statements(2);
        if (chance(60))
        {
            std::string text = statements(2);
            return text + "return " + tame(result) + ";\n";
        }
        std::string text = "output = " + tame(result) + ";\n";
        declare("output", result, true);
        text += statements(2);
        return text + (chance(40) ? "return " + tame(result) + ";\n" : "");
    }

    // Materials and lights.

    std::string inputName()
    {
        const std::string& name = pick(words("name"));
        return chance(25) && !visible(name) ? name : freshName("u");
    }

    std::string uniform(Type type)
    {
        const std::string name = inputName();
        std::string text = "\n    uniform " + nameOf(type) + " " + name;
        if (!type.isSampler() && chance(40))
            text += " = " + constantValue(type, 2);
        if (chance(25))
            text += pick(productions("metadata")).text;
        declare(name, type);
        return text + ",";
    }

    /// A type of an input.
    Type uniformType()
    {
        const Type type = anyType();
        const bool isPlain = type.base == 'f' || type.base == 'm' || type == kInt || (type.base == 'i' && !fIsDrawable);
        return isPlain ? type : fIsDrawable ? kFloat : kBool;
    }

    /// Provided values may be listed; the others are known all the same.
    std::string providedInputs()
    {
        const std::size_t first = fVariables.size();
        declareProvided();
        std::string text;
        for (std::size_t i = first; i < fVariables.size(); ++i)
            if (chance(25))
                text += "\n    " + nameOf(fVariables[i].type) + " " + fVariables[i].name + ",";
        return text;
    }

    std::string material()
    {
        std::string head = "material m(";
        openScope();
        for (unsigned i = below(4); i-- > 0;)
            head += uniform(uniformType());
        for (const Type sampler : fSamplers)
            if (chance(30))
                head += uniform(sampler);
        for (unsigned i = below(3); i-- > 0;)
        {
            const Type type{'f', from(1, 4)};
            head += "\n    vertex " + nameOf(type) + " " + declare(inputName(), type, false) + ",";
        }
        head += providedInputs() + "\n    out float4 outRGBA)\n";

        beginBody('m', {'v', 1}, 28);
        std::string body = "{\noutRGBA = float4(" + tame({'f', 3}) + ", 1.0);\n";
        declare("outRGBA", {'f', 4}, true);
        if (chance(20)) // where all pixels come by
            body += "float3 " + declare("slope", {'f', 3}, true) +
                    " = fwidth(gWorldPos) + abs(dFdx(gWorldNormal)) + @(ddy@|dFdy@)(gWorldPos);\n";
        body = choose(body);
        body += statements(3);
        body += statements(3);
        for (const Variable* v :
             readable([](const Variable& one) { return one.type.base == 'f' && one.length == 0 && one.scope > 0; }))
            if (v->name != "outRGBA" && !visible("dot") && chance(60))
                body += "outRGBA += float4(0.2 * dot(" + v->name + ", " + v->name + "), 0.1, 0.3, 0.0);\n";
        closeScope();
        return head + indented(body + "outRGBA = float4(abs(sin(outRGBA.rgb)), 1.0);\n}\n");
    }

    std::string light(const std::string& name)
    {
        std::string head = "light " + name + "(";
        std::string body = "{\n";
        openScope();
        for (unsigned i = below(4); i-- > 0;)
            head += uniform(chance(70) ? Type{'f', from(1, 4)} : uniformType());
        head += providedInputs();
        beginBody('l', {'v', 1}, 8);
        for (const char* output :
             {"outLightWorldDir", "outLightAmbientColor", "outLightDiffuseColor", "outLightSpecularColor"})
        {
            head += std::string("\n    out float3 ") + output + ",";
            body += std::string(output) + " = " + tame({'f', 3}) + ";\n";
            declare(output, {'f', 3}, true);
        }
        body += statements(2);
        closeScope();
        head.back() = ')';
        return head + "\n" + indented(body + "}\n");
    }

    bool fIsDrawable;
    std::vector<Type> fSamplers;
};

} // namespace

GeneratedProgram generateProgram(std::uint64_t seed, GeneratedKind kind)
{
    return Generator(seed, kind).make(kind == GeneratedKind::InOneFile);
}
