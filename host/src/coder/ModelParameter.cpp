#include "coder/descriptor/ModelParameter.hpp"

#include <cstdint>

#include "coder/Repository.hpp"

namespace coder::descriptor {

namespace {
enum Field : std::size_t {
    kName,
    kOriginalName,
    kAlias,
    kTunable,
    kWorkspaceVariable,
    kWorkspaceVariableName,
    kGraphicalSourceSID
};
enum List : std::size_t { kGraphicalReferencesSIDList };
} // namespace

const RecordKind& ModelParameter::kind() {
    static const RecordKind kind{
        "ModelParameter",
        {
            {"Name", FieldType::Text, false, nullptr, 0, 0},
            {"OriginalName", FieldType::Text, false, nullptr, 0, 0},
            {"Alias", FieldType::Boolean, false, nullptr, 0, 0},
            {"Tunable", FieldType::Boolean, false, nullptr, 0, 0},
            {"WorkspaceVariable", FieldType::Boolean, false, nullptr, 0, 0},
            {"WorkspaceVariableName", FieldType::Text, false, nullptr, 0, 0},
            {"GraphicalSourceSID", FieldType::Text, true, nullptr, 0, 0},
        },
        {
            {"GraphicalReferencesSID", nullptr, FieldType::Text},
        },
    };
    return kind;
}

ustring ModelParameter::getName() const { return text(kName); }
ustring ModelParameter::getOriginalName() const { return text(kOriginalName); }
bool ModelParameter::getAlias() const { return boolean(kAlias); }
bool ModelParameter::getTunable() const { return boolean(kTunable); }
bool ModelParameter::getWorkspaceVariable() const { return boolean(kWorkspaceVariable); }
ustring ModelParameter::getWorkspaceVariableName() const { return text(kWorkspaceVariableName); }
bool ModelParameter::hasGraphicalSourceSID() const { return has(kGraphicalSourceSID); }
ustring ModelParameter::getGraphicalSourceSID() const { return text(kGraphicalSourceSID); }
Sequence<StringListElement> ModelParameter::getGraphicalReferencesSID() const {
    return Sequence<StringListElement>(sequence(kGraphicalReferencesSIDList));
}

ModelParameterCreator::ModelParameterCreator(Repository& repository)
    : Creator(repository, ModelParameter::kind()) {}

void ModelParameterCreator::setName(const ustring& value) { setText(kName, value); }
void ModelParameterCreator::setOriginalName(const ustring& value) { setText(kOriginalName, value); }
void ModelParameterCreator::setAlias(bool value) { setBoolean(kAlias, value); }
void ModelParameterCreator::setTunable(bool value) { setBoolean(kTunable, value); }
void ModelParameterCreator::setWorkspaceVariable(bool value) { setBoolean(kWorkspaceVariable, value); }
void ModelParameterCreator::setWorkspaceVariableName(const ustring& value) {
    setText(kWorkspaceVariableName, value);
}
void ModelParameterCreator::setGraphicalSourceSID(const ustring& value) {
    setText(kGraphicalSourceSID, value);
}

ModelParameter ModelParameterCreator::createModelParameter() { return objectAs<ModelParameter>(create()); }

} // namespace coder::descriptor
