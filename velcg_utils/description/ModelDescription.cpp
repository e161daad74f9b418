#include "velcg/ModelDescription.hpp"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "description/DescriptionReader.hpp"
#include "description/DescriptionWriter.hpp"
#include "description/Diagnostics.hpp"
#include "description/Fields.hpp"
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

bool isOurs(const vel::diag::Exception& e) { return e.identifier().rfind("VelCG:ModelDescription:", 0) == 0; }

std::string systemError() { return errno ? std::strerror(errno) : "unknown error"; }

// A file name as messages quote it, escaped.
std::string quotedName(const std::string& name) {
    return Json(name).dump(-1, ' ', false, Json::error_handler_t::replace);
}

// The files are written into one output directory: each name is plain and
// names a file of its own there, also where case is ignored.
void checkFileNames(const DescriptionReader& reader, const std::vector<ModelFileDescription>& files) {
    std::map<std::string, std::size_t> byKey;
    for (std::size_t i = 0; i < files.size(); ++i) {
        const std::string& name = files[i].name;
        const Place place = Place() / kFilesKey / i / "name";
        if (const auto problem = plainFileNameProblem(name))
            reader.fail(key::kNotAPlainFileName, place, {quotedName(name), *problem});
        const auto [first, added] = byKey.emplace(fileNameFoldKey(name), i);
        if (!added)
            reader.fail(key::kSameFileName, place,
                        {quotedName(name), quotedName(files[first->second].name),
                         (Place() / kFilesKey / first->second / "name").pointer()});
    }
}

// Reads the document into a model. Everything is built into objects the
// model owns as soon as they exist, so that a failure frees all of it.
ModelDescription read(const Json& document, const std::string& sourceName) {
    if (!document.is_object())
        raise(key::kNotADescription, {sourceName, "the document is not a JSON object"});
    auto format = document.find(kFormatKey);
    if (format == document.end()) raise(key::kNotADescription, {sourceName, "it has no \"format\""});
    if (*format != ModelDescription::kFormatName)
        raise(key::kNotADescription, {sourceName, "its \"format\" is " + format->dump()});

    auto model = std::make_unique<StoredCGModel>();
    DescriptionReader reader(document, sourceName, *model);
    const Place versionPlace = Place() / kVersionKey;
    const std::int64_t version = reader.int64(reader.required(document, Place(), kVersionKey), versionPlace);
    if (version != ModelDescription::kFormatVersion)
        reader.fail(key::kUnsupportedVersion, versionPlace,
                    {std::to_string(version), std::to_string(ModelDescription::kFormatVersion)});

    if (auto schema = document.find(kSchemaKey); schema != document.end())
        reader.text(*schema, Place() / kSchemaKey);
    modelFields().read(reader, document, Place(), *model,
                       {kSchemaKey, kFormatKey, kVersionKey, kFilesKey, kTemplateDataKey});
    std::vector<ModelFileDescription> files;
    if (auto list = document.find(kFilesKey); list != document.end()) {
        const Place place = Place() / kFilesKey;
        reader.expectArray(*list, place);
        for (std::size_t i = 0; i < list->size(); ++i) {
            ModelFileDescription file;
            fileFields().read(reader, (*list)[i], place / i, file);
            files.push_back(std::move(file));
        }
    }
    checkFileNames(reader, files);
    reader.runDeferred();
    checkGraphicalSources(reader, *model);
    checkTypeChains(reader, *model);
    checkModelReferences(reader, *model);

    ModelDescription result;
    result.model = std::move(model);
    result.files = std::move(files);
    if (auto data = document.find(kTemplateDataKey); data != document.end())
        result.templateData = data->dump();
    return result;
}

} // namespace

ModelDescription ModelDescription::load(const std::string& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) raise(key::kReadFailed, {path, "it is a directory"});
    errno = 0;
    std::ifstream in(path, std::ios::binary);
    if (!in) raise(key::kReadFailed, {path, systemError()});
    std::string text;
    try {
        text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    } catch (const std::exception& e) {
        raise(key::kReadFailed, {path, e.what()});
    }
    if (in.bad()) raise(key::kReadFailed, {path, systemError()});
    return parse(text, path);
}

ModelDescription ModelDescription::parse(const std::string& text, const std::string& sourceName) {
    try {
        return read(parseJson(text, sourceName), sourceName);
    } catch (const vel::diag::Exception& e) {
        if (isOurs(e)) throw;
        // The library refused something the checks let through.
        raise(key::kInvalidValue, {sourceName, kWholeDocument, e.diagnostic().message()});
    } catch (const std::exception& e) {
        raise(key::kInvalidValue, {sourceName, kWholeDocument, e.what()});
    }
}

std::string ModelDescription::toText(const CGModel& model, const std::vector<ModelFileDescription>& files) {
    try {
        DescriptionWriter writer(model);
        Json document = Json::object();
        document[kFormatKey] = kFormatName;
        document[kVersionKey] = kFormatVersion;
        const StoredCGModel defaults;
        Json fields = modelFields().write(writer, model, defaults, Place());
        for (auto& [field, value] : fields.items()) document[field] = std::move(value);
        Json list = Json::array();
        for (std::size_t i = 0; i < files.size(); ++i) {
            const ModelFileDescription none;
            if (const auto problem = plainFileNameProblem(files[i].name))
                writer.fail(Place() / kFilesKey / i / "name",
                            quotedName(files[i].name) + " is not a plain file name: " + *problem);
            list.push_back(fileFields().write(writer, files[i], none, Place() / kFilesKey / i));
        }
        if (!list.empty()) document[kFilesKey] = std::move(list);
        return printJson(document);
    } catch (const vel::diag::Exception& e) {
        if (isOurs(e)) throw;
        raise(key::kNotDescribable, {kWholeDocument, e.diagnostic().message()});
    } catch (const std::exception& e) {
        raise(key::kNotDescribable, {kWholeDocument, e.what()});
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
    if (!out) raise(key::kWriteFailed, {path, systemError()});
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
    out.close();
    if (!out) {
        const std::string reason = systemError();
        std::remove(temporary.c_str());
        raise(key::kWriteFailed, {path, reason});
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        const std::string reason = systemError();
        std::remove(temporary.c_str());
        raise(key::kWriteFailed, {path, reason});
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
