// The script bridge from Python: files by index, attributes and sections by
// name, as the native bridge offers them, plus the custom contents of a
// file. Sections are written to Python binary file objects.
#include "Bridge.hpp"

#include <cstdio>
#include <filesystem>
#include <memory>
#include <pybind11/stl.h>
#include <string>
#include <vector>

#include <boost/make_shared.hpp>

#include "Messages.hpp"
#include "Objects.hpp"
#include "PybindInternals.hpp"
#include "Values.hpp"
#include "korb/Client.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/io/Stream.hpp"
#include "velcg/CustomContents.hpp"
#include "velcg/FileRepScrivBridge.hpp"
#include "velcg/StringFileSectionFragment.hpp"
#include "velcg/VelCGFile.hpp"
#include "velcg/VelCGFileRepository.hpp"
#include "velcg/VelCGFileSectionKind.hpp"
#include "velcg/WholeFile.hpp"

namespace VelCG::python {

namespace {

// The bridge of a repository that scripts hold by reference: every call
// resolves the repository again, inside an access, so that one that has died
// raises instead of touching freed memory, and one that dies meanwhile waits
// for the call. Python values are converted outside the access.
struct BridgeState {
    vel::mi::HandleRef repository;

    // f(the repository), returning a copy of what f returns.
    template <class F>
    auto with(F&& f) const {
        const vel::mi::Access access(repository);
        // Checked to be a repository when the bridge was made.
        return f(dynamic_cast<VelCGFileRepository&>(live(access)));
    }
    template <class F>
    auto withBridge(F&& f) const {
        return with([&](VelCGFileRepository& r) -> decltype(auto) { return f(r.scrivBridge()); });
    }
};

struct CustomContentsState {
    vel::mi::HandleRef file;

    template <class F>
    auto with(F&& f) const {
        const vel::mi::Access access(file);
        return f(dynamic_cast<VelCGFile&>(live(access)).getCustomContent());
    }
};

BridgeState makeBridge(py::handle repository) {
    if (!isObject(repository))
        vel::diag::throwError(messages::Python::NotARepository, {describePython(repository)});
    const ObjectState& state = stateOf(repository);
    const vel::mi::Access access(state.ref);
    if (!dynamic_cast<VelCGFileRepository*>(&live(access)))
        vel::diag::throwError(messages::Python::NotARepository, {state.className()});
    return BridgeState{state.ref};
}

// Generated text as a Python str; bytes that are not UTF-8 are kept as
// surrogate escapes, so that writing the str back gives the same bytes.
py::str text(const std::string& bytes) {
    PyObject* s =
        PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()), "surrogateescape");
    if (!s) throw py::error_already_set();
    return py::reinterpret_steal<py::str>(s);
}

// The bytes of a str from a script, the reverse of text().
std::string bytesOf(py::handle str) {
    PyObject* b = PyUnicode_AsEncodedString(str.ptr(), "utf-8", "surrogateescape");
    if (!b) throw py::error_already_set();
    return py::reinterpret_steal<py::bytes>(b).cast<std::string>();
}

[[noreturn]] void wrongArgument(const char* operation, const char* expected, py::handle value) {
    vel::diag::throwError(messages::Python::InvalidArgument, {operation, expected, describePython(value)});
}

// Each operation first checks that its object is alive, so that a dead one
// is refused as such whatever the arguments.
void setAttribute(const BridgeState& self, FileIndex fileIndex, const std::string& name, py::handle value) {
    requireLive(self.repository);
    if (PyBool_Check(value.ptr())) {
        const bool flag = value.ptr() == Py_True;
        self.withBridge([&](FileRepScrivBridge& b) { b.setAttribute(fileIndex, name, flag); });
    } else if (PyUnicode_Check(value.ptr())) {
        const std::string bytes = bytesOf(value);
        self.withBridge([&](FileRepScrivBridge& b) { b.setAttribute(fileIndex, name, bytes.c_str()); });
    } else {
        wrongArgument("setAttribute", "a bool or a str", value);
    }
}

std::string contentOf(const char* operation, py::handle content) {
    if (PyBytes_Check(content.ptr())) return content.cast<std::string>();
    if (PyUnicode_Check(content.ptr())) return bytesOf(content);
    wrongArgument(operation, "a str or bytes", content);
}

void addSectionContent(const BridgeState& self, FileIndex fileIndex, const std::string& section,
                       py::handle content) {
    requireLive(self.repository);
    auto fragment = boost::make_shared<StringFileSectionFragment>(contentOf("addSectionContent", content));
    self.withBridge([&](FileRepScrivBridge& b) { b.addSectionContent(fileIndex, section, fragment); });
}

// The name of the repository's file at fileIndex, for diagnostics.
std::string fileNameOf(const BridgeState& self, std::int32_t fileIndex) {
    std::string name;
    self.withBridge([&](FileRepScrivBridge& b) { name = b.getStringAttribute(fileIndex, "Name"); });
    return name;
}

