#include "Template.hpp"

#include <cctype>
#include <cstdio>
#include <map>
#include <stdexcept>

#include <boost/make_shared.hpp>

#include "CG/DataInterface.hpp"
#include "korb/Client.hpp"
#include "korb/ObjectSystem.hpp"
#include "velcg/CGModel.hpp"
#include "velcg/CustomContents.hpp"
#include "velcg/FileRepScrivBridge.hpp"
#include "velcg/StringFileSectionFragment.hpp"
#include "velcg/VelCGFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

namespace example {

namespace {

enum FileIndex { kHeader = 0, kSource = 1, kTypes = 2, kMain = 3 };

// What a template script sees of an object: named properties and methods.
class Object {
public:
    explicit Object(tuvArrayPtr handle) : handle_(std::move(handle)) {}

    tuvArrayPtr get(const std::string& name) const { return client().getProperty(*handle_, name); }
    std::string str(const std::string& name) const { return get(name)->toUtf8(); }
    int num(const std::string& name) const { return static_cast<int>(get(name)->numericValue()); }
    bool flag(const std::string& name) const { return get(name)->logicalValue(); }
    Object obj(const std::string& name) const { return Object(get(name)); }
    std::string call(const std::string& name) const { return client().callMethod(*handle_, name)->toUtf8(); }
    bool test(const std::string& name) const { return client().callMethod(*handle_, name)->logicalValue(); }

    // A property holding an array of objects, or a cell array of objects.
    std::vector<Object> list(const std::string& name) const {
        std::vector<Object> out;
        tuvArrayPtr value = get(name);
        if (value->classId() == tuvClass::Cell) {
            for (std::size_t i = 0; i < value->numel(); ++i) out.emplace_back(value->getCell(i));
        } else if (value->classId() == tuvClass::Object) {
            for (const auto& ref : value->handles()) out.emplace_back(tuvArray::objects({ref}));
        }
        return out;
    }

    std::vector<std::string> strings(const std::string& name) const {
        std::vector<std::string> out;
        tuvArrayPtr value = get(name);
        for (std::size_t i = 0; i < value->numel(); ++i) out.push_back(value->getCell(i)->toUtf8());
        return out;
    }

