// What each member of the package's classes does, for the docstrings of the
// Python module, its type stub and the template reference. One row per
// member that a class registers itself (inherited members are documented
// with the class that registers them); velcg-inspect refuses to write a stub
// while a registered member has no row here, or a row names no member.
#include <map>
#include <utility>

#include "velcg/TemplateReference.hpp"

namespace VelCG::reference {

namespace {

struct Row {
    const char* className; // without the package
    const char* member;
    const char* summary;
    const char* arguments; // a method's argument names, separated by ", "
    const char* type;      // the Python type where the host type does not tell it
};

// clang-format off
const Row kRows[] = {
    // Sections of generated files.
    {"FileSection", "isEmpty", "True when the section holds no fragment; a fragment of empty text counts.", "", ""},
    {"FileSection", "getContent", "The section's text: its fragments in the order they were added.", "", ""},
    {"FileSection", "addContent", "Appends text as a new fragment; text after an embedded NUL is dropped with a warning.", "text", ""},
    {"FunctionsSection", "addFunction", "Appends the text of a function as one fragment and records its name.", "name, text", ""},
    {"FunctionsSection", "getNumberOfFunctions", "The number of fragments of the section.", "", ""},
    {"FunctionsSection", "getFunction", "The text of function number `index`, counted from 1.", "index", ""},
    {"FunctionsSection", "getFunctionName", "The name of function number `index`, counted from 1.", "index", ""},
    {"IncludesSection", "RequiredIncludes", "Headers the section includes unless its text already does: `<name>` for a system header, a bare name for one in double quotes.", "", ""},
    {"IncludesSection", "UtilityIncludes", "Utility headers, included after the required ones in the same way.", "", ""},
    {"IncludesSection", "addInclude", "Appends an #include line for `name`, once per name; `isSystem` writes it in angle brackets.", "name, isSystem", ""},

    // Generated files.
    {"VelCGFile", "Name", "The file's name as it was created, extension and directories included.", "", ""},
    {"VelCGFile", "BaseName", "The name without directories and without its last extension.", "", ""},
    {"VelCGFile", "NameWithoutExtension", "The whole name, directories kept, up to its last \".\".", "", ""},
    {"VelCGFile", "Type", "Free text, such as header or source.", "", ""},
    {"VelCGFile", "Creator", "Free text naming who created the file.", "", ""},
    {"VelCGFile", "SystemsInFile", "The names of the systems whose code the file holds; setting replaces the list as given.", "", ""},
    {"VelCGFile", "Filtered", "True leaves the file unwritten.", "", ""},
    {"VelCGFile", "IsEmpty", "Whether no section holds text and the file was never marked non-empty.", "", ""},
    {"VelCGFile", "WrittenToDisk", "Whether the file has been written; a template that writes a file itself sets it.", "", ""},
    {"VelCGFile", "Indent", "Whether the file is to be indented.", "", ""},
    {"VelCGFile", "Shared", "Whether the file is shared between models.", "", ""},
    {"VelCGFile", "SharedType", "Whether the file holds a shared type.", "", ""},
    {"VelCGFile", "DeferredIncludeCoderTypes", "Whether the include of the coder types is deferred.", "", ""},
    {"VelCGFile", "CodeTemplate", "The code template that lays the file out.", "", ""},
    {"VelCGFile", "OutputDirectory", "The directory the file is meant for.", "", ""},
    {"VelCGFile", "Group", "The file's group.", "", ""},
    {"VelCGFile", "DefinedMacro", "The macro the file defines, such as its include guard.", "", ""},
    {"VelCGFile", "getFileSection", "The section of a kind given by its enumerator name (\"FUNCTIONS_SECTION\"); for a kind the file lacks, an empty section that drops what is added to it, with a warning.", "kindName", "FileSection"},
    {"VelCGFile", "hasSection", "Whether the file has the section of a kind given by its enumerator name.", "kindName", ""},
#define VELCG_SECTION_ACCESSOR(cls, name, label, type) \
    {cls, "get" name "Section", "The " label " section.", "", type}
    VELCG_SECTION_ACCESSOR("VelCGModuleFile", "Includes", "Includes", "IncludesSection"),
    VELCG_SECTION_ACCESSOR("VelCGModuleFile", "Typedefs", "Typedefs", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGModuleFile", "ExternFunctions", "ExternFcns", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGModuleFile", "ExternData", "ExternData", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGModuleFile", "FunctionPrototypes", "FcnPrototypes", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGModuleFile", "Declarations", "Declarations", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGModuleFile", "Defines", "Defines", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGModuleFile", "Functions", "Functions", "FunctionsSection"),
    VELCG_SECTION_ACCESSOR("VelCGModuleFile", "ForwardDeclarations", "ForwardDecls", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGModuleFile", "Documentation", "Documentation", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGDataTypesFile", "Includes", "Includes", "IncludesSection"),
    VELCG_SECTION_ACCESSOR("VelCGDataTypesFile", "Typedefs", "Typedefs", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGDataTypesFile", "Defines", "Defines", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "Includes", "Includes", "IncludesSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "Defines", "Defines", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "ForwardDeclarations", "ForwardDecls", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "Typedefs", "Typedefs", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "Enums", "Enums", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "Definitions", "Definitions", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "ExternData", "ExternData", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "ExternFunctions", "ExternFcns", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "FunctionPrototypes", "FcnPrototypes", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "Declarations", "Declarations", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "Functions", "Functions", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "CompilerErrors", "CompilerErrors", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "CompilerWarnings", "CompilerWarnings", "FileSection"),
    VELCG_SECTION_ACCESSOR("VelCGGenericFile", "Documentation", "Documentation", "FileSection"),
#undef VELCG_SECTION_ACCESSOR
    {"VelCGFileRepository", "FileList", "Every file of the repository, in creation order: a file's index in the bridge is its position here.", "", ""},
    {"VelCGFileRepository", "createDataTypesFile", "Creates a data-types file (Includes, Defines, Typedefs) and appends it to the file list.", "name", "VelCGDataTypesFile"},
    {"VelCGFileRepository", "createGenericFile", "Creates a generic file (every section) and appends it to the file list.", "name", "VelCGGenericFile"},
    {"VelCGFileRepository", "findFileByName", "The file created last under exactly this name, or None.", "name", "VelCGFile | None"},

    // Systems.
    {"System", "Identifier", "The system's identifier in generated code.", "", ""},
    {"System", "GraphicalCallsites", "The blocks that call the system, in order; only blocks of the system's own model can be set.", "", ""},
    {"System", "StartFcn", "The name of the system's start function.", "", ""},
    {"System", "OutputFcn", "The name of the system's output function.", "", ""},
    {"System", "UpdateFcn", "The name of the system's update function.", "", ""},
    {"System", "OutputUpdateFcn", "The name of the system's combined output and update function.", "", ""},
    {"System", "IsModelReferenceBaseSystem", "Whether the system is the base system of a referenced model.", "", ""},
    {"System", "getName", "The system's name.", "", ""},
    {"System", "isRootSystem", "Whether the system is the model's root system.", "", ""},
    {"System", "isReusableLibrarySubsystem", "Whether the system is a reusable library subsystem.", "", ""},
    {"System", "isAtomic", "Whether the system is atomic.", "", ""},
    {"System", "isCalledByBlock", "Whether a block calls the system.", "", ""},
    {"System", "getSystemType", "The system's type.", "", ""},
    {"System", "isInlined", "Whether the system's code is inlined into its caller.", "", ""},
    {"System", "isNonReusable", "Whether the system's code is a function that is not reused.", "", ""},
    {"System", "isReusable", "Whether the system's code is a reusable function.", "", ""},

    // Types.
    {"VelCGType", "Name", "The type's name in generated code; empty for an unnamed constructed type.", "", ""},
    {"VelCGType", "VelTypeIndex", "The index of its modelling type in CGModel.VelTypes, or -1.", "", ""},
    {"VelCGType", "Width", "The number of elements.", "", ""},
    {"VelCGType", "SymbolicWidth", "The width as generated code spells it.", "", ""},
    {"VelCGType", "Constructor", "\"matrix\", \"complex\", another constructor, or empty for a type that is not constructed.", "", ""},
    {"VelCGType", "BaseIndex", "The index in CGModel.CGTypes of the type a constructed type is built from.", "", ""},
    {"VelCGType", "Dimensions", "The dimensions of a matrix type.", "", ""},
    {"VelCGType", "SymbolicDimensions", "The dimensions as generated code spells them.", "", ""},
    {"VelCGType", "Bias", "The fixed-point bias.", "", ""},
    {"VelCGType", "Slope", "The fixed-point slope.", "", ""},
    {"VelCGType", "NBits", "The number of bits.", "", ""},
    {"VelCGType", "IsSigned", "Whether the type is signed.", "", ""},
    {"VelCGType", "Exponent", "The fixed-point exponent.", "", ""},
    {"VelCGType", "IsLoweredMultiword", "Whether the type is a multiword type lowered to words.", "", ""},
    {"VelCGType", "StructAlignment", "The alignment of a structure type, or -1.", "", ""},
    {"VelCGType", "Members", "The members of a structure type, in order.", "", ""},
    {"VelCGType", "EmbeddedType", "The code generator's own type object, or None; a write is ignored with a warning.", "", "EmbeddedType | None"},
    {"VelCGType", "getContainerTypeName", "The name of the type that holds values of this one in generated code.", "", ""},
    {"CGTypeMember", "Name", "The member's name.", "", ""},
    {"CGTypeMember", "CGTypeIndex", "The index of the member's type in CGModel.CGTypes.", "", ""},
    {"CGTypeMember", "Alignment", "The member's alignment, or -1.", "", ""},

    // The model.
    {"CGModel", "Systems", "The model's generated systems.", "", ""},
    {"CGModel", "BlockHierarchyMap", "The subsystems and blocks of the model.", "", ""},
    {"CGModel", "CGTypes", "The code-generation types; other objects refer to them by index.", "", ""},
    {"CGModel", "VarGroups", "The variable groups; other objects refer to them by index.", "", ""},
    {"CGModel", "VelTypes", "The modelling data types.", "", ""},
    {"CGModel", "ExternalInputs", "The root-level inputs.", "", ""},
    {"CGModel", "TAQBlocks", "The async-queue blocks.", "", ""},
    {"CGModel", "SubsystemPathForRightClickBuild", "The path of the subsystem being built on its own, if any.", "", ""},
    {"CGModel", "SubsystemNameForRightClickBuild", "The name of the subsystem being built on its own, if any.", "", ""},
    {"CGModel", "ModelReferenceTargetType", "The kind of referenced-model target being built, if any.", "", ""},
    {"CGModel", "NumChildSFunctions", "The number of child S-functions.", "", ""},
    {"CGModel", "IsQuayTarget", "Whether the build is for the Quay target.", "", ""},
    {"CGModel", "IsGeneratingToSharedLocation", "Whether code is generated into a shared location.", "", ""},
    {"CGModel", "IsCompactFilePackaging", "Whether the compact file packaging is chosen.", "", ""},
    {"CGModel", "MaxMultiWordBits", "The largest number of bits of a multiword type.", "", ""},
    {"CGModel", "IsModelReferenceTarget", "Whether the model is built as a referenced model.", "", ""},
    {"CGModel", "NumModelReferenceBlocks", "The number of model reference blocks.", "", ""},
    {"CGModel", "IsHostBasedSimulationTarget", "Whether the build is for host-based simulation.", "", ""},
    {"CGModel", "SharedCodeManagerPath", "The path of the shared code manager.", "", ""},
    {"CGModel", "getName", "The model's name.", "", ""},
    {"CGModel", "getVersion", "The model's version.", "", ""},
    {"CGModel", "getKordelCoderVersion", "The version of the coder that builds the model.", "", ""},
    {"CGModel", "getKordelVersion", "The version of the modelling environment.", "", ""},
    {"CGModel", "getSystemForFunction", "The system a generated function belongs to, or None.", "functionName", "System | None"},
    {"CGModel", "serializeModel", "Writes the first pass of the code descriptor into the build directory (as the switch VelCGDirectEmitSerialize says).", "buildDirectory", ""},
    {"CGModel", "serializeModelAfterScriv", "Writes the second pass of the code descriptor, after the first.", "buildDirectory", ""},

    // Variable groups.
    {"VarGroup", "Name", "The group's type name in generated code.", "", ""},
    {"VarGroup", "Category", "The group's category, such as BlockIO.", "", ""},
    {"VarGroup", "LocalName", "The name of a local instance of the group.", "", ""},
    {"VarGroup", "NonreusedName", "The name of the group's instance in code that is not reused.", "", ""},
    {"VarGroup", "SystemIndex", "The index of its system in CGModel.Systems, or -1.", "", ""},
    {"VarGroup", "HasElement", "The name of the element the group has, if any.", "", ""},
    {"VarGroup", "InstanceIndex", "The instance the group belongs to.", "", ""},
    {"VarGroup", "IsPointer", "Whether the group is reached through a pointer.", "", ""},
    {"VarGroup", "ParentVarGroupIndex", "The index of the enclosing group in CGModel.VarGroups, or -1.", "", ""},
    {"VarGroup", "MemberIndexInParent", "The group's member index in its parent's type, or -1.", "", ""},
    {"VarGroup", "CGTypeIndex", "The index of the group's type in CGModel.CGTypes, or -1.", "", ""},
    {"VarGroup", "TypeTag", "The tag of the group's type.", "", ""},
    {"VarGroup", "GlobalOffset", "The group's offset in global memory.", "", ""},
    {"VarGroup", "Elements", "The names of the group's elements.", "", ""},
    {"VarGroup", "SubstructNames", "The names of the group's substructures.", "", ""},
    {"VarGroup", "SubstructIndices", "The indices of the group's substructures in CGModel.VarGroups.", "", ""},
    {"VarGroup", "DataGroupIndex", "The index of its coder data group, or -1.", "", ""},

    // Modelling types.
    {"VelType", "ID", "The type's identifier; -10 while none is set.", "", ""},
    {"VelType", "CGTypeIdx", "The index of its code-generation type in CGModel.CGTypes.", "", ""},
    {"VelType", "ContainerCGTypeIdx", "The index of the code-generation type of its container, or -1.", "", ""},
    {"VelType", "ContainerVelTypeIdx", "The index of the modelling type of its container, or -1.", "", ""},
    {"VelType", "getDTName", "The data-type name.", "", ""},
    {"VelType", "isShared", "Whether the type is shared.", "", ""},
    {"VelType", "isUserProvided", "Whether the user provides the type.", "", ""},
    {"VelType", "getDescription", "The type's description.", "", ""},
    {"VelType", "getIdAliasedTo", "The identifier of the type this one aliases, or -10.", "", ""},
    {"VelType", "getIdAliasedThruTo", "The identifier at the end of the alias chain, or -10.", "", ""},
    {"VelType", "getHeaderFile", "The header that declares the type.", "", ""},
    {"VelType", "isEnumType", "Whether the type is an enumeration.", "", ""},
    {"VelType", "isStructType", "Whether the type is a structure.", "", ""},
    {"VelType", "isBus", "Whether the type is a bus.", "", ""},
    {"VelType", "isAliasType", "Whether the type aliases another type.", "", ""},
    {"VelType", "getName", "The name of its code-generation type.", "", ""},
    {"VelType", "getComplexName", "The name of the complex type built on it (\"c\" and its name).", "", ""},

    // Root inputs.
    {"ExternalInput", "CGTypeIndex", "The index of the input's type in CGModel.CGTypes, or -1.", "", ""},
    {"ExternalInput", "StorageClass", "The name of the input's storage class.", "", ""},
    {"ExternalInput", "RequiresGlobalAccess", "Whether the input needs global access.", "", ""},
    {"ExternalInput", "Identifier", "The input's identifier as stored.", "", ""},
    {"ExternalInput", "VarGroupIndex", "The index of its variable group in CGModel.VarGroups, or -1.", "", ""},
    {"ExternalInput", "VarGroupMemberIndex", "Its member index in the group's type, or -1.", "", ""},
    {"ExternalInput", "HasVarDims", "Whether the input has variable dimensions.", "", ""},
    {"ExternalInput", "CanonicalDimSizeDWorkIndex", "The work vector of its canonical dimension size, or -1.", "", ""},
    {"ExternalInput", "HasCanonicalDimSizeDWorkIndex", "Whether CanonicalDimSizeDWorkIndex is set.", "", ""},
    {"ExternalInput", "SizeVarGroupIdx", "The variable group of its size, or -1.", "", ""},
    {"ExternalInput", "SizeVarGroupMemberIndex", "The member of its size in that group, or -1.", "", ""},
    {"ExternalInput", "DimSizeDWork", "The work vector of its dimension size, or -1.", "", ""},
    {"ExternalInput", "Padding", "The padding after the input.", "", ""},
    {"ExternalInput", "getRecordIdentifier", "The identifier generated code reaches the input by: its group member's name when it is in a variable group, else Identifier.", "", ""},

    // The graphical model.
    {"BlockHierarchyMap", "Subsystems", "The subsystems, root first, in breadth-first order.", "", ""},
    {"BlockHierarchyMap", "ReducedBlocks", "The blocks removed by model reduction.", "", ""},
    {"GraphicalSubsystem", "Name", "The subsystem's name.", "", ""},
    {"GraphicalSubsystem", "VelName", "The subsystem's name in the modelling environment.", "", ""},
    {"GraphicalSubsystem", "SubsystemBlock", "The block that represents the subsystem in its parent, or None.", "", ""},
    {"GraphicalSubsystem", "Type", "\"root\", \"virtual\", \"atomic\", \"enabled\", \"trigger\", \"enabletrigger\", \"fcncall\", \"action\", \"iterator\" or \"unknown\".", "", ""},
    {"GraphicalSubsystem", "MaskType", "The mask type of the subsystem block.", "", ""},
    {"GraphicalSubsystem", "InputPortBlocks", "Its inport blocks.", "", ""},
    {"GraphicalSubsystem", "OutputPortBlocks", "Its outport blocks.", "", ""},
    {"GraphicalSubsystem", "DataStoreBlocks", "Its data store memory blocks.", "", ""},
    {"GraphicalSubsystem", "SubsystemBlocks", "Its subsystem blocks.", "", ""},
    {"GraphicalSubsystem", "ChildSubsystems", "The subsystems its subsystem blocks stand for.", "", ""},
    {"GraphicalSubsystem", "Blocks", "Every block of the subsystem, in order.", "", ""},
    {"GraphicalBlock", "Name", "The block's name.", "", ""},
    {"GraphicalBlock", "VelName", "The block's name in the modelling environment.", "", ""},
    {"GraphicalBlock", "SID", "The block's session identifier.", "", ""},
    {"GraphicalBlock", "Type", "The block's type, such as Gain.", "", ""},
    {"GraphicalBlock", "Description", "The block's description.", "", ""},
    {"GraphicalBlock", "ReferencedModelName", "The model a model reference block refers to.", "", ""},
    {"GraphicalBlock", "Virtual", "\"NonVirtual\", \"Virtual\" or \"PostCompileVirtual\".", "", ""},
    {"GraphicalBlock", "DataInputPorts", "The data input ports, in order.", "", ""},
    {"GraphicalBlock", "DataOutputPorts", "The data output ports, in order.", "", ""},
    {"GraphicalBlock", "ControlInputPorts", "The control input ports, in order.", "", ""},
    {"GraphicalBlock", "NumFcnCallOutputPorts", "The number of function-call output ports.", "", ""},
    {"GraphicalBlock", "Parameters", "The block's parameters.", "", ""},
    {"GraphicalBlock", "ContinuousStates", "The block's continuous states.", "", ""},
    {"GraphicalBlock", "Derivatives", "The derivatives of its continuous states.", "", ""},
    {"GraphicalBlock", "DiscreteStates", "The block's discrete states.", "", ""},
    {"GraphicalBlock", "DWorks", "The block's work vectors.", "", ""},
    {"GraphicalBlock", "RLSCommentName", "The name comments of reusable subsystems give the block.", "", ""},
    {"GraphicalBlock", "IsProtectedModelBlock", "Whether the block refers to a protected model.", "", ""},
    {"Port", "VelName", "The port's name in the modelling environment.", "", ""},
    {"Port", "SignalLabel", "The label of the signal on the port.", "", ""},
    {"Port", "Connected", "Whether the port is connected.", "", ""},
    {"Port", "TestPoint", "Whether the signal is a test point.", "", ""},
    {"Port", "MdlRefSimLoggableTestPoint", "Whether the test point can be logged in a referenced model's simulation.", "", ""},
    {"Port", "GraphicalSource", "The data output port that feeds this one, or None.", "", ""},
    {"Port", "Regions", "The regions of the signal, in order.", "", ""},
    {"Region", "Source", "The expression or variable that supplies the data in generated code.", "", ""},
    {"Region", "BusSelElIdx", "The bus element a bus selector picks.", "", ""},
    {"Region", "BusSelElCGTypeId", "The type of that bus element.", "", ""},
    {"Region", "Offset", "The region's offset in its source.", "", ""},
    {"Region", "GroundDataTypeIdx", "The data type of a ground region.", "", ""},
    {"Region", "GroundLabel", "The label of a ground region.", "", ""},
    {"Region", "GroundIsComplex", "Whether a ground region is complex.", "", ""},
    {"Region", "GroundIsSynthesized", "Whether a ground region was synthesized.", "", ""},
    {"Region", "Dimensions", "The region's dimensions; [1] for a scalar.", "", ""},
    {"Region", "FunctionArgumentIdx", "The function argument that carries the region, or -1.", "", ""},
    {"Region", "DataInterface", "Where the region's data lives in generated code, or None.", "", "DataInterface | None"},
    {"Parameter", "Name", "The parameter's name.", "", ""},
    {"Parameter", "ModelParameters", "The model parameters the block parameter uses.", "", ""},
    {"State", "Dimensions", "The state's dimensions.", "", ""},
    {"ModelParameter", "Name", "The parameter's name in generated code.", "", ""},
    {"ModelParameter", "IsAlias", "Whether the parameter aliases another.", "", ""},
    {"ModelParameter", "IsWorkspaceVar", "Whether the parameter is a workspace variable.", "", ""},
    {"ModelParameter", "IsPseudoWorkspaceVar", "Whether the parameter stands in for a workspace variable.", "", ""},
    {"ModelParameter", "IsTunable", "Whether the parameter can be tuned.", "", ""},
    {"ModelParameter", "GraphicalSource", "The block the parameter comes from, or None.", "", ""},
    {"ModelParameter", "GraphicalReferences", "The blocks that use the parameter.", "", ""},
    {"ModelParameter", "DataInterface", "Where the parameter lives in generated code, or None.", "", "DataInterface | None"},
    {"ModelParameter", "getOriginalName", "The parameter's original name.", "", ""},
    {"ModelParameter", "getWorkspaceVarName", "The name of its workspace variable.", "", ""},
    {"DataInterfaceRecord", "DataInterface", "Where the state or work vector lives in generated code, or None.", "", "DataInterface | None"},

    // Async-queue blocks.
    {"ToAsyncQueueBlock", "isFixedPoint", "Whether the queued signal is fixed-point.", "", ""},
    {"ToAsyncQueueBlock", "isEnum", "Whether the queued signal is an enumeration.", "", ""},
    {"ToAsyncQueueBlock", "dataTypeId", "The signal's data type identifier.", "", ""},
    {"ToAsyncQueueBlock", "dataTypeSize", "The size of the signal's data type in bytes.", "", ""},
    {"ToAsyncQueueBlock", "fxpNumericType", "The fixed-point numeric type.", "", ""},
    {"ToAsyncQueueBlock", "fxpSignedness", "The fixed-point signedness.", "", ""},
    {"ToAsyncQueueBlock", "fxpWordLength", "The fixed-point word length.", "", ""},
    {"ToAsyncQueueBlock", "fxpFractionLength", "The fixed-point fraction length.", "", ""},
    {"ToAsyncQueueBlock", "fxpSlopeAdjFactor", "The fixed-point slope adjustment factor.", "", ""},
    {"ToAsyncQueueBlock", "fxpFixedExponent", "The fixed-point exponent.", "", ""},
    {"ToAsyncQueueBlock", "fxpBias", "The fixed-point bias.", "", ""},
    {"ToAsyncQueueBlock", "enumClassName", "The class of an enumeration signal.", "", ""},
    {"ToAsyncQueueBlock", "enumClassification", "The classification of that enumeration.", "", ""},
    {"ToAsyncQueueBlock", "enumLabels", "The enumeration's labels.", "", ""},
    {"ToAsyncQueueBlock", "enumValues", "The enumeration's values.", "", ""},
    {"ToAsyncQueueBlock", "isComplex", "Whether the signal is complex.", "", ""},
    {"ToAsyncQueueBlock", "isDiscete", "Whether the signal is discrete.", "", ""},
    {"ToAsyncQueueBlock", "isVirtualBus", "Whether the signal is a virtual bus.", "", ""},
    {"ToAsyncQueueBlock", "isNVBus", "Whether the signal is a nonvirtual bus.", "", ""},
    {"ToAsyncQueueBlock", "isVarDims", "Whether the signal has variable dimensions.", "", ""},
    {"ToAsyncQueueBlock", "dimensions", "The signal's dimensions.", "", ""},
    {"ToAsyncQueueBlock", "blockPath", "The path of the block.", "", ""},
    {"ToAsyncQueueBlock", "blockSID", "The block's session identifier.", "", ""},
    {"ToAsyncQueueBlock", "portNumber", "The number of the port the signal leaves.", "", ""},
    {"ToAsyncQueueBlock", "signalName", "The signal's name.", "", ""},
    {"ToAsyncQueueBlock", "actSrcBlockPath", "The path of the block that actually produces the signal.", "", ""},
    {"ToAsyncQueueBlock", "actSrcBlockSID", "That block's session identifier.", "", ""},
    {"ToAsyncQueueBlock", "actSrcPortNumber", "That block's port number.", "", ""},
    {"ToAsyncQueueBlock", "actSrcDWorkName", "The work vector of the actual source.", "", ""},
    {"ToAsyncQueueBlock", "actSrcStartElement", "The first element taken from the actual source.", "", ""},
    {"ToAsyncQueueBlock", "signalSourceUUID", "The signal source's identifier.", "", ""},
    {"ToAsyncQueueBlock", "signalSourceUUIDasInteger", "The same identifier as an integer.", "", ""},
    {"ToAsyncQueueBlock", "units", "The signal's units.", "", ""},
    {"ToAsyncQueueBlock", "uniqueId", "The block's unique identifier.", "", ""},
    {"ToAsyncQueueBlock", "tid", "The task identifier.", "", ""},
    {"ToAsyncQueueBlock", "leafElements", "The queue blocks of a bus's leaf elements.", "", ""},
    {"ToAsyncQueueBlock", "nvBusOffset", "The offset in a nonvirtual bus.", "", ""},
    {"ToAsyncQueueBlock", "isLiveStreaming", "Whether the signal is streamed live.", "", ""},
    {"ToAsyncQueueBlock", "isDeferredStreaming", "Whether the signal's streaming is deferred.", "", ""},
};
// clang-format on

std::vector<std::string> split(const char* names) {
    std::vector<std::string> out;
    std::string name;
    for (const char* c = names; *c; ++c) {
        if (*c == ',') {
            out.push_back(name);
            name.clear();
        } else if (*c != ' ') {
            name += *c;
        }
    }
    if (!name.empty()) out.push_back(name);
    return out;
}

} // namespace

const std::map<std::pair<std::string, std::string>, MemberDoc>& memberDocs() {
    static const std::map<std::pair<std::string, std::string>, MemberDoc> docs = [] {
        std::map<std::pair<std::string, std::string>, MemberDoc> byMember;
        for (const Row& row : kRows)
            byMember.emplace(std::make_pair(std::string("VelCG.") + row.className, std::string(row.member)),
                             MemberDoc{row.summary, split(row.arguments), row.type});
        return byMember;
    }();
    return docs;
}

const MemberDoc* findMemberDoc(const std::string& qualifiedClass, const std::string& member) {
    const auto& docs = memberDocs();
    auto it = docs.find({qualifiedClass, member});
    return it == docs.end() ? nullptr : &it->second;
}

} // namespace VelCG::reference