// Writes through a C stream on a duplicate of the file's descriptor, so the
// bytes go straight to the file; afterwards the Python file object is moved
// to where the writing ended, so the script can go on writing its own bytes.
void writeToDescriptor(const BridgeState& self, std::int32_t fileIndex, const std::string& section,
                       py::handle file, int fd) {
    file.attr("flush")();
    std::FILE* stream = vel::io::openDuplicateForWriting(fd);
    if (!stream)
        vel::diag::throwError(messages::FileRepScrivBridge::WriteFailed,
                              {fileNameOf(self, fileIndex), section, "the file is not open for writing"});
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> closer(stream, &std::fclose);
    self.withBridge([&](FileRepScrivBridge& b) { b.writeSection(fileIndex, section, stream); });
    if (std::fflush(stream) != 0 || std::ferror(stream))
        vel::diag::throwError(messages::FileRepScrivBridge::WriteFailed,
                              {fileNameOf(self, fileIndex), section, "the stream reported an error"});
    if (std::fclose(closer.release()) != 0)
        vel::diag::throwError(
            messages::FileRepScrivBridge::WriteFailed,
            {fileNameOf(self, fileIndex), section, "closing the duplicate descriptor failed"});
    if (file.attr("seekable")().cast<bool>()) {
        py::object os = py::module_::import("os");
        file.attr("seek")(os.attr("lseek")(fd, 0, os.attr("SEEK_CUR")));
    }
}

// The bytes of a section of a file as writeSection writes them, through a
// temporary C stream.
std::string sectionBytes(const BridgeState& self, std::int32_t fileIndex, const std::string& section) {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> stream(std::tmpfile(), &std::fclose);
    if (!stream)
        vel::diag::throwError(messages::FileRepScrivBridge::WriteFailed,
                              {fileNameOf(self, fileIndex), section, "no temporary file can be created"});
    self.withBridge([&](FileRepScrivBridge& b) { b.writeSection(fileIndex, section, stream.get()); });
    const long size = std::ftell(stream.get());
    std::string bytes(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
    std::rewind(stream.get());
    if (std::fread(bytes.data(), 1, bytes.size(), stream.get()) != bytes.size())
        vel::diag::throwError(
            messages::FileRepScrivBridge::WriteFailed,
            {fileNameOf(self, fileIndex), section, "the temporary file cannot be read back"});
    return bytes;
}

void writeSection(const BridgeState& self, FileIndex fileIndex, const std::string& section, py::handle file) {
    requireLive(self.repository);
    py::module_ io = py::module_::import("io");
    if (py::isinstance(file, io.attr("TextIOBase")) || !py::hasattr(file, "write"))
        vel::diag::throwError(messages::Python::NotABinaryFile, {section, describePython(file)});
    const py::object closed = py::getattr(file, "closed", py::none());
    if (!closed.is_none() && PyObject_IsTrue(closed.ptr()) == 1)
        vel::diag::throwError(messages::FileRepScrivBridge::WriteFailed,
                              {fileNameOf(self, fileIndex), section, "the file is closed"});
    int fd = -1;
    if (py::hasattr(file, "fileno")) {
        try {
            fd = file.attr("fileno")().cast<int>();
        } catch (const py::error_already_set& e) {
            // io.BytesIO and friends raise io.UnsupportedOperation (an OSError).
            if (!e.matches(PyExc_OSError)) throw;
        }
    }
    // File objects without a descriptor (io.BytesIO, ...) take the bytes.
    if (fd >= 0)
        writeToDescriptor(self, fileIndex, section, file, fd);
    else
        file.attr("write")(py::bytes(sectionBytes(self, fileIndex, section)));
}

// Writes the whole file through the library's writer, inside one access.
void writeFile(const BridgeState& self, FileIndex fileIndex, const std::string& directory) {
    self.withBridge(
        [&](FileRepScrivBridge& b) { writeWholeFile(b, fileIndex, std::filesystem::u8path(directory)); });
}

} // namespace

