#include "velcg/OutputDirectory.hpp"

#include <algorithm>
#include <array>
#include <fstream>
#include <random>
#include <set>
#include <system_error>

#include "Messages.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "vel/sys/DirectoryLock.hpp"
#include "velcg/PlainFileName.hpp"

namespace VelCG {

namespace fs = std::filesystem;

namespace {

constexpr const char* kCommitName = ".velcg-gen-commit";
constexpr const char* kManifestHeader = "velcg-gen manifest 1";
constexpr const char* kCommitHeader = "velcg-gen commit 1";

[[noreturn]] void fail(const char* identifier, const std::string& text) {
    vel::diag::throwErrorText(identifier, text);
}

[[noreturn]] void failOn(const fs::path& path, const std::string& what, const std::error_code& ec) {
    fail(messages::Generation::CannotWrite,
         "Cannot " + what + " '" + path.string() + "': " + ec.message() + ".");
}

bool sameBytes(const fs::path& a, const fs::path& b) {
    std::error_code ec;
    if (!fs::is_regular_file(fs::symlink_status(b, ec))) return false;
    const auto size = fs::file_size(a, ec);
    if (ec || size != fs::file_size(b, ec) || ec) return false;
    std::ifstream x(a, std::ios::binary), y(b, std::ios::binary);
    if (!x || !y) return false;
    std::array<char, 1 << 16> bx{}, by{};
    while (x && y) {
        x.read(bx.data(), bx.size());
        y.read(by.data(), by.size());
        if (x.gcount() != y.gcount() || !std::equal(bx.begin(), bx.begin() + x.gcount(), by.begin()))
            return false;
    }
    return x.eof() && y.eof();
}

// Reads a list file: its header, then one name a line. Every name must be a
// plain relative path (the list decides what is removed), or the manifest's
// own name where `manifest` is allowed.
std::vector<std::string> readList(const fs::path& file, const char* header, bool manifest = false) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return {};
    std::string line;
    std::vector<std::string> names;
    if (!std::getline(in, line) || line != header)
        fail(messages::Generation::BadManifest,
             "'" + file.string() + "' is not a list written by velcg-gen; remove it to start afresh.");
    for (int number = 2; std::getline(in, line); ++number) {
        const std::string name = manifest && !line.empty() ? line.substr(0, line.size() - 1) : line;
        if (!OutputDirectory::isPlainRelativePath(name) &&
            !(manifest && name == OutputDirectory::kManifestName))
            fail(messages::Generation::BadManifest,
                 "'" + file.string() + "', line " + std::to_string(number) + ": '" + line +
                     "' is not a file inside the output directory; remove the file to start "
                     "afresh.");
        names.push_back(line);
    }
    return names;
}

// Writes a file whole under a temporary name beside it, then renames it.
void writeList(const fs::path& file, const char* header, const std::vector<std::string>& lines) {
    const fs::path temporary = file.string() + ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << header << '\n';
        for (const std::string& line : lines) out << line << '\n';
        out.flush();
        if (!out) failOn(temporary, "write", std::make_error_code(std::errc::io_error));
    }
    std::error_code ec;
    fs::rename(temporary, file, ec);
    if (ec) failOn(file, "write", ec);
}

// Removes directories left empty by a removal, up to (not including) top.
void removeEmptyParents(fs::path directory, const fs::path& top) {
    std::error_code ec;
    while (directory != top && directory.string().size() > top.string().size() &&
           fs::is_empty(directory, ec) && !ec) {
        fs::remove(directory, ec);
        directory = directory.parent_path();
    }
}

} // namespace

bool OutputDirectory::isPlainRelativePath(const std::string& name) {
    if (name.rfind(".velcg-gen", 0) == 0) return false;
    for (std::size_t start = 0;;) {
        const std::size_t end = name.find('/', start);
        if (plainFileNameProblem(std::string_view(name).substr(start, end - start))) return false;
        if (end == std::string::npos) return true;
        start = end + 1;
    }
}

OutputDirectory::OutputDirectory(const fs::path& directory, bool wait, const std::function<void()>& onWait,
                                 bool recover)
    : directory_(directory) {
    std::error_code ec;
    if (recover) {
        fs::create_directories(directory_, ec);
        if (ec || !fs::is_directory(directory_))
            fail(messages::Generation::CannotCreateDirectory,
                 "Cannot create the output directory '" + directory_.string() +
                     "': " + (ec ? ec.message() : std::string("a file of that name is in the way")) + ".");
    }
    if (fs::is_directory(directory_, ec)) {
        lock_ = std::make_unique<vel::sys::DirectoryLock>(directory_, vel::sys::DirectoryLock::Wait::No);
        if (!lock_->locked()) {
            if (!wait)
                fail(messages::Generation::Busy,
                     "Another run is generating into '" + directory_.string() +
                         "'; try again once it has ended, or let this run wait for it (velcg-gen without "
                         "--no-wait).");
            if (onWait) onWait();
            lock_ = std::make_unique<vel::sys::DirectoryLock>(directory_, vel::sys::DirectoryLock::Wait::Yes);
        }
    }
    if (recover) {
        staging_ = directory_ / kStagingName;
        finishInterruptedCommit();
        fs::remove_all(staging_, ec);
        if (!fs::create_directory(staging_, ec) || ec) failOn(staging_, "create the staging directory", ec);
        return;
    }
    // A check stages in a fresh directory of the system's, never one that
    // exists already.
    std::random_device random;
    for (int attempt = 0;; ++attempt) {
        staging_ = fs::temp_directory_path(ec) / ("velcg-gen-check-" + std::to_string(random()));
        if (!ec && fs::create_directory(staging_, ec) && !ec) return;
        if (attempt == 100) failOn(staging_, "create the staging directory", ec);
    }
}

