#include "Values.hpp"

#include <climits>
#include <cstdint>
#include <vector>

#include "CG/DataInterface.hpp"
#include "CG/EmbeddedType.hpp"
#include "Objects.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace VelCG::python {

namespace {

bool endsWith(const std::string& s, const char* suffix) {
    const std::string t(suffix);
    return s.size() >= t.size() && s.compare(s.size() - t.size(), t.size(), t) == 0;
}

template <class T, class Convert>
py::object scalarOrList(tuvElements<T> data, Shape shape, Convert convert) {
    if (shape != Shape::List && data.size() == 1) return convert(data.front());
    py::list out(data.size());
    for (std::size_t i = 0; i < data.size(); ++i) out[i] = convert(data[i]);
    return std::move(out);
}

py::object objects(const tuvArray& value, Shape shape) {
    const auto& handles = value.handles();
    if (shape == Shape::One || (shape == Shape::Generic && handles.size() == 1))
        return handles.empty() ? py::none() : wrap(handles.front());
    py::list out(handles.size());
    for (std::size_t i = 0; i < handles.size(); ++i) out[i] = wrap(handles[i]);
    return std::move(out);
}

py::object opaque(const tuvArray& value) {
    const std::string cls = value.className();
    if (cls == "coder.DataInterface") {
        const CG::DataInterface* di = CG::DataInterface::fromTuvArray(value);
        return di ? py::cast(DataInterfaceValue{di}) : py::none();
    }
    if (cls == "embedded.type") {
        const CG::EmbeddedType* type = CG::EmbeddedType::fromTuvArray(value);
        return type ? py::cast(EmbeddedTypeValue{type}) : py::none();
    }
    return py::cast(HostValue{std::make_shared<tuvArray>(value)});
}

[[noreturn]] void wrongType(const char* expected, py::handle value) {
    throw WrongPythonType{expected, describePython(value)};
}

bool isInt(py::handle v) { return PyLong_Check(v.ptr()) && !PyBool_Check(v.ptr()); }

std::int64_t toInt64(py::handle v, const char* expected) {
    int overflow = 0;
    const long long n = PyLong_AsLongLongAndOverflow(v.ptr(), &overflow);
    if (overflow) wrongType(expected, v);
    if (n == -1 && PyErr_Occurred()) throw py::error_already_set();
    return static_cast<std::int64_t>(n);
}

std::string toUtf8(py::handle v, const char* expected) {
    Py_ssize_t size = 0;
    const char* data = PyUnicode_AsUTF8AndSize(v.ptr(), &size);
    if (!data) {
        // Lone surrogates have no UTF-8 form.
        PyErr_Clear();
        throw WrongPythonType{expected, "a Python str that is not valid Unicode"};
    }
    return std::string(data, static_cast<std::size_t>(size));
}

bool isSequence(py::handle v) { return PyList_Check(v.ptr()) || PyTuple_Check(v.ptr()); }

tuvArrayPtr anyValue(py::handle v);

tuvArrayPtr listValue(py::handle v) {
    py::sequence items = py::reinterpret_borrow<py::sequence>(v);
    const std::size_t n = items.size();
    // An empty list is an empty list of objects, so that [] clears the
    // object lists scripts may write.
    bool allObjects = true;
    for (py::handle item : items) allObjects = allObjects && isObject(item);
    if (allObjects) {
        std::vector<vel::mi::HandleRef> refs;
        refs.reserve(n);
        for (py::handle item : items) refs.push_back(stateOf(item).ref);
        return tuvArray::objects(std::move(refs));
    }
    tuvArrayPtr cells = tuvArray::cell(1, n);
    for (std::size_t i = 0; i < n; ++i) cells->setCell(i, anyValue(items[i]));
    return cells;
}

// A value for a member that takes any host value: the natural host value of
// each Python type.
tuvArrayPtr anyValue(py::handle v) {
    if (v.is_none()) return tuvArray::empty();
    if (isObject(v)) return tuvArray::objects({stateOf(v).ref});
    if (py::isinstance<DataInterfaceValue>(v))
        return CG::DataInterface::toTuvArray(v.cast<const DataInterfaceValue&>().value.get());
    if (py::isinstance<EmbeddedTypeValue>(v))
        return CG::EmbeddedType::toTuvArray(v.cast<const EmbeddedTypeValue&>().value.get());
    if (py::isinstance<HostValue>(v)) return v.cast<const HostValue&>().value;
    if (PyBool_Check(v.ptr())) return tuvArray::logical(v.ptr() == Py_True);
    if (isInt(v)) return tuvArray::int64(toInt64(v, "an integer within 64 bits"));
    if (PyFloat_Check(v.ptr())) return tuvArray::float64(PyFloat_AS_DOUBLE(v.ptr()));
    if (PyUnicode_Check(v.ptr())) return tuvArray::fromUtf8(toUtf8(v, "text"));
    if (isSequence(v)) return listValue(v);
    wrongType("a host value (None, bool, int, float, str, a velcg object or a list of them)", v);
}

} // namespace

Shape shapeOf(const std::string& hostType, bool oneObject, const std::string& elementClass) {
    if (oneObject) return Shape::One;
    if (!elementClass.empty() || hostType == "cell" ||
        (endsWith(hostType, " vector") && hostType != "char vector"))
        return Shape::List;
    return Shape::Generic;
}

