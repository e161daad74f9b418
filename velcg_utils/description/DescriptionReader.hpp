#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "description/Json.hpp"
#include "description/JsonDocument.hpp"
#include "velcg/StoredGraphicalBlock.hpp"

namespace VelCG {
class CGModelFactory;
class GraphicalSubsystem;
class StoredCGModel;
} // namespace VelCG

namespace VelCG::description {

// The names of an enumeration as the description spells them.
template <class E>
using Enumeration = std::vector<std::pair<const char*, E>>;

// The lists of the model that descriptions refer into by index.
enum class ListKind { Systems, VelTypes, CGTypes, VarGroups, ModelParameters, CoderDataGroups, Subsystems };
inline constexpr std::size_t kListKinds = static_cast<std::size_t>(ListKind::Subsystems) + 1;

// The state of one reading of a description: the document, the model being
// built, and the checks that wait until the whole document is read. Every
// conversion checks the JSON type and range of the value and raises a
// "VelCG:ModelDescription:" diagnostic naming the place otherwise.
class DescriptionReader {
public:
    // Documents nest deeper than this only through recursion that no model
    // needs (bus leaves, type descriptions); deeper input is refused rather
    // than exhausting the stack.
    static constexpr int kMaxDepth = 64;

    DescriptionReader(JsonValue document, std::string sourceName, StoredCGModel& model);
    ~DescriptionReader();
    DescriptionReader(const DescriptionReader&) = delete;
    DescriptionReader& operator=(const DescriptionReader&) = delete;

    const std::string& sourceName() const { return sourceName_; }
    StoredCGModel& model() { return model_; }
    CGModelFactory& factory() { return *factory_; }

    // Raises identifier (one of messages::ModelDescription) with the source
    // name, the place and the further arguments of its template.
    [[noreturn]] void fail(const char* identifier, const Place& place,
                           std::vector<std::string> more = {}) const;
    // InvalidValue with a reason.
    [[noreturn]] void invalid(const Place& place, const std::string& reason) const;
    // UnknownField for key of the object at place, suggesting the known
    // keys nearest to it.
    [[noreturn]] void unknownField(const Place& place, std::string_view key,
                                   const std::vector<std::string>& known) const;

    JsonObject object(JsonValue value, const Place& place) const {
        if (value.type() != simdjson::dom::element_type::OBJECT) wrongType(value, place, "an object");
        return value.get_object().value_unsafe();
    }
    JsonArray array(JsonValue value, const Place& place) const {
        if (value.type() != simdjson::dom::element_type::ARRAY) wrongType(value, place, "an array");
        return value.get_array().value_unsafe();
    }
    void expectObject(JsonValue value, const Place& place) const { object(value, place); }
    void expectArray(JsonValue value, const Place& place) const { array(value, place); }
    // Raises UnknownField for the first key of object that is not known,
    // and DuplicateField for a key named twice.
    void checkKnown(JsonValue object, const Place& place, const std::vector<std::string>& known) const;
    // The field, or MissingField. REQUIRES: object is an object.
    JsonValue required(JsonValue object, const Place& place, const char* key) const;
    // Whether the object has the field, and then its value in value.
    // REQUIRES: object is an object.
    static bool find(JsonValue object, std::string_view key, JsonValue& value);

    bool boolean(JsonValue value, const Place& place) const {
        if (value.type() != simdjson::dom::element_type::BOOL) wrongType(value, place, "a boolean");
        return value.get_bool().value_unsafe();
    }
    std::int32_t int32(JsonValue value, const Place& place) const;
    std::uint32_t uint32(JsonValue value, const Place& place) const;
    std::int64_t int64(JsonValue value, const Place& place) const;
    double real(JsonValue value, const Place& place) const;
    std::string text(JsonValue value, const Place& place) const;
    // The text without a copy, valid while the document lives.
    std::string_view textView(JsonValue value, const Place& place) const {
        if (value.type() != simdjson::dom::element_type::STRING) wrongType(value, place, "a string");
        return value.get_string().value_unsafe();
    }
    std::wstring wide(JsonValue value, const Place& place) const;
    std::vector<int> int32s(JsonValue value, const Place& place) const;
    std::vector<std::string> texts(JsonValue value, const Place& place) const;
    std::vector<std::wstring> wides(JsonValue value, const Place& place) const;