OutputDirectory::~OutputDirectory() {
    if (committed_) return;
    std::error_code ec;
    fs::remove_all(staging_, ec);
}

void OutputDirectory::finishInterruptedCommit() {
    const fs::path marker = staging_ / kCommitName;
    std::error_code ec;
    if (!fs::exists(marker, ec)) return;
    // "move NAME" and "remove NAME" lines; the moves already made have no
    // staged file any more.
    std::vector<std::string> moves, removals;
    for (const std::string& entry : readList(marker, kCommitHeader, true)) {
        (entry.back() == '-' ? removals : moves).push_back(entry.substr(0, entry.size() - 1));
    }
    apply(moves, removals);
}

std::vector<std::string> OutputDirectory::stagedFiles() const {
    std::vector<std::string> files;
    std::error_code ec;
    for (fs::recursive_directory_iterator it(staging_, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string name = it->path().lexically_relative(staging_).generic_string();
        if (name == kManifestName || name == kCommitName) continue;
        if (it->is_symlink(ec) || (!it->is_regular_file(ec) && !it->is_directory(ec)))
            fail(messages::Generation::NotAFile,
                 "'" + name +
                     "' was left in the output directory by the template, but it is not a "
                     "regular file; write files only.");
        if (it->is_regular_file(ec)) {
            if (!isPlainRelativePath(name))
                fail(messages::Generation::BadFileName,
                     "'" + name + "' is not a name velcg-gen can generate.");
            files.push_back(name);
        }
    }
    if (ec) failOn(staging_, "read", ec);
    std::sort(files.begin(), files.end());
    return files;
}

std::vector<std::string> OutputDirectory::readManifest() const {
    return readList(directory_ / kManifestName, kManifestHeader);
}

std::vector<OutputDirectory::Change> OutputDirectory::compare() const {
    std::vector<Change> changes;
    const std::vector<std::string> staged = stagedFiles();
    std::error_code ec;
    for (const std::string& name : staged) {
        const fs::path target = directory_ / fs::u8path(name);
        const bool exists = fs::exists(fs::symlink_status(target, ec));
        changes.push_back({name, !exists                                          ? Change::Kind::Added
                                 : sameBytes(staging_ / fs::u8path(name), target) ? Change::Kind::Unchanged
                                                                                  : Change::Kind::Changed});
    }
    const std::set<std::string> kept(staged.begin(), staged.end());
    for (const std::string& name : readManifest()) {
        if (kept.count(name)) continue;
        const fs::path target = directory_ / fs::u8path(name);
        if (fs::is_regular_file(fs::symlink_status(target, ec)) ||
            fs::is_symlink(fs::symlink_status(target, ec)))
            changes.push_back({name, Change::Kind::Removed});
    }
    std::sort(changes.begin(), changes.end(),
              [](const Change& a, const Change& b) { return a.name < b.name; });
    return changes;
}

std::vector<OutputDirectory::Change> OutputDirectory::commit() {
    const std::vector<Change> changes = compare();
    std::vector<std::string> staged, moves, removals, markerLines;
    for (const Change& c : changes) {
        if (c.kind != Change::Kind::Removed) staged.push_back(c.name);
        if (c.kind == Change::Kind::Added || c.kind == Change::Kind::Changed) {
            moves.push_back(c.name);
            markerLines.push_back(c.name + "+");
        } else if (c.kind == Change::Kind::Removed) {
            removals.push_back(c.name);
            markerLines.push_back(c.name + "-");
        }
    }
    // The new manifest is committed like any staged file.
    writeList(staging_ / kManifestName, kManifestHeader, staged);
    if (!sameBytes(staging_ / kManifestName, directory_ / kManifestName)) {
        moves.push_back(kManifestName);
        markerLines.push_back(std::string(kManifestName) + "+");
    }
    if (!moves.empty() || !removals.empty()) {
        writeList(staging_ / kCommitName, kCommitHeader, markerLines);
        apply(moves, removals);
    } else {
        std::error_code ec;
        fs::remove_all(staging_, ec);
    }
    committed_ = true;
    return changes;
}

void OutputDirectory::apply(const std::vector<std::string>& moves,
                            const std::vector<std::string>& removals) const {
    std::error_code ec;
    for (const std::string& name : moves) {
        const fs::path from = staging_ / fs::u8path(name);
        const fs::path to = directory_ / fs::u8path(name);
        if (!fs::exists(fs::symlink_status(from, ec))) continue; // moved before an interruption
        if (to.has_parent_path()) fs::create_directories(to.parent_path(), ec);
        fs::rename(from, to, ec);
        if (ec) failOn(to, "write", ec);
    }
    for (const std::string& name : removals) {
        const fs::path target = directory_ / fs::u8path(name);
        const fs::file_status status = fs::symlink_status(target, ec);
        if (!fs::is_regular_file(status) && !fs::is_symlink(status)) continue;
        if (!fs::remove(target, ec) && ec) failOn(target, "remove", ec);
        removeEmptyParents(target.parent_path(), directory_);
    }
    fs::remove_all(staging_, ec);
    if (ec) failOn(staging_, "remove", ec);
}

} // namespace VelCG
