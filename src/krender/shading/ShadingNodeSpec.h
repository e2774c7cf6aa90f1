#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>
#include <krender/shading/DataType.h>
#include <krender/shading/FunctionType.h>
#include <krender/shading/IHWShaderManager.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/StatementCompound.h>

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace krShadingDag
{

/// The kind of a spec, or the role of an argument.
enum NodeType : std::uint32_t
{
    kGenerated = 0,   ///< a spec made by the compilers
    kInput = 1,       ///< an input argument
    kOutput = 2,      ///< an output argument
    kDeclaration = 4, ///< a function header alone
    kDefinition = 5,  ///< a function with its body
};

/// A shading function: its name, its typed inputs and outputs, and its body.
class KRENDER_EXPORT ShadingNodeSpec
{
public:
    using Attributes = std::vector<ShadingAttribute>;
    using Arguments = std::list<std::pair<NodeType, ShadingAttribute>>;
    struct Less
    {
        bool operator()(const krString::CString& a, const krString::CString& b) const noexcept
        {
            return krString::less(a, b);
        }
    };
    using Library = std::multimap<krString::CString, ShadingNodeSpec*, Less>;

    explicit ShadingNodeSpec(NodeType nodeType);
    ShadingNodeSpec(const ShadingNodeSpec&) = delete;
    ShadingNodeSpec& operator=(const ShadingNodeSpec&) = delete;
    ~ShadingNodeSpec();

    [[nodiscard]] const krString::CString& name() const noexcept { return fName; }
    /// A second name for the host to use. The library only copies it along with the first.
    [[nodiscard]] const krString::CString& secondName() const noexcept { return fSecondName; }
    /// A flag for the host to use.
    [[nodiscard]] bool hostFlag() const noexcept { return fHostFlag; }
    [[nodiscard]] const FunctionType& functionType() const noexcept { return fFunctionType; }
    [[nodiscard]] NodeType nodeType() const noexcept { return fNodeType; }
    /// Whether the body had an illuminance block at the last updateIlluminanceLoopFlag().
    [[nodiscard]] bool hasIlluminanceLoop() const noexcept { return fHasIlluminanceLoop; }
    [[nodiscard]] const Attributes& inputs() const noexcept { return fInputs; }
    [[nodiscard]] Attributes& inputs() noexcept { return fInputs; }
    [[nodiscard]] const Attributes& outputs() const noexcept { return fOutputs; }
    [[nodiscard]] Attributes& outputs() noexcept { return fOutputs; }
    [[nodiscard]] const Attributes& constants() const noexcept { return fConstants; }
    [[nodiscard]] Attributes& constants() noexcept { return fConstants; }
    /// Inputs and outputs in the order in which they were added, each with its role, but without the return value.
    [[nodiscard]] const Arguments& arguments() const noexcept { return fArguments; }
    [[nodiscard]] Arguments& arguments() noexcept { return fArguments; }
    [[nodiscard]] const StatementCompound& body() const noexcept { return fBody; }
    [[nodiscard]] StatementCompound& body() noexcept { return fBody; }

    /// The first attribute of that name; when there is none, found is false and a default attribute comes back.
    [[nodiscard]] const ShadingAttribute& input(const krString::CString& name, bool& found) const;
    [[nodiscard]] const ShadingAttribute& output(const krString::CString& name, bool& found) const;
    /// The i-th input, or a default attribute when there are fewer.
    [[nodiscard]] const ShadingAttribute& input(unsigned i) const;
    /// The index of the first input of that name, 0xFFFFFFFF when there is none. The flag is ignored.
    [[nodiscard]] unsigned getOffsetOfInput(const krString::CString& name, bool flag) const;
    [[nodiscard]] unsigned numInputs(DataType type) const;
    [[nodiscard]] unsigned numSamplerInputs() const;
    /// The function's header, printed: its name, and role, lowest frequency, type and name of each argument.
    [[nodiscard]] krString::CString functionHeaderString() const;
    /// Whether there are as many candidates as arguments, of the same types in the same order. Names, roles and
    /// frequencies are not compared, and no type is converted.
    [[nodiscard]] bool matchArguments(const Attributes& candidates) const;
    [[nodiscard]] bool matchArguments(const Arguments& candidates) const;

    void setName(const krString::CString& name) { fName = name; }
    void setSecondName(const krString::CString& name) { fSecondName = name; }
    void setHostFlag(bool flag) noexcept { fHostFlag = flag; }
    void setFunctionType(const FunctionType& type) noexcept { fFunctionType = type; }
    void setNodeType(NodeType nodeType) noexcept { fNodeType = nodeType; }
    /// Appends an input, also to the arguments. Deliberate: when there is an input of that name already, this one is still
    /// added before an Exception of type kVerificationFailed is thrown.
    /// @return  the new input, valid until another is added
    ShadingAttribute& addInput(DataType type, const krString::CString& name, const CompFreqRange& range);
    /// Appends an output, also to the arguments unless its name is "output", which makes it the return value.
    /// @return  the new output, valid until another is added
    ShadingAttribute& addOutput(DataType type, const krString::CString& name, const CompFreqRange& range);

    // All three append a cleared statement to the body and return it; the body owns it.
    Statement* createPrologStatement();
    Statement* createStatementInCurrentScope();
    Statement* createPrefixStatement();
    void updateIlluminanceLoopFlag();

    /// The host's shader manager, owned by the spec; null when there is none.
    [[nodiscard]] IHWShaderManager* shaderManager() const noexcept { return fShaderManager.get(); }
    /// Deletes the manager that the spec has, then adopts this one; null leaves it without one. When the spec has this one
    /// already, nothing happens.
    void assignShaderManager(IHWShaderManager* manager);
    /// Deletes the manager.
    void releaseShaderManager();

    /// Empties inputs, outputs, arguments and body and deletes the manager; names, types, constants and flags stay.
    void reset();
    /// Resets this spec, then copies another's names, node type and body, and makes its inputs and then its outputs anew
    /// from their names, types and ranges. Deliberate: function type, constants and flags stay this spec's own, and the
    /// manager is not copied, so addToLibrary() leaves a registered spec these. Given itself, nothing changes.
    void cloneFrom(const ShadingNodeSpec& other);

    // The process-wide library. It owns the specs in it; those of equal names are in the order of their registration.

    /// The range of the specs of exactly that name.
    static void findSpecsInLibrary(const krString::CString& name, Library::iterator& first, Library::iterator& last);
    /// The first spec whose name is not less than this one, null when there is none. Deliberate: where no spec has the
    /// name, the next name's spec comes back, so callers that need the exact name compare it.
    [[nodiscard]] static ShadingNodeSpec* findSpecInLibrary(const krString::CString& name);
    /// The first registered spec of that name whose arguments match; null when none does.
    [[nodiscard]] static ShadingNodeSpec* findSpecInLibrary(const krString::CString& name, const Attributes& arguments);
    [[nodiscard]] static ShadingNodeSpec* findSpecInLibrary(const krString::CString& name, const Arguments& arguments);
    /// Registers this spec: the library adopts it and updates its illuminance flag. When a spec of the same name and
    /// argument types is registered already, this one is copied into that one and stays the caller's. Deliberate: the
    /// flag of the registered spec is not updated then.
    /// @return  the registered spec
    ShadingNodeSpec* addToLibrary();
    /// Destroys all registered specs.
    static void clearLibrary();

    static Library fLibrary;
    /// Live specs, for leak accounting.
    static std::int32_t fsNumInstances_ShadingNodeSpec;

private:
    void appendInput(const krString::CString& name, DataType type, const CompFreqRange& range);
    void appendOutput(const krString::CString& name, DataType type, const CompFreqRange& range);

    krString::CString fName;
    krString::CString fSecondName;
    FunctionType fFunctionType;
    NodeType fNodeType;
    Attributes fInputs;
    Attributes fOutputs;
    Attributes fConstants;
    Arguments fArguments;
    StatementCompound fBody;
    std::unique_ptr<IHWShaderManager> fShaderManager;
    bool fHasIlluminanceLoop = false;
    bool fHostFlag = false;
};

} // namespace krShadingDag
