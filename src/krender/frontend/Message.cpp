#include "krender/frontend/private/Message.h"

#include <krender/frontend/Diagnostic.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace krFrontend
{
namespace
{

constexpr Severity kError = Severity::Error;
constexpr Severity kWarning = Severity::Warning;

struct Row
{
    Message message;
    DiagnosticKind kind;
};

constexpr std::array kRows{
    Row{Message::UnexpectedToken, {"unexpected-token", kError, "expected %1, found '%2'"}},
    Row{Message::UnexpectedEnd, {"unexpected-end", kError, "expected %1, found the end of the file"}},
    Row{Message::MissingSemicolon, {"missing-semicolon", kError, "expected ';'"}},
    Row{Message::UnknownCharacter, {"unknown-character", kError, "'%1' is nothing that KRSL knows"}},
    Row{Message::OpenComment, {"open-comment", kError, "this comment is not closed"}},
    Row{Message::OpenText, {"open-string", kError, "this string is not closed on its line"}},
    Row{Message::OpenBlock, {"open-block", kError, "this '{' has no '}'"}},
    Row{Message::LongWord, {"long-word", kError, "a name has more than %1 bytes"}},
    Row{Message::BadNumber, {"bad-number", kError, "'%1' is not a number"}},
    Row{Message::LeadingZero, {"leading-zero", kError, "a whole number does not begin with 0"}},
    Row{Message::NumberTooLarge, {"large-number", kError, "the number does not fit into %1"}},
    Row{Message::BadSwizzle,
        {"bad-swizzle", kError, "'.%1' does not name components: up to four letters of xyzw, or of rgba"}},
    Row{Message::TooDeep,
        {"deep-nesting", kError, "statements, parentheses and calls stand more than %1 deep within each other"}},
    Row{Message::LongExpression, {"long-expression", kError, "the expression has more than %1 operators"}},
    Row{Message::LongChain, {"long-chain", kError, "more than %1 'else if's follow one another"}},
    Row{Message::Directive,
        {"unknown-directive", kError, "the only directive is #include \"file\", on a line of its own at file level"}},
    Row{Message::EmptyInclude, {"empty-include", kError, "#include names no file"}},
    Row{Message::FileFailed, {"file-failed", kError, "'%1' cannot be read: %2"}},
    Row{Message::IncludeFailed, {"include-failed", kError, "'%1' cannot be included: %2"}},
    Row{Message::TooManyFiles, {"too-many-files", kError, "more than %1 files are included"}},
    Row{Message::ElseWithoutIf, {"else-without-if", kError, "this else follows no if"}},
    Row{Message::ReversedRange,
        {"reversed-range", kError, "the range falls: frequencies rise from constant to fragment"}},
    Row{Message::Redeclared, {"redeclared", kError, "'%1' is declared twice here"}},
    Row{Message::FunctionTwice,
        {"function-twice", kError, "the function '%1' is defined twice with the same argument types"}},
    Row{Message::ShaderTwice, {"shader-twice", kError, "'%1' is defined twice"}},
    Row{Message::DifferentResult, {"different-result", kError, "'%1' is declared with another result"}},
    Row{Message::OperatorBody, {"operator-body", kError, "operators cannot be defined"}},
    Row{Message::BadResult, {"bad-result", kError, "a function cannot return %1"}},
    Row{Message::BadArgumentType, {"bad-argument", kError, "an argument cannot have the type %1 here"}},
    Row{Message::NoOutput, {"no-output", kError, "'%1' returns nothing: it needs a result or an out argument"}},
    Row{Message::InoutNotHere, {"inout-input", kError, "a %1 has no inout arguments"}},
    Row{Message::NoColor, {"no-color", kError, "a material needs 'out float4 outRGBA'"}},
    Row{Message::MaterialOutput, {"material-output", kError, "'%1' is no output of a material: it has outRGBA alone"}},
    Row{Message::LightOutput,
        {"light-output", kError,
         "'%1' is no output of a light: it has outLightWorldDir, outLightAmbientColor, outLightDiffuseColor and "
         "outLightSpecularColor"}},
    Row{Message::OutputType, {"output-type", kError, "'%1' has the type %2"}},
    Row{Message::ProvidedType, {"provided-type", kError, "programs provide '%1' as %2"}},
    Row{Message::InputFrequency,
        {"input-frequency", kError,
         "the input '%1' has no source: it is neither uniform nor vertex, and programs do not provide it"}},
    Row{Message::VertexInLight, {"vertex-in-light", kError, "a light has no vertex inputs"}},
    Row{Message::VertexType,
        {"vertex-type", kError, "a vertex input cannot have the type %1: float to float4 are carried"}},
    Row{Message::DefaultNotHere, {"default-not-here", kError, "only a uniform input that is no sampler has a default"}},
    Row{Message::NotText, {"not-a-string", kError, "a string is expected"}},
    Row{Message::TextNotHere, {"string-not-here", kError, "strings stand in metadata alone"}},
    Row{Message::NotConstant,
        {"not-constant", kError, "the value cannot be worked out: it is not constant, or it divides an int by 0"}},
    Row{Message::NotConstantName, {"not-a-constant", kError, "'%1' is no constant"}},
    Row{Message::CallInConstant, {"call-in-constant", kError, "a constant expression calls no function"}},
    Row{Message::ConstantCircle, {"constant-circle", kError, "the constant '%1' needs itself"}},
    Row{Message::ConstWithoutValue, {"const-without-value", kError, "the constant '%1' has no value"}},
    Row{Message::ArrayNotHere, {"array-not-here", kError, "arrays stand in bodies alone"}},
    Row{Message::ArrayOfArrays, {"array-of-arrays", kError, "an array has one dimension"}},
    Row{Message::ArraySize, {"array-size", kError, "the size of an array is a constant int from 1 to %1"}},
    Row{Message::WholeArray, {"whole-array", kError, "an array cannot be %1 whole"}},
    Row{Message::NoSuchVariable, {"bad-variable", kError, "a variable cannot have the type %1"}},
    Row{Message::UnknownName, {"unknown-name", kError, "'%1' is not declared"}},
    Row{Message::UnknownFunction, {"unknown-function", kError, "there is no function '%1'"}},
    Row{Message::FunctionAsValue, {"function-as-value", kError, "'%1' is a function: it is called with parentheses"}},
    Row{Message::CallOfVariable, {"call-of-variable", kError, "'%1' is a variable here and hides the function"}},
    Row{Message::CallOfShader, {"call-of-shader", kError, "'%1' is a material or light and cannot be called"}},
    Row{Message::NoOverload, {"no-overload", kError, "no '%1' takes (%2)"}},
    Row{Message::AmbiguousCall, {"ambiguous-call", kError, "several '%1' fit (%2) equally well"}},
    Row{Message::OnlyDeclared, {"only-declared", kError, "'%1' is declared, but has no body"}},
    Row{Message::Recursion, {"recursion", kError, "'%1' calls itself"}},
    Row{Message::ColumnAsOutput,
        {"column-as-output", kError,
         "a column of a matrix, or a part of it, cannot be an out argument: use a variable"}},
    Row{Message::LightValueOutside, {"light-value-outside", kError, "'%1' is known within illuminance alone"}},
    Row{Message::NoOutputHere,
        {"output-not-here", kError, "'output' is the value of a function with a result, and of nothing else"}},
    Row{Message::TypeMismatch, {"type-mismatch", kError, "expected %1, found %2"}},
    Row{Message::BadOperand, {"bad-operand", kError, "'%1' cannot be applied to %2"}},
    Row{Message::BadOperands, {"bad-operands", kError, "'%1' cannot be applied to %2 and %3"}},
    Row{Message::BranchTypes,
        {"branch-types", kError, "the two values are %1 and %2: they need one type that can be chosen"}},
    Row{Message::ConditionType, {"condition-type", kError, "a condition is a bool, this is %1"}},
    Row{Message::NoConstructor, {"no-constructor", kError, "there are no values of %1 to be made"}},
    Row{Message::BadConstructorValue, {"constructor-value", kError, "%1 cannot be made of %2"}},
    Row{Message::TooFewComponents, {"few-components", kError, "%1 needs %2 components, or one to fill them all"}},
    Row{Message::TooManyComponents, {"many-components", kError, "%1 takes %2 components"}},
    Row{Message::NotIndexable, {"not-indexable", kError, "%1 has no elements"}},
    Row{Message::IndexOutside, {"index-outside", kError, "the index %1 is outside %2: 0 to %3"}},
    Row{Message::NoComponents, {"no-components", kError, "%1 has no components to pick"}},
    Row{Message::MissingComponent, {"missing-component", kError, "%1 has no component %2"}},
    Row{Message::RepeatedComponent, {"repeated-component", kError, "a component is named twice where it is set"}},
    Row{Message::NotStorable, {"not-storable", kError, "this is no place that a value can be stored in"}},
    Row{Message::ReadOnly, {"read-only", kError, "'%1' %2 and cannot be changed"}},
    Row{Message::JumpOutsideLoop, {"jump-outside-loop", kError, "'%1' stands in no loop"}},
    Row{Message::ReturnWithValue, {"return-with-value", kError, "'%1' returns nothing"}},
    Row{Message::IlluminanceNotHere, {"illuminance-not-here", kError, "illuminance stands in materials alone"}},
    Row{Message::IlluminanceWithin, {"illuminance-within", kError, "illuminance cannot stand within illuminance"}},
    Row{Message::NoSuchShader, {"no-such-shader", kError, "there is no %1 with a body%2"}},
    Row{Message::NoVertexRegister,
        {"no-vertex-register", kError, "there is no register left for '%1': %2 takes %3 vertex inputs"}},
    Row{Message::NoInterpolant,
        {"no-interpolant", kError,
         "there is no room left for '%1': %2 carries %3 registers of four components from the vertex to the pixel"}},
    Row{Message::NoUniformRoom, {"no-uniform-room", kError, "there is no room left for '%1': %2 takes %3"}},
    Row{Message::TargetLacks, {"target-lacks", kError, "%1 cannot do this: %2"}},
    Row{Message::ProgramTooLarge, {"large-program", kError, "the program of '%1' would have more than %2 MB"}},
    Row{Message::PlainReadsOther,
        {"plain", kWarning, "a host that uses ShadingParser reads this otherwise: it finds '%1'"}},
    Row{Message::PlainRefuses, {"plain", kWarning, "a host that uses ShadingParser refuses this: %1"}},
    Row{Message::MissingComma, {"missing-comma", kWarning, "there is no ',' between the arguments"}},
    Row{Message::HiddenName, {"hidden-name", kWarning, "'%1' hides another one of its name"}},
    Row{Message::IntegerDivision,
        {"integer-division", kWarning, "the quotient of two ints is cut before it becomes a float"}},
    Row{Message::ConstantCondition, {"constant-condition", kWarning, "the condition is always %1"}},
    Row{Message::UnusedVariable, {"unused-variable", kWarning, "'%1' is not read"}},
    Row{Message::UnusedInput, {"unused-input", kWarning, "the input '%1' is not used"}},
    Row{Message::UnusedFunction, {"unused-function", kWarning, "the function '%1' is not called"}},
    Row{Message::ReadBeforeSet, {"read-before-set", kWarning, "'%1' is read before it is set"}},
    Row{Message::OutputNotSet, {"output-not-set", kWarning, "'%1' is not set on every way here"}},
};
static_assert(std::is_sorted(kRows.begin(), kRows.end(),
                             [](const Row& a, const Row& b) { return a.message < b.message; }));
static_assert(kRows.back().message == static_cast<Message>(kRows.size() - 1));

} // namespace

const DiagnosticKind& messageKind(Message message) noexcept { return kRows[static_cast<std::size_t>(message)].kind; }

const std::vector<DiagnosticKind>& diagnosticKinds()
{
    static const std::vector<DiagnosticKind> kinds = []
    {
        std::vector<DiagnosticKind> list;
        list.reserve(kRows.size());
        for (const Row& row : kRows)
            list.push_back(row.kind);
        return list;
    }();
    return kinds;
}

} // namespace krFrontend
