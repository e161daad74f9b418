// The classes and functions of the Python module velcg that are not classes
// of the package: the script bridge and the host values. The module takes
// its docstrings from this table, and velcg-inspect writes the stub and the
// template reference from it.
#include "velcg/TemplateReference.hpp"

namespace VelCG::reference {

namespace {

Operation method(std::string name, std::vector<Parameter> parameters, std::string result,
                 std::string summary) {
    return {std::move(name), std::move(parameters), std::move(result), std::move(summary), false};
}

Operation property(std::string name, std::string type, std::string summary) {
    return {std::move(name), {}, std::move(type), std::move(summary), true};
}

const Parameter kFileIndex{"fileIndex", "int"};
const Parameter kName{"name", "str"};
const Parameter kSectionName{"sectionName", "str"};

} // namespace

const std::vector<ModuleClass>& moduleClasses() {
    static const std::vector<ModuleClass> classes = {
        {"Bridge",
         "The script bridge of a file repository.\n\nFiles are addressed by their index in the repository's "
         "file list, attributes and sections by name.",
         {
             method("isBooleanAttribute", {kName}, "bool", "Whether `name` is a boolean file attribute."),
             method("isStringAttribute", {kName}, "bool",
                    "Whether `name` is a readable string file attribute; true for every section name too."),
             method("isStringArrayAttribute", {kName}, "bool",
                    "Whether `name` is a string list file attribute."),
             method("isFileSectionAttribute", {kName}, "bool", "Whether `name` is a section name."),
             method("getBooleanAttribute", {kFileIndex, kName}, "bool", "A boolean attribute of the file."),
             method("getStringAttribute", {kFileIndex, kName}, "str",
                    "A string attribute of the file; a section name gives the section's current text."),
             method("getStringArrayAttribute", {kFileIndex, kName}, "list[str]",
                    "A string list attribute of the file."),
             method(
                 "setAttribute", {kFileIndex, kName, {"value", "bool | str"}}, "None",
                 "Sets a boolean attribute to a bool or a string attribute to a str; setting a string list "
                 "attribute adds one string."),
             method("addSectionContent", {kFileIndex, kSectionName, {"content", "str | bytes"}}, "None",
                    "Appends text to a section of the file; text for a section the file's kind lacks is "
                    "dropped with a warning."),
             method("addCustomSection",
                    {kFileIndex, {"builtinSectionName", "str"}, {"customSectionName", "str"}}, "None",
                    "Declares a custom section tied to a built-in section (a section name, or \"Types\" for "
                    "Typedefs); its text is appended to that section when it is written unless the template "
                    "places it."),
             method("appendMissingTokens", {kFileIndex, kSectionName}, "None",
                    "Appends to the section the custom sections declared for it that the template did not "
                    "place."),
             method("writeSection", {kFileIndex, kSectionName, {"file", "BinaryIO"}}, "None",
                    "Writes the section of the file, byte for byte, to a file opened in binary mode, and "
                    "flushes it."),
             method("writeFile", {kFileIndex, {"directory", "str"}}, "None",
                    "Writes the whole file into the directory under its name, which must be a plain file "
                    "name: each section after its missing tokens, replacing the file only when its bytes "
                    "change."),
             method("customContents", {kFileIndex}, "CustomContents", "The custom sections of the file."),
             property("numberOfFiles", "int", "The number of files of the repository."),
         }},
        {"CustomContents",
         "The custom sections and tokens that a file's code template declared.",
         {
             method("isCustomSection", {kName}, "bool",
                    "Whether a custom section of that name was declared."),
             method("addContentToSection", {kName, {"content", "str | bytes"}}, "None",
                    "Appends text to a declared custom section."),
             method("getCustomSectionContent", {kName, {"context", "str"}}, "str",
                    "Takes the text of a custom section out, once, to place it; `context` names the place in "
                    "messages. An undeclared name gives \"\"."),
             method(
                 "setCustomTokenInUse", {kName}, "None",
                 "Records that the template places the custom section itself, so that it is not appended."),
         }},
        {"DataInterface",
         "Where a piece of model data lives in generated code.",
         {
             property("identifier", "str", "The data's identifier."),
             property("implementation", "str", "How generated code implements the data."),
             property("owner", "str", "The owner of the data."),
             property("typeName", "str", "The name of the data's type."),
             property("graphicalName", "str", "The data's name in the model."),
         }},
        {"EmbeddedType",
         "A type of the code generator's type system.",
         {property("name", "str", "The type's name.")}},
        {"HostValue",
         "A host value of a foreign class, passed through unchanged.",
         {property("className", "str", "The host class of the value.")}},
        {"",
         "Template scripts on the velcg model: objects as property bags, and the script bridge.",
         {
             method("bridge", {{"repository", "VelCGFileRepository"}}, "Bridge",
                    "The script bridge of a file repository."),
             method("classOf", {{"obj", "Object"}}, "str",
                    "The fully qualified object-system class of a live object."),
             property("sectionNames", "tuple[str, ...]",
                      "The section names, in the order sections stand in a file."),
         }},
    };
    return classes;
}

const Operation* findOperation(const std::string& className, const std::string& name) {
    for (const ModuleClass& c : moduleClasses())
        if (c.name == className)
            for (const Operation& op : c.operations)
                if (op.name == name) return &op;
    return nullptr;
}

} // namespace VelCG::reference
