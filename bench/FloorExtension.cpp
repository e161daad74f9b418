// The module velcg_floor: the least that a Python module wrapping a native
// model on demand can cost a template, for bench/floor_chain.py. It holds the
// chain of bench/make_description.py as plain structs and wraps them with
// bare pointers: no liveness check, no identity (each read makes new
// wrappers), no lookup by name (one C getter per attribute). velcg's reads
// do all three, so the template phase of velcg-gen against this module's
// loop is what they cost, and the loop of the plain script against it is
// what Python itself costs.
//
//     velcg_floor.load(blocks)   blocks: the "blocks" list of the description,
//                                as json.load gives it
//     velcg_floor.blocks()       a new list of new wrappers of the blocks
#define PY_SSIZE_T_CLEAN
#include <Python.h>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Region {
    std::string source;
};
struct Port {
    std::vector<Region*> regions;
};
struct Block {
    std::vector<Port*> inputs;
    std::vector<Port*> outputs;
};

// Made once per process and never freed: the process ends after the loop.
std::vector<Block*> chain;

struct Wrapper {
    PyObject_HEAD void* native;
};

PyTypeObject blockType, portType, regionType;

PyObject* wrap(PyTypeObject* type, void* native) {
    Wrapper* w = PyObject_New(Wrapper, type);
    if (w) w->native = native;
    return reinterpret_cast<PyObject*>(w);
}

template <class T>
T& nativeOf(PyObject* self) {
    return *static_cast<T*>(reinterpret_cast<Wrapper*>(self)->native);
}

template <class T>
PyObject* listOf(const std::vector<T*>& natives, PyTypeObject* type) {
    PyObject* list = PyList_New(static_cast<Py_ssize_t>(natives.size()));
    for (std::size_t i = 0; list && i < natives.size(); ++i) {
        PyObject* item = wrap(type, natives[i]);
        if (!item) {
            Py_DECREF(list);
            return nullptr;
        }
        PyList_SET_ITEM(list, static_cast<Py_ssize_t>(i), item);
    }
    return list;
}

PyObject* dataInputPorts(PyObject* self, void*) { return listOf(nativeOf<Block>(self).inputs, &portType); }
PyObject* dataOutputPorts(PyObject* self, void*) { return listOf(nativeOf<Block>(self).outputs, &portType); }
PyObject* regions(PyObject* self, void*) { return listOf(nativeOf<Port>(self).regions, &regionType); }
PyObject* source(PyObject* self, void*) {
    const std::string& s = nativeOf<Region>(self).source;
    return PyUnicode_DecodeUTF8(s.data(), static_cast<Py_ssize_t>(s.size()), nullptr);
}

PyGetSetDef blockMembers[] = {{"DataInputPorts", dataInputPorts, nullptr, nullptr, nullptr},
                              {"DataOutputPorts", dataOutputPorts, nullptr, nullptr, nullptr},
                              {nullptr, nullptr, nullptr, nullptr, nullptr}};
PyGetSetDef portMembers[] = {{"Regions", regions, nullptr, nullptr, nullptr},
                             {nullptr, nullptr, nullptr, nullptr, nullptr}};
PyGetSetDef regionMembers[] = {{"Source", source, nullptr, nullptr, nullptr},
                               {nullptr, nullptr, nullptr, nullptr, nullptr}};

// The ports under key of a block's dict, each with its regions' sources.
bool readPorts(PyObject* block, const char* key, std::vector<Port*>& ports) {
    PyObject* list = PyDict_GetItemString(block, key);
    if (!list) return true;
    if (!PyList_Check(list)) return false;
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(list); ++i) {
        PyObject* regionList = PyDict_GetItemString(PyList_GET_ITEM(list, i), "regions");
        if (!regionList || !PyList_Check(regionList)) return false;
        auto port = std::make_unique<Port>();
        for (Py_ssize_t j = 0; j < PyList_GET_SIZE(regionList); ++j) {
            PyObject* text = PyDict_GetItemString(PyList_GET_ITEM(regionList, j), "source");
            const char* utf8 = text ? PyUnicode_AsUTF8(text) : nullptr;
            if (!utf8) return false;
            port->regions.push_back(new Region{utf8});
        }
        ports.push_back(port.release());
    }
    return true;
}

PyObject* load(PyObject*, PyObject* blocks) {
    if (!PyList_Check(blocks)) return PyErr_Format(PyExc_TypeError, "load takes the list of blocks");
    for (Py_ssize_t i = 0; i < PyList_GET_SIZE(blocks); ++i) {
        PyObject* entry = PyList_GET_ITEM(blocks, i);
        auto block = std::make_unique<Block>();
        if (!PyDict_Check(entry) || !readPorts(entry, "dataInputPorts", block->inputs) ||
            !readPorts(entry, "dataOutputPorts", block->outputs))
            return PyErr_Format(PyExc_ValueError,
                                "block %zd is not shaped as bench/make_description.py makes it",
                                static_cast<Py_ssize_t>(i));
        chain.push_back(block.release());
    }
    Py_RETURN_NONE;
}

PyObject* blocks(PyObject*, PyObject*) { return listOf(chain, &blockType); }

PyMethodDef functions[] = {{"load", load, METH_O, nullptr},
                           {"blocks", blocks, METH_NOARGS, nullptr},
                           {nullptr, nullptr, 0, nullptr}};

PyModuleDef moduleShape = {
    PyModuleDef_HEAD_INIT, "velcg_floor", nullptr, -1, functions, nullptr, nullptr, nullptr, nullptr};

bool ready(PyTypeObject& type, const char* name, PyGetSetDef* members) {
    type.tp_name = name;
    type.tp_basicsize = sizeof(Wrapper);
    type.tp_flags = Py_TPFLAGS_DEFAULT;
    type.tp_getset = members;
    type.tp_dealloc = [](PyObject* self) { PyObject_Free(self); };
    return PyType_Ready(&type) == 0;
}

} // namespace

PyMODINIT_FUNC PyInit_velcg_floor() {
    if (!ready(blockType, "velcg_floor.Block", blockMembers) ||
        !ready(portType, "velcg_floor.Port", portMembers) ||
        !ready(regionType, "velcg_floor.Region", regionMembers))
        return nullptr;
    return PyModule_Create(&moduleShape);
}
