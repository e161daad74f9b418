#pragma once

// Helpers shared by the generated-file tests.

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "vel/diag/Diagnostic.hpp"
#include "velcg/StringFileSectionFragment.hpp"

namespace files_testing {

// The bytes that write(stream) puts on a fresh temporary C stream.
template <class Write>
std::string bytesWrittenBy(Write write) {
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> f(std::tmpfile(), &std::fclose);
    write(f.get());
    std::string out;
    std::rewind(f.get());
    for (int c; (c = std::fgetc(f.get())) != EOF;) out += static_cast<char>(c);
    return out;
}

// A shared fragment holding text, as the script bridge receives them.
inline boost::shared_ptr<VelCG::FileSectionFragment> fragment(const std::string& text) {
    return boost::shared_ptr<VelCG::FileSectionFragment>(new VelCG::StringFileSectionFragment(text));
}

// Each warning the collector holds as "Identifier(argument, ...)".
inline std::vector<std::string> warningsOf(const vel::diag::WarningCollector& collector) {
    std::vector<std::string> out;
    for (const vel::diag::Diagnostic& d : collector.warnings()) {
        std::string text = d.identifier() + "(";
        for (std::size_t i = 0; i < d.arguments().size(); ++i) text += (i ? ", " : "") + d.arguments()[i];
        out.push_back(text + ")");
    }
    return out;
}

} // namespace files_testing
