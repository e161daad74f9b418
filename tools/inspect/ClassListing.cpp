#include "inspect/ClassListing.hpp"

#include "vel/mi/HandleClass.hpp"

namespace VelCG::inspect {

std::vector<ClassListing> listPackage(const korb::Client& client, const std::string& package) {
    std::vector<ClassListing> out;
    for (const vel::mi::HandleClass* c : client.getClasses(package)) {
        ClassListing listing{c, {}, {}};
        for (auto& p : client.describeProperties(*c))
            if (p.definedBy == c->getQualifiedName()) listing.properties.push_back(std::move(p));
        for (auto& m : client.describeMethods(*c))
            if (m.definedBy == c->getQualifiedName()) listing.methods.push_back(std::move(m));
        out.push_back(std::move(listing));
    }
    return out;
}

std::string pythonDocstring(const std::string& text, const std::string& indent) {
    // Quotes need a backslash only where they could end the string.
    std::string escaped;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '\\' || (c == '"' && (i + 1 == text.size() || text[i + 1] == '"'))) escaped += '\\';
        escaped += c;
    }
    if (escaped.find('\n') == std::string::npos) return indent + "\"\"\"" + escaped + "\"\"\"\n";
    std::string out = indent + "\"\"\"";
    std::size_t start = 0;
    for (std::size_t end; (end = escaped.find('\n', start)) != std::string::npos; start = end + 1) {
        const std::string line = escaped.substr(start, end - start);
        out += (start == 0 ? "" : line.empty() ? "" : indent) + line + "\n";
    }
    return out + indent + escaped.substr(start) + "\n" + indent + "\"\"\"\n";
}

} // namespace VelCG::inspect
