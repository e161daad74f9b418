#pragma once

// The identifiers of the library's diagnostics, "VelCG:<Catalog>:<Key>":
// VELCG_MESSAGE_IDS lists each once, and this header turns the list into the
// constants raising code names, messages::<Catalog>::<Key>. MessageCatalog.cpp
// gives each catalogued one its template and advice. Those of the model
// classes are public (velcg/ModelDiagnostics.hpp); the host's catalogues have
// headers of their own (korb/Messages.hpp, brisk/Messages.hpp, ...). Internal
// to the library, its Python module and its tools: not installed, not
// exported.

#include "velcg/ModelDiagnostics.hpp"

// clang-format off
#define VELCG_MESSAGE_IDS(X)                                                                        \
    X(Binding, IgnoredWrite)                                                                        \
    X(CustomContents, NullContent)                                                                  \
    X(CustomContents, TextAfterNul)                                                                 \
    X(CustomContents, PlacedNotRetrieved)                                                           \
    X(CustomContents, NoBuiltinSection)                                                             \
    X(CustomContents, NotWritten)                                                                   \
    X(FileRepScrivBridge, InvalidFileIndex)                                                         \
    X(FileRepScrivBridge, UnknownAttribute)                                                         \
    X(FileRepScrivBridge, ReadOnlyAttribute)                                                        \
    X(FileRepScrivBridge, SectionNotSettable)                                                       \
    X(FileRepScrivBridge, WrongValueType)                                                           \
    X(FileRepScrivBridge, WrongAttributeType)                                                       \
    X(FileRepScrivBridge, UnknownSection)                                                           \
    X(FileRepScrivBridge, InvalidBuiltinSection)                                                    \
    X(FileRepScrivBridge, NullArgument)                                                             \
    /* A section that did not reach its file, wherever it was written from. */                      \
    X(FileRepScrivBridge, WriteFailed)                                                              \
    /* A whole file that could not be written. */                                                   \
    X(FileRepScrivBridge, FileWriteFailed)                                                          \
    X(FileRepScrivBridge, NotAPlainFileName)                                                        \
    X(FileSection, NullContent)                                                                     \
    X(FileSection, NullFragment)                                                                    \
    X(FileSection, NullStream)                                                                      \
    X(FileSection, WriteFailed)                                                                     \
    X(FileSection, InvalidFragmentIndex)                                                            \
    X(FileSection, TextAfterNul)                                                                    \
    X(FunctionsSection, InvalidFunctionIndex)                                                       \
    X(ModelDescription, MalformedJson)                                                              \
    X(ModelDescription, NotADescription)                                                            \
    X(ModelDescription, UnsupportedVersion)                                                         \
    X(ModelDescription, MissingField)                                                               \
    X(ModelDescription, WrongType)                                                                  \
    X(ModelDescription, UnknownField)                                                               \
    X(ModelDescription, DuplicateField)                                                             \
    X(ModelDescription, DanglingReference)                                                          \
    X(ModelDescription, Cycle)                                                                      \
    X(ModelDescription, UnknownEnumerator)                                                          \
    X(ModelDescription, InvalidValue)                                                               \
    X(ModelDescription, NotAPlainFileName)                                                          \
    X(ModelDescription, SameFileName)                                                               \
    X(ModelDescription, ReadFailed)                                                                 \
    X(ModelDescription, WriteFailed)                                                                \
    X(ModelDescription, NotDescribable)                                                             \
    X(VelCGFile, NullBuilder)                                                                       \
    X(VelCGFile, NullStream)                                                                        \
    X(VelCGFile, WrittenEmpty)                                                                      \
    X(VelCGFileContent, InvalidSlot)                                                                \
    X(VelCGFileContent, MissingSection)                                                             \
    X(Python, NotARepository)                                                                       \
    X(Python, NotAHandleCapsule)                                                                    \
    X(Python, InvalidArgument)                                                                      \
    X(Python, NotABinaryFile)                                                                       \
    X(Python, CannotReadTemplate)                                                                   \
    X(Python, TemplateFailed)                                                                       \
    X(Python, CannotStart)                                                                          \
    X(Python, Finalized)                                                                            \
    /* Raised with a text of its own. */                                                            \
    X(Python, DescriptionUsed)                                                                      \
    /* The generation into an output directory; each is raised with a text of its own that names */ \
    /* the file or the step. */                                                                     \
    X(Generation, CannotWrite)                                                                      \
    X(Generation, BadManifest)                                                                      \
    X(Generation, CannotCreateDirectory)                                                            \
    X(Generation, Busy)                                                                             \
    X(Generation, NotAFile)                                                                         \
    X(Generation, BadFileName)                                                                      \
    X(Generation, NoModel)                                                                          \
    X(Generation, Completed)                                                                        \
    X(Generation, NotCompleted)                                                                     \
    /* velcg-gen; raised with a text of its own. */                                                 \
    X(Gen, BadDependency)                                                                           \
    X(Module, EntryPointFailed)
// clang-format on

namespace VelCG::messages {

// A namespace may be opened again: each identifier opens its catalogue's.
#define VELCG_DECLARE_MESSAGE_ID(catalog, key)                \
    namespace catalog {                                       \
    inline constexpr char key[] = "VelCG:" #catalog ":" #key; \
    }
VELCG_MESSAGE_IDS(VELCG_DECLARE_MESSAGE_ID)
#undef VELCG_DECLARE_MESSAGE_ID

// The type queries' diagnostics, raised with fixed texts. Their spelling is
// irregular (a doubled colon, and "VelCG::" in two of them) and stays so:
// scripts match on these exact strings.
namespace Type {
inline constexpr char InvalidCGType[] = "VelCG:Type::InvalidCGType";
inline constexpr char NoComplex[] = "VelCG::Type::NoComplex";
inline constexpr char InvalidVelType[] = "VelCG::Type::InvalidVelType";
} // namespace Type

} // namespace VelCG::messages
