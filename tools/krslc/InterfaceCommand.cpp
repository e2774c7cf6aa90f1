#include "InterfaceCommand.h"

#include "Report.h"

#include <common/ExitStatus.h>
#include <common/InterfaceJson.h>
#include <common/MaterialCompiler.h>
#include <common/StandardOutput.h>

#include <nlohmann/json.hpp>

using krFrontend::InputInterface;
using krFrontend::ShaderInterface;
using krFrontend::ShaderKind;
using krFrontend::Value;
using nlohmann::ordered_json;

namespace
{

/// A value as KRSL writes it.
std::string textOf(const Value& value)
{
    if (value.type == kString)
        return '"' + krTools::printable(value.text) + '"';
    if (value.type == kBool)
        return value.ints.at(0) != 0 ? "true" : "false";
    std::string list;
    for (const float number : value.floats)
        list += (list.empty() ? "" : ", ") + krTools::digitsOf(number);
    for (const int number : value.ints)
        list += (list.empty() ? "" : ", ") + std::to_string(number);
    return value.floats.size() + value.ints.size() == 1 ? list : dataTypeName(value.type) + ('(' + list + ')');
}

/// An input as a header declares it, and its metadata below it.
std::string textOf(const InputInterface& argument)
{
    const krShadingDag::CompFreqRange range = argument.frequencies;
    std::string text = argument.isOutput ? "    out " : "    ";
    if (range.minFreq != krShadingDag::kFreqInvalid && range != krShadingDag::kFullRange)
    {
        text += compFreqName(range.minFreq);
        text += range.minFreq == range.maxFreq ? " " : std::string(":") + compFreqName(range.maxFreq) + ' ';
    }
    text += dataTypeName(argument.type) + (' ' + argument.name);
    if (argument.defaultValue.isSet())
        text += " = " + textOf(argument.defaultValue);
    text += '\n';
    for (const krFrontend::MetadataItem& item : argument.metadata)
        text += "        " + item.name + " = " + textOf(item.value) + '\n';
    return text;
}

std::string textOf(const ShaderInterface& shader)
{
    std::string text =
        shader.kind == ShaderKind::Function ? dataTypeName(shader.result) : krTools::kindName(shader.kind);
    text += ' ' + shader.name + (shader.hasBody ? "\n" : " (declared)\n");
    for (const InputInterface& argument : shader.arguments)
        text += textOf(argument);
    return text;
}

} // namespace

int printInterface(const InterfaceOptions& options)
{
    const krFrontend::Module module = krTools::readModule(options.file, {.includeFolders = options.includeFolders});
    if (module.hasErrors())
    {
        Report({}, false).add(module);
        return krTools::kInputHasErrors;
    }

    krTools::StandardOutput output;
    ordered_json shaders = ordered_json::array();
    for (const ShaderInterface& shader : krFrontend::interfaceOf(module))
        if (options.asJson)
            shaders.push_back(krTools::jsonOf(module.sources(), shader));
        else
            output.write(textOf(shader));
    if (options.asJson)
        output.write(textOf(shaders));
    output.finish();
    return krTools::kDone;
}
