#pragma once

// The file attributes of the script bridge: one row per name, with how it is
// read and set and what setting it does. FileRepScrivBridge fills its
// dispatch tables from these rows, and the template reference lists them.
// Internal to the library: not installed, not exported.

#include <string>
#include <vector>

#include "velcg/TemplateReference.hpp"

namespace VelCG {
class VelCGFile;
}

namespace VelCG::scriv_detail {

using reference::ValueType;

struct AttributeRow {
    const char* name;
    ValueType readAs; // the handler of that type below is set
    ValueType setAs;  // likewise; None for a read-only attribute
    bool (*getBoolean)(const VelCGFile&);
    void (*setBoolean)(VelCGFile&, bool);
    const std::string& (*getString)(const VelCGFile&);
    void (*setString)(VelCGFile&, const char*);
    const std::vector<std::string>& (*getStringList)(const VelCGFile&);
    const char* description;
};

// In the order the reference lists them: string attributes, lists, booleans.
const std::vector<AttributeRow>& attributeRows();

} // namespace VelCG::scriv_detail
