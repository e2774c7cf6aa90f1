#pragma once
#include <krender/shading/FunctionType.h>
#include <krender/shading/IHWShaderManager.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/StatementCompound.h>

#include <list>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace krShadingDag
{

/// What a spec is, and the role of an argument.
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
    /// A second name, for the host; copied along with the first, and filled by nothing here.
    [[nodiscard]] const krString::CString& secondName() const noexcept { return fSecondName; }
    /// A mark for the host; nothing here looks at it.
    [[nodiscard]] bool hostFlag() const noexcept { return fHostFlag; }
    [[nodiscard]] const FunctionType& functionType() const noexcept { return fFunctionType; }
    [[nodiscard]] NodeType nodeType() const noexcept { return fNodeType; }
    /// Whether the body held an illuminance block when updateIlluminanceLoopFlag() last looked.
    [[nodiscard]] bool hasIlluminanceLoop() const noexcept { return fHasIlluminanceLoop; }
    [[nodiscard]] const Attributes& inputs() const noexcept { return fInputs; }
    [[nodiscard]] Attributes& inputs() noexcept { return fInputs; }
    [[nodiscard]] const Attributes& outputs() const noexcept { return fOutputs; }
    [[nodiscard]] Attributes& outputs() noexcept { return fOutputs; }
    [[nodiscard]] const Attributes& constants() const noexcept { return fConstants; }
    [[nodiscard]] Attributes& constants() noexcept { return fConstants; }
    /// Inputs and outputs in the order of their declaration, each with its role; the return value is not among them.
    [[nodiscard]] const Arguments& arguments() const noexcept { return fArguments; }
    [[nodiscard]] Arguments& arguments() noexcept { return fArguments; }
    [[nodiscard]] const StatementCompound& body() const noexcept { return fBody; }
    [[nodiscard]] StatementCompound& body() noexcept { return fBody; }

    /// The first attribute of that name; when there is none, found is false and an empty attribute comes back.
    [[nodiscard]] const ShadingAttribute& input(const krString::CString& name, bool& found) const;
    [[nodiscard]] const ShadingAttribute& output(const krString::CString& name, bool& found) const;
    /// The i-th input, or an empty attribute when there are fewer.
    [[nodiscard]] const ShadingAttribute& input(unsigned i) const;
    /// The place of the first input of that name, 0xFFFFFFFF when there is none. The flag is not consulted.
    [[nodiscard]] unsigned getOffsetOfInput(const krString::CString& name, bool flag) const;
    [[nodiscard]] unsigned numInputs(DataType type) const;
    [[nodiscard]] unsigned numSamplerInputs() const;
    /// The header as a person reads it: name, roles, frequencies and types of the arguments.
    [[nodiscard]] krString::CString functionHeaderString() const;
    /// Whether the candidates are as many as this spec's arguments and of the same types, in order; names, roles and
    /// frequencies are not compared, and nothing is converted.
    [[nodiscard]] bool matchArguments(const Attributes& candidates) const;
    [[nodiscard]] bool matchArguments(const Arguments& candidates) const;

    void setName(const krString::CString& name) { fName = name; }
    void setSecondName(const krString::CString& name) { fSecondName = name; }
    void setHostFlag(bool flag) noexcept { fHostFlag = flag; }
    void setFunctionType(const FunctionType& type) noexcept { fFunctionType = type; }
    void setNodeType(NodeType nodeType) noexcept { fNodeType = nodeType; }
    /// Appends an input, which is an argument too. One whose name is taken is added as well, and then an Exception of
    /// type 0 is thrown.
    ShadingAttribute& addInput(DataType type, const krString::CString& name, const CompFreqRange& range);
    /// Appends an output. The one named "output" is the return value and no argument.
    ShadingAttribute& addOutput(DataType type, const krString::CString& name, const CompFreqRange& range);

    // All three append an empty statement to the body.
    Statement* createPrologStatement();
    Statement* createStatementInCurrentScope();
    Statement* createPrefixStatement();
    void updateIlluminanceLoopFlag();

    /// The host's shader manager, owned by the spec; null when there is none.
    [[nodiscard]] IHWShaderManager* shaderManager() const noexcept { return fShaderManager.get(); }
    /// Adopts a manager and deletes the one before.
    void assignShaderManager(IHWShaderManager* manager);
    void releaseShaderManager();

    /// Empties inputs, outputs, arguments and body and releases the manager; name, kinds, constants and flags stay.
    void reset();
    /// Becomes a copy of another spec's name, node type, arguments and body. Function type, constants, illuminance flag
    /// and manager stay this spec's own: a library entry keeps them when a source is read again.
    void cloneFrom(const ShadingNodeSpec& other);

    // The process-wide library. It owns the specs in it; equal names keep the order of their registration.

    /// The range of specs of exactly that name.
    static void findSpecsInLibrary(const krString::CString& name, Library::iterator& first, Library::iterator& last);
    /// The first spec whose name is not less than the one asked for: a missing name yields its successor, so callers
    /// that need the exact name compare it. Null when there is no such spec.
    [[nodiscard]] static ShadingNodeSpec* findSpecInLibrary(const krString::CString& name);
    /// The first registered spec of that name whose arguments match; null when none does.
    [[nodiscard]] static ShadingNodeSpec* findSpecInLibrary(const krString::CString& name, const Attributes& arguments);
    [[nodiscard]] static ShadingNodeSpec* findSpecInLibrary(const krString::CString& name, const Arguments& arguments);
    /// Registers this spec. When one of the same name and argument types is there, this spec is copied into it and that
    /// one comes back; this one then stays the caller's. Otherwise the library adopts this spec and it comes back.
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
