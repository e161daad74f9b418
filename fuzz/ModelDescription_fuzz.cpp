// Feeds arbitrary text to the model-description reader. Every input must
// either give a model or raise a "VelCG:ModelDescription:" diagnostic; an
// accepted description written back and read again must give the same text.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "vel/diag/Diagnostic.hpp"
#include "velcg/ModelDescription.hpp"

namespace {

constexpr const char* kPrefix = "VelCG:ModelDescription:";

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "model description fuzzer: %s\n", what.c_str());
    std::abort();
}

void checkDiagnostic(const vel::diag::Exception& e, const char* stage) {
    const std::string& id = e.identifier();
    if (id.size() <= std::char_traits<char>::length(kPrefix) ||
        id.compare(0, std::char_traits<char>::length(kPrefix), kPrefix) != 0) {
        fail(std::string(stage) + ": unexpected diagnostic " + e.what());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    VelCG::ModelDescription description;
    try {
        description = VelCG::ModelDescription::parse(text, "fuzz-input");
    } catch (const vel::diag::Exception& e) {
        checkDiagnostic(e, "parse");
        return 0;
    } catch (const std::exception& e) {
        fail(std::string("parse raised a non-diagnostic exception: ") + e.what());
    }
    if (!description.model) {
        fail("parse returned no model");
    }

    // A model read from a description can always be described again.
    std::string first;
    try {
        first = VelCG::ModelDescription::toText(*description.model, description.files);
    } catch (const std::exception& e) {
        fail(std::string("toText of an accepted description failed: ") + e.what());
    }
    std::string second;
    try {
        const VelCG::ModelDescription again = VelCG::ModelDescription::parse(first, "fuzz-round-trip");
        second = VelCG::ModelDescription::toText(*again.model, again.files);
    } catch (const std::exception& e) {
        fail(std::string("the written description does not read back: ") + e.what() + "\n" + first);
    }
    if (first != second) {
        fail("round trip changed the text:\n" + first + "\n---\n" + second);
    }
    return 0;
}
