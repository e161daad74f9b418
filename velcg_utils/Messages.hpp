#pragma once

// The identifiers of the library's diagnostics, one namespace per catalogue
// "VelCG:<Class>": the only place each identifier is spelled. Raising code
// names them as messages::<Class>::<Key>; MessageCatalog.cpp gives each
// catalogued one its template and advice. Those of the model classes are
// public (velcg/ModelDiagnostics.hpp); the host's catalogues have headers of
// their own (korb/Messages.hpp, brisk/Messages.hpp, ...). Internal to the
// library, its Python module and its tools: not installed, not exported.

#include "Messages.hpp"
#include "velcg/ModelDiagnostics.hpp"

namespace VelCG::messages {

namespace Binding {
inline constexpr char IgnoredWrite[] = "VelCG:Binding:IgnoredWrite";
} // namespace Binding

namespace CustomContents {
inline constexpr char NullContent[] = "VelCG:CustomContents:NullContent";
inline constexpr char TextAfterNul[] = "VelCG:CustomContents:TextAfterNul";
inline constexpr char PlacedNotRetrieved[] = "VelCG:CustomContents:PlacedNotRetrieved";
inline constexpr char NoBuiltinSection[] = "VelCG:CustomContents:NoBuiltinSection";
inline constexpr char NotWritten[] = "VelCG:CustomContents:NotWritten";
} // namespace CustomContents

namespace FileRepScrivBridge {
inline constexpr char InvalidFileIndex[] = "VelCG:FileRepScrivBridge:InvalidFileIndex";
inline constexpr char UnknownAttribute[] = "VelCG:FileRepScrivBridge:UnknownAttribute";
inline constexpr char ReadOnlyAttribute[] = "VelCG:FileRepScrivBridge:ReadOnlyAttribute";
inline constexpr char SectionNotSettable[] = "VelCG:FileRepScrivBridge:SectionNotSettable";
inline constexpr char WrongValueType[] = "VelCG:FileRepScrivBridge:WrongValueType";
inline constexpr char WrongAttributeType[] = "VelCG:FileRepScrivBridge:WrongAttributeType";
inline constexpr char UnknownSection[] = "VelCG:FileRepScrivBridge:UnknownSection";
inline constexpr char InvalidBuiltinSection[] = "VelCG:FileRepScrivBridge:InvalidBuiltinSection";
inline constexpr char NullArgument[] = "VelCG:FileRepScrivBridge:NullArgument";
// A section that did not reach its file, wherever it was written from.
inline constexpr char WriteFailed[] = "VelCG:FileRepScrivBridge:WriteFailed";
// A whole file that could not be written.
inline constexpr char FileWriteFailed[] = "VelCG:FileRepScrivBridge:FileWriteFailed";
inline constexpr char NotAPlainFileName[] = "VelCG:FileRepScrivBridge:NotAPlainFileName";
} // namespace FileRepScrivBridge

namespace FileSection {
inline constexpr char NullContent[] = "VelCG:FileSection:NullContent";
inline constexpr char NullFragment[] = "VelCG:FileSection:NullFragment";
inline constexpr char NullStream[] = "VelCG:FileSection:NullStream";
inline constexpr char WriteFailed[] = "VelCG:FileSection:WriteFailed";
inline constexpr char InvalidFragmentIndex[] = "VelCG:FileSection:InvalidFragmentIndex";
inline constexpr char TextAfterNul[] = "VelCG:FileSection:TextAfterNul";
} // namespace FileSection

namespace FunctionsSection {
inline constexpr char InvalidFunctionIndex[] = "VelCG:FunctionsSection:InvalidFunctionIndex";
} // namespace FunctionsSection

namespace ModelDescription {
inline constexpr char MalformedJson[] = "VelCG:ModelDescription:MalformedJson";
inline constexpr char NotADescription[] = "VelCG:ModelDescription:NotADescription";
inline constexpr char UnsupportedVersion[] = "VelCG:ModelDescription:UnsupportedVersion";
inline constexpr char MissingField[] = "VelCG:ModelDescription:MissingField";
inline constexpr char WrongType[] = "VelCG:ModelDescription:WrongType";
inline constexpr char UnknownField[] = "VelCG:ModelDescription:UnknownField";
inline constexpr char DuplicateField[] = "VelCG:ModelDescription:DuplicateField";
inline constexpr char DanglingReference[] = "VelCG:ModelDescription:DanglingReference";
inline constexpr char Cycle[] = "VelCG:ModelDescription:Cycle";
inline constexpr char UnknownEnumerator[] = "VelCG:ModelDescription:UnknownEnumerator";
inline constexpr char InvalidValue[] = "VelCG:ModelDescription:InvalidValue";
inline constexpr char NotAPlainFileName[] = "VelCG:ModelDescription:NotAPlainFileName";
inline constexpr char SameFileName[] = "VelCG:ModelDescription:SameFileName";
inline constexpr char ReadFailed[] = "VelCG:ModelDescription:ReadFailed";
inline constexpr char WriteFailed[] = "VelCG:ModelDescription:WriteFailed";
inline constexpr char NotDescribable[] = "VelCG:ModelDescription:NotDescribable";
} // namespace ModelDescription

namespace VelCGFile {
inline constexpr char NullBuilder[] = "VelCG:VelCGFile:NullBuilder";
inline constexpr char NullStream[] = "VelCG:VelCGFile:NullStream";
inline constexpr char WrittenEmpty[] = "VelCG:VelCGFile:WrittenEmpty";
} // namespace VelCGFile

namespace VelCGFileContent {
inline constexpr char InvalidSlot[] = "VelCG:VelCGFileContent:InvalidSlot";
inline constexpr char MissingSection[] = "VelCG:VelCGFileContent:MissingSection";
} // namespace VelCGFileContent

namespace Python {
inline constexpr char NotARepository[] = "VelCG:Python:NotARepository";
inline constexpr char NotAHandleCapsule[] = "VelCG:Python:NotAHandleCapsule";
inline constexpr char InvalidArgument[] = "VelCG:Python:InvalidArgument";
inline constexpr char NotABinaryFile[] = "VelCG:Python:NotABinaryFile";
// Being replaced by FileRepScrivBridge::WriteFailed; removed with its last
// raising site.
inline constexpr char CannotWrite[] = "VelCG:Python:CannotWrite";
inline constexpr char CannotReadTemplate[] = "VelCG:Python:CannotReadTemplate";
inline constexpr char TemplateFailed[] = "VelCG:Python:TemplateFailed";
inline constexpr char CannotStart[] = "VelCG:Python:CannotStart";
inline constexpr char Finalized[] = "VelCG:Python:Finalized";
// Raised with a text of its own.
inline constexpr char DescriptionUsed[] = "VelCG:Python:DescriptionUsed";
} // namespace Python

// The generation into an output directory; each is raised with a text of
// its own that names the file or the step.
namespace Generation {
inline constexpr char CannotWrite[] = "VelCG:Generation:CannotWrite";
inline constexpr char BadManifest[] = "VelCG:Generation:BadManifest";
inline constexpr char CannotCreateDirectory[] = "VelCG:Generation:CannotCreateDirectory";
inline constexpr char Busy[] = "VelCG:Generation:Busy";
inline constexpr char NotAFile[] = "VelCG:Generation:NotAFile";
inline constexpr char BadFileName[] = "VelCG:Generation:BadFileName";
inline constexpr char NoModel[] = "VelCG:Generation:NoModel";
inline constexpr char Completed[] = "VelCG:Generation:Completed";
inline constexpr char NotCompleted[] = "VelCG:Generation:NotCompleted";
} // namespace Generation

// velcg-gen; raised with a text of its own.
namespace Gen {
inline constexpr char BadDependency[] = "VelCG:Gen:BadDependency";
} // namespace Gen

namespace Module {
inline constexpr char EntryPointFailed[] = "VelCG:Module:EntryPointFailed";
} // namespace Module

// The type queries' diagnostics, raised with fixed texts. Their spelling is
// irregular (a doubled colon, and "VelCG::" in two of them) and stays so:
// scripts match on these exact strings.
namespace Type {
inline constexpr char InvalidCGType[] = "VelCG:Type::InvalidCGType";
inline constexpr char NoComplex[] = "VelCG::Type::NoComplex";
inline constexpr char InvalidVelType[] = "VelCG::Type::InvalidVelType";
} // namespace Type

} // namespace VelCG::messages
