#pragma once

#include <memory>
#include <string>
#include <vector>

#include "velcg/CGModel.hpp"
#include "velcg/Export.hpp"

namespace VelCG {

class VelCGFileRepository;

// One file that a code generator creates for a described model.
struct ModelFileDescription {
    enum class Kind { ModuleHeader, ModuleSource, Generic, DataTypes };
    Kind kind = Kind::Generic;
    std::string name;
    // The systems of a module file; empty for the other kinds.
    std::vector<int> systems;
};

// A model read from a model description, a JSON document (format version
// kFormatVersion, described in docs/model-description.md), with the list of
// files to generate for it.
//
// The model is built from the field-backed classes (StoredCGModel,
// StoredSystem, StoredVelType, StoredGraphicalBlock, ...), its block
// hierarchy map is finalized, and every index in it names an element that
// exists, so it is ready for code templates and serialization.
//
// Errors: bad input raises a "VelCG:ModelDescription:<key>" diagnostic
// whose message names the source and the place in the document as a JSON
// pointer; nothing else is thrown, and no model is returned in part.
class VELCG_API ModelDescription {
public:
    static constexpr int kFormatVersion = 1;
    // The value of "format" that identifies a model description.
    static constexpr const char* kFormatName = "velcg-model-description";

    std::unique_ptr<CGModel> model;
    std::vector<ModelFileDescription> files;
    // The document's "templateData", any JSON value, as compact JSON text;
    // empty when the document has none. Not part of the model: code
    // generators hand it to their templates.
    std::string templateData;

    // Reads the file at path; sourceName in messages is the path. Here and
    // in parse, toText and save, what is wrong with the input raises a
    // "VelCG:ModelDescription:*" diagnostic; std::bad_alloc passes through
    // as it is.
    static ModelDescription load(const std::string& path);
    // Reads a description from text; sourceName names it in messages.
    static ModelDescription parse(const std::string& text, const std::string& sourceName);

    // The description of the model and files: pretty-printed JSON in which
    // fields equal to their class's defaults are left out. The same model
    // always gives the same text, and reading the text gives a model with
    // the same text. Raises "VelCG:ModelDescription:NotDescribable" for what
    // a description cannot hold: a reference to a block, system or model
    // parameter the model does not own, text that is not valid Unicode, a
    // number that is not finite, an enumeration value without a name.
    // Reads the model only, so it may run beside a background serialization
    // pass (the type names it asks for are cached safely from two threads).
    static std::string toText(const CGModel& model, const std::vector<ModelFileDescription>& files = {});
    // Writes toText to path, replacing the file only once the whole text is
    // written.
    static void save(const CGModel& model, const std::vector<ModelFileDescription>& files,
                     const std::string& path);

    // Creates the described files in the repository, in list order: module
    // headers and sources with their systems, generic files and data-types
    // files.
    void createFiles(VelCGFileRepository& repository) const;
};

} // namespace VelCG
