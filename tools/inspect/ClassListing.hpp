#pragma once

// The classes of a package with the members each declares itself, as the
// object system's public client describes them, for velcg-inspect's
// listings.

#include <string>
#include <vector>

#include "korb/Client.hpp"

namespace VelCG::inspect {

struct ClassListing {
    const vel::mi::HandleClass* cls;
    std::vector<korb::PropertyInfo> properties;
    std::vector<korb::MethodInfo> methods;
};

// In registration order; inherited members are listed with the class that
// declares them.
std::vector<ClassListing> listPackage(const korb::Client& client, const std::string& package);

// A docstring as Python source, indented: """text""" on one line when it
// fits, else over several.
std::string pythonDocstring(const std::string& text, const std::string& indent);

} // namespace VelCG::inspect
