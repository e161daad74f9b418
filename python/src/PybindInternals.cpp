#include "PybindInternals.hpp"

namespace VelCG::python {

void setUpSharedState() { pybind11::detail::get_internals(); }

void setCurrentPythonError() {
    try {
        throw;
    } catch (pybind11::error_already_set& e) {
        e.restore();
    } catch (...) {
        // The module's own translators first, then those of every module.
        if (pybind11::detail::apply_exception_translators(
                pybind11::detail::get_local_internals().registered_exception_translators))
            return;
        if (pybind11::detail::apply_exception_translators(
                pybind11::detail::get_internals().registered_exception_translators))
            return;
        PyErr_SetString(PyExc_SystemError, "Exception escaped from default exception translator!");
    }
}

} // namespace VelCG::python