    template <class E>
    E enumeration(JsonValue value, const Place& place, const Enumeration<E>& names) const {
        const std::string_view name = textView(value, place);
        for (const auto& [candidate, enumerator] : names)
            if (name == candidate) return enumerator;
        unknownEnumerator(place, std::string(name), namesOf(names));
    }

    // An index into one of the model's lists, checked against the length
    // that list has in the document; -1 too when noneAllowed.
    int index(JsonValue value, const Place& place, ListKind list, bool noneAllowed) const;
    // DanglingReference unless 0 <= index < size (or index is -1 and
    // noneAllowed); what names the list in the message.
    void checkIndex(std::int64_t index, const Place& place, const std::string& list, std::size_t size,
                    bool noneAllowed = false) const;
    // The length of the list in the document; 0 when it is absent. Counted
    // once per list.
    std::size_t listSize(ListKind list) const;
    static const char* listPointer(ListKind list);

    // Runs check once the whole document is read, in the order deferred.
    void defer(std::function<void()> check) { deferred_.push_back(std::move(check)); }
    void runDeferred();

    // Counts one level of recursion for the lifetime of the object.
    class Nesting {
    public:
        Nesting(DescriptionReader& reader, const Place& place);
        ~Nesting() { --reader_.depth_; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

    private:
        DescriptionReader& reader_;
    };

    // The text fields of the block being read, kept until it is read and
    // then set at once (readBlock).
    void keepBlockText(StoredGraphicalBlock::TextField field, std::string_view text) {
        assert(blockTextCount_ < std::size(blockTexts_) && "each text field once per block");
        blockTexts_[blockTextCount_++] = {field, text};
    }
    void setBlockTexts(StoredGraphicalBlock& block) {
        block.setTexts(blockTexts_, blockTextCount_);
        blockTextCount_ = 0;
    }

    // Whether a data output port with a graphical source was read: only
    // then can sources form a cycle.
    void noteOutputPortSource() { outputPortSources_ = true; }
    bool outputPortSources() const { return outputPortSources_; }

    // Function names recorded so far, each with the pointer that names it.
    std::map<std::string, std::string>& functionNames() { return functionNames_; }
    // The child subsystems a subsystem's description lists, with their
    // pointer, until the block hierarchy map is finalized.
    std::map<const GraphicalSubsystem*, std::pair<std::string, std::vector<int>>>& declaredChildren() {
        return declaredChildren_;
    }

private:
    template <class E>
    static std::vector<const char*> namesOf(const Enumeration<E>& names) {
        std::vector<const char*> out;
        for (const auto& entry : names) out.push_back(entry.first);
        return out;
    }
    [[noreturn]] void unknownEnumerator(const Place& place, const std::string& name,
                                        const std::vector<const char*>& names) const;
    [[noreturn]] void wrongType(JsonValue value, const Place& place, const char* expected) const;
    std::int64_t integer(JsonValue value, const Place& place, std::int64_t low, std::int64_t high) const;

    JsonValue document_;
    std::string sourceName_;
    StoredCGModel& model_;
    std::unique_ptr<CGModelFactory> factory_;
    std::vector<std::function<void()>> deferred_;
    std::map<std::string, std::string> functionNames_;
    std::map<const GraphicalSubsystem*, std::pair<std::string, std::vector<int>>> declaredChildren_;
    // One per text field, as a block names each once.
    StoredGraphicalBlock::TextValue
        blockTexts_[static_cast<std::size_t>(StoredGraphicalBlock::TextField::ReferencedModelName) + 1];
    std::size_t blockTextCount_ = 0;
    bool outputPortSources_ = false;
    // The lengths of the lists plus one, by ListKind; 0 until counted.
    mutable std::size_t listSizes_[kListKinds] = {};
    int depth_ = 0;
};

} // namespace VelCG::description
