#pragma once

// Renders host values and whole objects as short exact texts, so that a test
// compares one text instead of poking at fields one by one.

#include <sstream>
#include <string>

#include "korb/Client.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/mi/Handle.hpp"
#include "vel/tuvArray.hpp"

namespace testing_support {

// A compact, exact rendering of a host value: 'text', "int32 5",
// "int32[2,3]", {cells}, <class names of handles>, or an opaque class name.
inline std::string render(const tuvArray& a) {
    std::ostringstream os;
    switch (a.classId()) {
        case tuvClass::Char:
            return "'" + a.toUtf8() + "'";
        case tuvClass::Opaque:
            return a.className();
        case tuvClass::Cell:
            os << "{";
            for (std::size_t i = 0; i < a.numel(); ++i) os << (i ? "," : "") << render(*a.getCell(i));
            os << "}";
            return os.str();
        case tuvClass::Object:
            os << "<";
            for (std::size_t i = 0; i < a.numel(); ++i)
                os << (i ? "," : "") << a.handles()[i].get()->getFullyQualifiedKorbTypeName();
            os << ">";
            return os.str();
        default:
            if (a.isScalar()) return a.describe();
            if (a.isEmpty() && a.classId() == tuvClass::Double) return "[]";
            os << a.className() << "[";
            for (std::size_t i = 0; i < a.numel(); ++i) os << (i ? "," : "") << a.numericAt(i);
            os << "]";
            return os.str();
    }
}

} // namespace testing_support