    // The identifier through which generated code reaches a data interface.
    std::string dataInterfaceIdentifier(const std::string& name) const {
        tuvArrayPtr value = get(name);
        if (value->className() != "coder.DataInterface")
            throw std::runtime_error("property " + name + " holds no data interface");
        return static_cast<const CG::DataInterface*>(value->opaquePayload().get())
            ->getDescription()
            .identifier;
    }

private:
    static korb::Client& client() { return korb::ObjectSystem::instance().getPublicClient(); }
    tuvArrayPtr handle_;
};

// The signal expression of the first region of a block's port.
std::string source(const Object& block, const char* ports, std::size_t index) {
    auto list = block.list(ports);
    if (index >= list.size()) throw std::runtime_error("block " + block.str("Name") + " lacks a port");
    return list[index].list("Regions").at(0).str("Source");
}

class Writer {
public:
    explicit Writer(VelCG::FileRepScrivBridge& bridge) : bridge_(bridge) {}
    void add(int file, const char* section, const std::string& text) {
        bridge_.addSectionContent(file, section, boost::make_shared<VelCG::StringFileSectionFragment>(text));
    }
    void set(int file, const char* attribute, const std::string& value) {
        bridge_.setAttribute(file, attribute, value.c_str());
    }

private:
    VelCG::FileRepScrivBridge& bridge_;
};

// The C99 headers that declare the primitive code-generation types; a
// type built into C needs none.
const std::map<std::string, std::string> kPrimitiveHeaders = {
    {"double", ""}, {"int32_t", "stdint.h"}, {"bool", "stdbool.h"}};

} // namespace

void runTemplates(VelCG::CGModel& model, VelCG::VelCGFileRepository& repository) {
    korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
    Object m(client.wrap(model));
    VelCG::FileRepScrivBridge& bridge = repository.scrivBridge();
    Writer out(bridge);

    const std::string name = client.callMethod(*client.wrap(model), "getName")->toUtf8();
    const std::string guard = [&] {
        std::string g;
        for (char c : name) g += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        return g;
    }();

    // Attributes every file carries.
    for (int i = 0; i < static_cast<int>(repository.getFileList().size()); ++i) {
        std::string fileName = bridge.getStringAttribute(i, "Name");
        out.set(i, "Type", fileName.back() == 'h' ? "header" : "source");
        out.set(i, "Creator", "velcg example generator");
        out.set(i, "CodeTemplate", "example_code_template");
        out.set(i, "Group", "model");
        out.set(i, "SystemsInFile", name);
        bridge.setAttribute(i, "IsEmpty", false);
    }

    // Data types: the headers of the primitive types, then one structure per
    // composite type.
    auto types = m.list("CGTypes");
    out.add(kTypes, "Includes", "#ifndef " + guard + "_TYPES_H\n#define " + guard + "_TYPES_H\n\n");
    for (const auto& t : types) {
        auto primitive = kPrimitiveHeaders.find(t.str("Name"));
        if (primitive != kPrimitiveHeaders.end() && !primitive->second.empty())
            out.add(kTypes, "Includes", "#include <" + primitive->second + ">\n");
    }
    for (const auto& t : types) {
        auto members = t.list("Members");
        if (members.empty()) continue;
        std::string text = "\ntypedef struct {\n";
        for (const auto& member : members)
            text += "    " + types.at(member.num("CGTypeIndex")).call("getContainerTypeName") + " " +
                    member.str("Name") + ";\n";
        out.add(kTypes, "Typedefs", text + "} " + t.str("Name") + ";\n");
    }
    // A custom section declared under "Types" and placed by the template
    // itself, before the include guard closes.
    VelCG::CustomContents& typeExtras = repository.getFileList()[kTypes]->getCustomContent();
    bridge.addCustomSection(kTypes, "Types", "SignalTypes");
    typeExtras.addContentToSection("SignalTypes",
                                   "\n/* Signal types */\ntypedef double " + name + "_signal;\n");
    out.add(kTypes, "Typedefs", typeExtras.getCustomSectionContent("SignalTypes", "the data types header"));
    out.add(kTypes, "Typedefs", "\n#endif\n");

    // Global data: one structure instance per variable group.
    std::string inputVar, outputVar, gainVar;
    for (const auto& g : m.list("VarGroups")) {
        const std::string type = g.str("Name"), instance = g.str("NonreusedName"),
                          category = g.str("Category");
        out.add(kHeader, "ExternData", "extern " + type + " " + instance + ";  /* " + category + " */\n");
        out.add(kSource, "Declarations", type + " " + instance + ";\n");
        if (category == "ExternalInput") inputVar = instance + "." + g.strings("Elements").at(0);
        if (category == "ExternalOutput") outputVar = instance + "." + g.strings("Elements").at(0);
        if (category == "Parameter") gainVar = instance + "." + g.strings("Elements").at(0);
    }

    // Functions of the root system, generated from its blocks.
    Object root = m.obj("BlockHierarchyMap").list("Subsystems").at(0);
    std::string locals, outputs, updates, initialize;
    for (const auto& block : root.list("Blocks")) {
        const std::string type = block.str("Type");
        if (type == "Gain") {
            Object k = block.list("Parameters").at(0).list("ModelParameters").at(0);
            std::string y = source(block, "DataOutputPorts", 0);
            locals += "    double " + y + ";\n";
            outputs += "    " + y + " = " + k.dataInterfaceIdentifier("DataInterface") + " * " +
                       source(block, "DataInputPorts", 0) + ";\n";
        } else if (type == "Sum") {
            std::string y = source(block, "DataOutputPorts", 0);
            locals += "    double " + y + ";\n";
            outputs += "    " + y + " = " + source(block, "DataInputPorts", 0) + " + " +
                       source(block, "DataInputPorts", 1) + ";\n";
        } else if (type == "Outport") {
            outputs += "    " + outputVar + " = " + source(block, "DataInputPorts", 0) + ";\n";
        } else if (type == "UnitDelay") {
            std::string state = block.list("DiscreteStates").at(0).dataInterfaceIdentifier("DataInterface");
            updates += "    " + state + " = " + source(block, "DataInputPorts", 0) + ";\n";
            initialize += "    " + state + " = 0.0;\n";
        }
    }
    for (const auto& system : m.list("Systems")) {
        if (!system.test("isRootSystem")) continue;
        const std::string init = system.str("StartFcn"), step = system.str("OutputUpdateFcn");
        out.add(kHeader, "FcnPrototypes", "\nvoid " + init + "(void);\nvoid " + step + "(void);\n");
        out.add(kSource, "Functions", "\nvoid " + init + "(void)\n{\n" + initialize + "}\n");
        out.add(
            kSource, "Functions",
            "\nvoid " + step + "(void)\n{\n" + locals + outputs + "\n    /* Update */\n" + updates + "}\n");
    }

    // The module header and source.
    out.add(kHeader, "Includes",
            "#ifndef " + guard + "_H\n#define " + guard + "_H\n\n#include \"" + name + "_types.h\"\n\n");
    out.add(kHeader, "Documentation", "\n#endif\n");
    out.set(kSource, "RequiredIncludes", name + ".h");
    out.add(kSource, "Includes", "/* Code generated for model " + name + " */\n\n");
    out.add(kSource, "Documentation", "\n/* End of " + name + ".c */\n");

    // The generic main file: a banner declared as a custom section and left
    // for the writer to append, then a main that steps the model.
    bridge.addCustomSection(kMain, "Banner", "FileBanner");
    repository.getFileList()[kMain]->getCustomContent().addContentToSection(
        "FileBanner", "/*\n * Example main for model " + name + "\n * Usage: demo [steps] [gain]\n */\n");
    out.add(kMain, "Includes", "#include <stdio.h>\n#include <stdlib.h>\n#include \"" + name + ".h\"\n");
    out.add(kMain, "Functions",
            "\nint main(int argc, char** argv)\n{\n"
            "    int steps = argc > 1 ? atoi(argv[1]) : 5;\n"
            "    " +
                gainVar +
                " = argc > 2 ? atof(argv[2]) : 2.0;\n"
                "    " +
                name +
                "_initialize();\n"
                "    for (int i = 0; i < steps; ++i) {\n"
                "        " +
                inputVar +
                " = 1.0;\n"
                "        " +
                name +
                "_step();\n"
                "        printf(\"step %d: Out1 = %g\\n\", i + 1, " +
                outputVar +
                ");\n"
                "    }\n"
                "    return 0;\n}\n");
}

std::vector<WrittenFile> writeFiles(VelCG::VelCGFileRepository& repository, const std::string& directory) {
    VelCG::FileRepScrivBridge& bridge = repository.scrivBridge();
    std::vector<WrittenFile> written;
    for (int i = 0; i < static_cast<int>(repository.getFileList().size()); ++i) {
        std::string path = directory + "/" + bridge.getStringAttribute(i, "Name");
        std::FILE* stream = std::fopen(path.c_str(), "wb");
        if (!stream) throw std::runtime_error("cannot open " + path + " for writing");
        for (int kind = VelCG::BANNER_SECTION; kind <= VelCG::USERBOTTOM_SECTION; ++kind) {
            std::string section =
                VelCG::getScrivSectionNameFromEnum(static_cast<VelCG::VelCGFileSectionKind>(kind));
            if (section.empty()) continue;
            bridge.appendMissingTokens(i, section);
            bridge.writeSection(i, section, stream);
        }
        long bytes = std::ftell(stream);
        if (std::fclose(stream) != 0) throw std::runtime_error("cannot write " + path);
        bridge.setAttribute(i, "WrittenToDisk", true);
        written.push_back({path, bytes});
    }
    return written;
}

} // namespace example
