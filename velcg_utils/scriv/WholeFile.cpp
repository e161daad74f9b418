#include "velcg/WholeFile.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <memory>
#include <random>
#include <system_error>

#include "Messages.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/FileRepScrivBridge.hpp"
#include "velcg/PlainFileName.hpp"
#include "velcg/VelCGFile.hpp"
#include "velcg/VelCGFileSectionKind.hpp"

namespace fs = std::filesystem;

namespace VelCG {

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

[[noreturn]] void writeFailed(const fs::path& path, const std::string& reason) {
    vel::diag::throwError(messages::FileRepScrivBridge::FileWriteFailed, {path.u8string(), reason});
}

// Whether the two files hold the same bytes; a missing file equals nothing.
bool sameBytes(const fs::path& a, const fs::path& b) {
    std::error_code error;
    const auto size = fs::file_size(b, error);
    if (error || size != fs::file_size(a, error) || error) return false;
    std::ifstream first(a, std::ios::binary), second(b, std::ios::binary);
    char x[1 << 16], y[1 << 16];
    while (first && second) {
        first.read(x, sizeof x);
        second.read(y, sizeof y);
        if (first.gcount() != second.gcount() ||
            std::memcmp(x, y, static_cast<std::size_t>(first.gcount())) != 0)
            return false;
    }
    return first.eof() && second.eof();
}

} // namespace

const std::vector<std::string>& sectionNamesInFileOrder() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> out;
        for (int kind = BANNER_SECTION; kind <= USERBOTTOM_SECTION; ++kind) {
            std::string name = getScrivSectionNameFromEnum(static_cast<VelCGFileSectionKind>(kind));
            if (!name.empty()) out.push_back(std::move(name));
        }
        return out;
    }();
    return names;
}

bool writeWholeFile(FileRepScrivBridge& bridge, std::int32_t fileIndex, const fs::path& directory) {
    const std::string name = bridge.getFileFromIndex(fileIndex).getNameAscii();
    if (const auto problem = plainFileNameProblem(name))
        vel::diag::throwError(messages::FileRepScrivBridge::NotAPlainFileName, {name, *problem});
    const fs::path target = directory / fs::u8path(name);
    fs::path temporary = target;
    temporary += ".velcg-" + std::to_string(std::random_device()()) + ".tmp";

    File stream(std::fopen(temporary.string().c_str(), "wb"), &std::fclose);
    if (!stream) writeFailed(target, std::strerror(errno));
    std::error_code ignored;
    try {
        for (const std::string& section : sectionNamesInFileOrder()) {
            bridge.appendMissingTokens(fileIndex, section);
            bridge.writeSection(fileIndex, section, stream.get());
        }
        if (std::fclose(stream.release()) != 0) writeFailed(target, std::strerror(errno));
    } catch (...) {
        stream.reset();
        fs::remove(temporary, ignored);
        throw;
    }
    const bool changed = !sameBytes(temporary, target);
    std::error_code error;
    if (changed)
        fs::rename(temporary, target, error);
    else
        fs::remove(temporary, ignored);
    if (error) {
        fs::remove(temporary, ignored);
        writeFailed(target, error.message());
    }
    bridge.setAttribute(fileIndex, "WrittenToDisk", true);
    return changed;
}

} // namespace VelCG
