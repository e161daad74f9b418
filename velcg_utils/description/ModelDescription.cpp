#include "velcg/ModelDescription.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <new>

#include "description/DescriptionReader.hpp"
#include "description/DescriptionWriter.hpp"
#include "description/Diagnostics.hpp"
#include "description/Fields.hpp"
#include "description/JsonDocument.hpp"
#include "description/JsonText.hpp"
#include "vel/diag/Diagnostic.hpp"
#include "velcg/PlainFileName.hpp"
#include "velcg/StoredCGModel.hpp"
#include "velcg/VelCGFileRepository.hpp"

namespace VelCG {

using namespace description;

namespace {

// Keys of the top level that are not fields of the model.
constexpr const char* kFormatKey = "format";
constexpr const char* kVersionKey = "formatVersion";
constexpr const char* kFilesKey = "files";
// Any JSON value, handed to templates as it is.
constexpr const char* kTemplateDataKey = "templateData";
// Where an editor finds the JSON Schema of the document; not read further.
constexpr const char* kSchemaKey = "$schema";

// The place named when a failure cannot be tied to one.
constexpr const char* kWholeDocument = "(the whole document)";

bool isOurs(const vel::diag::Exception& e) { return isDescriptionDiagnostic(e.identifier()); }

std::string systemError() { return errno ? std::strerror(errno) : "unknown error"; }

// A file name as messages quote it, escaped.
std::string quotedName(const std::string& name) {
    return Json(name).dump(-1, ' ', false, Json::error_handler_t::replace);
}

// The files are written into one output directory: each name is plain and
// names a file of its own there, also where case is ignored.
void checkFileNames(const DescriptionReader& reader, const std::vector<ModelFileDescription>& files) {
    std::map<std::string, std::size_t> byKey;
    const Place root;
    const Place list = root / kFilesKey;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::string& name = files[i].name;
        const Place entry = list / i;
        const Place place = entry / "name";
        if (const auto problem = plainFileNameProblem(name))
            reader.fail(messages::ModelDescription::NotAPlainFileName, place, {quotedName(name), *problem});
        const auto [first, added] = byKey.emplace(fileNameFoldKey(name), i);
        if (!added) {
            const Place firstEntry = list / first->second;
            reader.fail(
                messages::ModelDescription::SameFileName, place,
                {quotedName(name), quotedName(files[first->second].name), (firstEntry / "name").pointer()});
        }
    }
}

// Reads the document into a model. Everything is built into objects the
// model owns as soon as they exist, so that a failure frees all of it.
ModelDescription read(JsonValue document, const std::string& sourceName) {
    if (document.type() != simdjson::dom::element_type::OBJECT)
        raise(messages::ModelDescription::NotADescription, {sourceName, "the document is not a JSON object"});
    JsonValue format;
    if (!DescriptionReader::find(document, kFormatKey, format))
        raise(messages::ModelDescription::NotADescription, {sourceName, "it has no \"format\""});
    if (format.type() != simdjson::dom::element_type::STRING ||
        format.get_string().value_unsafe() != ModelDescription::kFormatName)
        raise(messages::ModelDescription::NotADescription,
              {sourceName, "its \"format\" is " + toJson(format).dump()});

    auto model = std::make_unique<StoredCGModel>();
    DescriptionReader reader(document, sourceName, *model);
    const Place root;
    const Place versionPlace = root / kVersionKey;
    const std::int64_t version = reader.int64(reader.required(document, root, kVersionKey), versionPlace);
    if (version != ModelDescription::kFormatVersion)
        reader.fail(messages::ModelDescription::UnsupportedVersion, versionPlace,
                    {std::to_string(version), std::to_string(ModelDescription::kFormatVersion)});

    JsonValue value;
    if (DescriptionReader::find(document, kSchemaKey, value)) reader.text(value, root / kSchemaKey);
    modelFields().read(reader, document, root, *model,
                       {kSchemaKey, kFormatKey, kVersionKey, kFilesKey, kTemplateDataKey});
    std::vector<ModelFileDescription> files;
    if (DescriptionReader::find(document, kFilesKey, value)) {
        const Place place = root / kFilesKey;
        const JsonArray list = reader.array(value, place);
        files.reserve(sizeOf(list));
        for (const JsonValue entry : list) {
            ModelFileDescription file;
            fileFields().read(reader, entry, place / files.size(), file);
            files.push_back(std::move(file));
        }
    }
    checkFileNames(reader, files);
    reader.runDeferred();
    checkGraphicalSources(reader, *model);
    checkTypeChains(reader, *model);
    checkModelReferences(reader, *model);

    ModelDescription result;
    if (DescriptionReader::find(document, kTemplateDataKey, value)) {
        // The only part of the document no field table reads, and so checks
        // for keys named twice.
        if (auto repeated = firstRepeatedKey(value, root / kTemplateDataKey))
            raise(messages::ModelDescription::DuplicateField, {sourceName, *repeated});
        result.templateData = toJson(value).dump();
    }
    result.model = std::move(model);
    result.files = std::move(files);
    return result;
}

// Reads the text of a description, which is freed once parsed.
ModelDescription readText(PaddedText text, const std::string& sourceName) {
    try {
        const JsonDocument document = JsonDocument::parse(std::move(text), sourceName);
        try {
            return read(document.root(), sourceName);
        } catch (...) {
            // A key named twice is reported wherever it stands, before
            // anything reading found (which may follow from it).
            if (auto repeated = firstRepeatedKey(document.root(), Place()))
                raise(messages::ModelDescription::DuplicateField, {sourceName, *repeated});
            throw;
        }
    } catch (const vel::diag::Exception& e) {
        if (isOurs(e)) throw;
        // The library refused something the checks let through.
        raise(messages::ModelDescription::InvalidValue,
              {sourceName, kWholeDocument, e.diagnostic().message()});
    } catch (const std::bad_alloc&) {
        // Memory ran out: nothing is wrong with the document.
        throw;
    } catch (const std::exception& e) {
        raise(messages::ModelDescription::InvalidValue, {sourceName, kWholeDocument, e.what()});
    }
}

// The whole file, with the padding the parser needs.
PaddedText readFile(const std::string& path) {
    struct Close {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    errno = 0;
    const std::unique_ptr<std::FILE, Close> file(std::fopen(path.c_str(), "rb"));
    if (!file) raise(messages::ModelDescription::ReadFailed, {path, systemError()});
    // A regular file is read into a buffer of its size, unless its size
    // changes meanwhile; anything else in pieces.
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (!error && std::filesystem::is_regular_file(path, error)) {
        PaddedText text(static_cast<std::size_t>(size));
        if (text.size() == size && std::fread(text.data(), 1, text.size(), file.get()) == text.size() &&
            std::fgetc(file.get()) == EOF && !std::ferror(file.get()))
            return text;
        std::rewind(file.get());
    }
    std::string text;
    char piece[1 << 16];
    for (std::size_t n; (n = std::fread(piece, 1, sizeof piece, file.get())) > 0;) text.append(piece, n);
    if (std::ferror(file.get())) raise(messages::ModelDescription::ReadFailed, {path, systemError()});
    return PaddedText(text);
}

} // namespace

ModelDescription ModelDescription::load(const std::string& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        raise(messages::ModelDescription::ReadFailed, {path, "it is a directory"});
    return readText(readFile(path), path);
}

ModelDescription ModelDescription::parse(const std::string& text, const std::string& sourceName) {
    return readText(PaddedText(text), sourceName);
}

std::string ModelDescription::toText(const CGModel& model, const std::vector<ModelFileDescription>& files) {
    try {
        DescriptionWriter writer(model);
        Json document = Json::object();
        document[kFormatKey] = kFormatName;
        document[kVersionKey] = kFormatVersion;
        const StoredCGModel defaults;
        const Place root;
        Json fields = modelFields().write(writer, model, defaults, root);
        for (auto& [field, value] : fields.items()) document[field] = std::move(value);
        Json list = Json::array();
        const Place listPlace = root / kFilesKey;
        for (std::size_t i = 0; i < files.size(); ++i) {
            const ModelFileDescription none;
            const Place entry = listPlace / i;
            if (const auto problem = plainFileNameProblem(files[i].name))
                writer.fail(entry / "name",
                            quotedName(files[i].name) + " is not a plain file name: " + *problem);
            list.push_back(fileFields().write(writer, files[i], none, entry));
        }
        if (!list.empty()) document[kFilesKey] = std::move(list);
        return printJson(document);
    } catch (const vel::diag::Exception& e) {
        if (isOurs(e)) throw;
        raise(messages::ModelDescription::NotDescribable, {kWholeDocument, e.diagnostic().message()});
    } catch (const std::bad_alloc&) {
        // Memory ran out: nothing is wrong with the model.
        throw;
    } catch (const std::exception& e) {
        raise(messages::ModelDescription::NotDescribable, {kWholeDocument, e.what()});
    }
}

void ModelDescription::save(const CGModel& model, const std::vector<ModelFileDescription>& files,
                            const std::string& path) {
    const std::string text = toText(model, files);
    // Written beside the target and renamed over it, so that a failed write
    // leaves the file as it was.
    const std::string temporary = path + ".partial";
    errno = 0;
    std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
    if (!out) raise(messages::ModelDescription::WriteFailed, {path, systemError()});
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    if (!out) {
        const std::string reason = systemError();
        std::remove(temporary.c_str());
        raise(messages::ModelDescription::WriteFailed, {path, reason});
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        const std::string reason = systemError();
        std::remove(temporary.c_str());
        raise(messages::ModelDescription::WriteFailed, {path, reason});
    }
}

void ModelDescription::createFiles(VelCGFileRepository& repository) const {
    for (const ModelFileDescription& file : files) {
        switch (file.kind) {
            case ModelFileDescription::Kind::ModuleHeader:
                repository.createModuleHeaderFile(file.name, file.systems);
                break;
            case ModelFileDescription::Kind::ModuleSource:
                repository.createModuleSourceFile(file.name, file.systems);
                break;
            case ModelFileDescription::Kind::Generic:
                repository.createGenericFile(file.name);
                break;
            case ModelFileDescription::Kind::DataTypes:
                repository.createDataTypesFile(file.name);
                break;
        }
    }
}

} // namespace VelCG