void defineBridge(py::module_& module) {
    using Contents = CustomContentsState;
    const char* const contents = "CustomContents";
    py::class_<Contents>(module, contents, nativeInstancesOnly(), classDoc(contents))
        .def(
            "isCustomSection",
            [](const Contents& c, const std::string& name) {
                return c.with([&](CustomContents& cc) { return cc.isCustomSection(name); });
            },
            py::arg("name"), operationDoc(contents, "isCustomSection"))
        .def(
            "addContentToSection",
            [](const Contents& c, const std::string& name, py::handle content) {
                requireLive(c.file);
                const std::string bytes = contentOf("addContentToSection", content);
                c.with([&](CustomContents& cc) { cc.addContentToSection(name, bytes); });
            },
            py::arg("name"), py::arg("content"), operationDoc(contents, "addContentToSection"))
        .def(
            "getCustomSectionContent",
            [](const Contents& c, const std::string& name, const std::string& context) {
                return text(
                    c.with([&](CustomContents& cc) { return cc.getCustomSectionContent(name, context); }));
            },
            py::arg("name"), py::arg("context"), operationDoc(contents, "getCustomSectionContent"))
        .def(
            "setCustomTokenInUse",
            [](const Contents& c, const std::string& name) {
                c.with([&](CustomContents& cc) { cc.setCustomTokenInUse(name); });
            },
            py::arg("name"), operationDoc(contents, "setCustomTokenInUse"));

    using B = BridgeState;
    using Scriv = FileRepScrivBridge;
    const char* const bridge = "Bridge";
    py::class_<B>(module, bridge, nativeInstancesOnly(), classDoc(bridge))
        .def(
            "isBooleanAttribute",
            [](const B& b, const std::string& name) {
                return b.withBridge([&](Scriv& s) { return s.isBooleanAttribute(name); });
            },
            py::arg("name"), operationDoc(bridge, "isBooleanAttribute"))
        .def(
            "isStringAttribute",
            [](const B& b, const std::string& name) {
                return b.withBridge([&](Scriv& s) { return s.isStringAttribute(name); });
            },
            py::arg("name"), operationDoc(bridge, "isStringAttribute"))
        .def(
            "isStringArrayAttribute",
            [](const B& b, const std::string& name) {
                return b.withBridge([&](Scriv& s) { return s.isStringArrayAttribute(name); });
            },
            py::arg("name"), operationDoc(bridge, "isStringArrayAttribute"))
        .def(
            "isFileSectionAttribute",
            [](const B& b, const std::string& name) {
                return b.withBridge([&](Scriv& s) { return s.isFileSectionAttribute(name); });
            },
            py::arg("name"), operationDoc(bridge, "isFileSectionAttribute"))
        .def(
            "getBooleanAttribute",
            [](const B& b, FileIndex i, const std::string& name) {
                return b.withBridge([&](Scriv& s) { return s.getBooleanAttribute(i, name); });
            },
            py::arg("fileIndex"), py::arg("name"), operationDoc(bridge, "getBooleanAttribute"))
        .def(
            "getStringAttribute",
            [](const B& b, FileIndex i, const std::string& name) {
                return text(b.withBridge([&](Scriv& s) { return s.getStringAttribute(i, name); }));
            },
            py::arg("fileIndex"), py::arg("name"), operationDoc(bridge, "getStringAttribute"))
        .def(
            "getStringArrayAttribute",
            [](const B& b, FileIndex i, const std::string& name) {
                const std::vector<std::string> values =
                    b.withBridge([&](Scriv& s) { return s.getStringArrayAttribute(i, name); });
                py::list out;
                for (const std::string& v : values) out.append(text(v));
                return out;
            },
            py::arg("fileIndex"), py::arg("name"), operationDoc(bridge, "getStringArrayAttribute"))
        .def("setAttribute", &setAttribute, py::arg("fileIndex"), py::arg("name"), py::arg("value"),
             operationDoc(bridge, "setAttribute"))
        .def("addSectionContent", &addSectionContent, py::arg("fileIndex"), py::arg("sectionName"),
             py::arg("content"), operationDoc(bridge, "addSectionContent"))
        .def(
            "addCustomSection",
            [](const B& b, FileIndex i, const std::string& builtin, const std::string& custom) {
                b.withBridge([&](Scriv& s) { s.addCustomSection(i, builtin, custom); });
            },
            py::arg("fileIndex"), py::arg("builtinSectionName"), py::arg("customSectionName"),
            operationDoc(bridge, "addCustomSection"))
        .def(
            "appendMissingTokens",
            [](const B& b, FileIndex i, const std::string& section) {
                b.withBridge([&](Scriv& s) { s.appendMissingTokens(i, section); });
            },
            py::arg("fileIndex"), py::arg("sectionName"), operationDoc(bridge, "appendMissingTokens"))
        .def("writeSection", &writeSection, py::arg("fileIndex"), py::arg("sectionName"), py::arg("file"),
             operationDoc(bridge, "writeSection"))
        .def("writeFile", &writeFile, py::arg("fileIndex"), py::arg("directory"),
             operationDoc(bridge, "writeFile"))
        .def(
            "customContents",
            [](const B& b, FileIndex i) {
                // Made inside the access: the file's reference dies with the repository's.
                return b.withBridge(
                    [&](Scriv& s) { return CustomContentsState{s.getFileFromIndex(i).makeRef()}; });
            },
            py::arg("fileIndex"), operationDoc(bridge, "customContents"))
        .def_property_readonly(
            "numberOfFiles",
            [](const B& b) {
                return b.with(
                    [](VelCGFileRepository& r) { return static_cast<std::int32_t>(r.getFileList().size()); });
            },
            operationDoc(bridge, "numberOfFiles"));

    module.attr("sectionNames") = py::tuple(py::cast(sectionNamesInFileOrder()));

    module.def("bridge", &makeBridge, py::arg("repository"), operationDoc("", "bridge"));
}

} // namespace VelCG::python
