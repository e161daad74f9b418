#pragma once

// Helpers shared by the generated-file tests.

#include <cstdio>
#include <memory>
#include <string>

#include <boost/shared_ptr.hpp>

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

} // namespace files_testing
