#pragma once

// Conversions between host arrays and Python values.
//
// Host to Python: logical -> bool, integers -> int, double -> float,
// character arrays -> str, cell arrays -> list, arrays of objects -> list of
// objects (or one object where the member holds one), the empty value ->
// None, data interfaces and embedded types -> objects with their fields.
// Vectors keep every element exactly (int64 stays int64).
//
// Python to host: the value must have the Python type that the member's
// host type names (bool for "logical scalar", int for the integer types,
// float, or an int that a double holds exactly, for "double scalar", str for
// "char", a list of str for "cell", an object, a list of objects (possibly
// empty) or None for "any"); anything else is refused rather than converted.
// Ranges are checked by the host's own conversion.

#include <pybind11/pybind11.h>
#include <string>

#include "vel/tuvArray.hpp"

namespace VelCG::python {

namespace py = pybind11;

// How an array of objects reaches Python.
enum class Shape {
    Generic, // one element reads as a scalar, several as a list
    One,     // one object, or None
    List,    // always a list
};

// The shape a host type name implies, given what the member says of objects.
Shape shapeOf(const std::string& hostType, bool oneObject, const std::string& elementClass);

py::object toPython(const tuvArray& value, Shape shape);

// Raised by fromPython when a Python value does not have the Python type
// that hostType asks for. `what` describes the value given.
struct WrongPythonType {
    std::string expected;
    std::string what;
};

tuvArrayPtr fromPython(py::handle value, const std::string& hostType);

// "a Python float (1.5)": a value as messages describe it.
std::string describePython(py::handle value);

} // namespace VelCG::python