py::object toPython(const tuvArray& value, Shape shape) {
    switch (value.classId()) {
        case tuvClass::Logical:
            return scalarOrList(value.logicalData(), shape, [](std::uint8_t b) { return py::bool_(b != 0); });
        case tuvClass::Int32:
            return scalarOrList(value.int32Data(), shape, [](std::int32_t n) { return py::int_(n); });
        case tuvClass::UInt32:
            return scalarOrList(value.uint32Data(), shape, [](std::uint32_t n) { return py::int_(n); });
        case tuvClass::Int64:
            return scalarOrList(value.int64Data(), shape, [](std::int64_t n) { return py::int_(n); });
        case tuvClass::Double:
            if (value.isEmpty() && shape != Shape::List) return py::none();
            return scalarOrList(value.doubleData(), shape, [](double d) { return py::float_(d); });
        case tuvClass::Char: {
            // Straight from the host's UTF-16; text that is not valid
            // Unicode takes the host's conversion, which reports it.
            const std::u16string& text = value.charData();
            int byteOrder = 0; // native
            PyObject* str = PyUnicode_DecodeUTF16(reinterpret_cast<const char*>(text.data()),
                                                  static_cast<Py_ssize_t>(text.size() * sizeof(char16_t)),
                                                  "strict", &byteOrder);
            if (str) return py::reinterpret_steal<py::str>(str);
            PyErr_Clear();
            const std::string utf8 = value.toUtf8();
            return py::str(utf8.data(), utf8.size());
        }
        case tuvClass::Cell: {
            py::list out(value.numel());
            for (std::size_t i = 0; i < value.numel(); ++i)
                out[i] = toPython(*value.getCell(i), Shape::Generic);
            return std::move(out);
        }
        case tuvClass::Object:
            return objects(value, shape);
        case tuvClass::Opaque:
            return opaque(value);
    }
    return py::none();
}

tuvArrayPtr fromPython(py::handle v, const std::string& hostType) {
    if (hostType == "logical scalar") {
        if (!PyBool_Check(v.ptr())) wrongType("a bool", v);
        return tuvArray::logical(v.ptr() == Py_True);
    }
    if (hostType == "int32 scalar" || hostType == "uint32 scalar" || hostType == "int64 scalar") {
        // The host checks the range of the integer type.
        if (!isInt(v)) wrongType("an int", v);
        return tuvArray::int64(toInt64(v, "an int within 64 bits"));
    }
    if (hostType == "double scalar") {
        if (PyFloat_Check(v.ptr())) return tuvArray::float64(PyFloat_AS_DOUBLE(v.ptr()));
        if (!isInt(v)) wrongType("a float", v);
        // An int the double cannot hold exactly is refused rather than rounded.
        const double d = PyLong_AsDouble(v.ptr());
        if (d == -1.0 && PyErr_Occurred()) {
            PyErr_Clear();
            wrongType("a float", v);
        }
        const py::object back = py::reinterpret_steal<py::object>(PyLong_FromDouble(d));
        if (!back || PyObject_RichCompareBool(back.ptr(), v.ptr(), Py_EQ) != 1) {
            PyErr_Clear();
            wrongType("a float, or an int that a double holds exactly", v);
        }
        return tuvArray::float64(d);
    }
    if (hostType == "char") {
        if (!PyUnicode_Check(v.ptr())) wrongType("a str", v);
        return tuvArray::fromUtf8(toUtf8(v, "a str"));
    }
    if (hostType == "char vector") {
        // Enumerations: the enumerator's name, or its value.
        if (PyUnicode_Check(v.ptr())) return tuvArray::fromUtf8(toUtf8(v, "a str"));
        if (isInt(v)) return tuvArray::int64(toInt64(v, "an int within 64 bits"));
        wrongType("a str", v);
    }
    if (hostType == "int32 vector") {
        if (!isSequence(v)) wrongType("a list of int", v);
        std::vector<std::int64_t> values;
        for (py::handle item : py::reinterpret_borrow<py::sequence>(v)) {
            if (!isInt(item)) wrongType("a list of int", v);
            values.push_back(toInt64(item, "a list of int within 64 bits"));
        }
        return tuvArray::int64Vector(std::move(values));
    }
    if (hostType == "cell") {
        if (!isSequence(v)) wrongType("a list of str", v);
        py::sequence items = py::reinterpret_borrow<py::sequence>(v);
        tuvArrayPtr cells = tuvArray::cell(1, items.size());
        for (std::size_t i = 0; i < items.size(); ++i) {
            py::object item = items[i];
            if (!PyUnicode_Check(item.ptr())) wrongType("a list of str", v);
            cells->setCell(i, tuvArray::fromUtf8(toUtf8(item, "a list of str")));
        }
        return cells;
    }
    return anyValue(v);
}

std::string describePython(py::handle value) {
    std::string type = Py_TYPE(value.ptr())->tp_name;
    std::string text;
    try {
        text = py::repr(value).cast<std::string>();
    } catch (const py::error_already_set&) {
        text = "?";
    }
    if (text.size() > 60) text = text.substr(0, 57) + "...";
    return "a Python " + type + " (" + text + ")";
}

} // namespace VelCG::python
