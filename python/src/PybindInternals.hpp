#pragma once

// Every use the module makes of pybind11's internal API (pybind11::detail),
// which pybind11 may change in any release. Written against pybind11 2.10:
// a test (PybindInternals.WrittenForThisPybind11Version) fails on another
// version until each use here has been looked at again.

#include <cstdint>
#include <pybind11/pybind11.h>

namespace VelCG::python {

// Sets up pybind11's state shared between modules, which it otherwise does on
// first use without a lock of its own. REQUIRES: the interpreter lock.
void setUpSharedState();

// Sets the Python error for the exception being handled, as pybind11 does
// for the functions it binds: through the registered exception translators
// (velcg.Error for host diagnostics). REQUIRES: inside a catch block.
void setCurrentPythonError();

// A file index from Python: an int. A bool, which Python counts as an int,
// is refused rather than taken for file 0 or 1.
struct FileIndex {
    std::int32_t value = 0;
    operator std::int32_t() const { return value; }
};

} // namespace VelCG::python

namespace pybind11::detail {

template <>
struct type_caster<VelCG::python::FileIndex> {
    PYBIND11_TYPE_CASTER(VelCG::python::FileIndex, const_name("int"));

    bool load(handle source, bool convert) {
        if (PyBool_Check(source.ptr())) return false;
        make_caster<std::int32_t> index;
        if (!index.load(source, convert)) return false;
        value.value = cast_op<std::int32_t>(index);
        return true;
    }
    static handle cast(VelCG::python::FileIndex index, return_value_policy, handle) {
        return PyLong_FromLong(index.value);
    }
};

} // namespace pybind11::detail
