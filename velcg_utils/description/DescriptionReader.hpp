#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "description/Json.hpp"

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

    DescriptionReader(const Json& document, std::string sourceName, StoredCGModel& model);
    ~DescriptionReader();
    DescriptionReader(const DescriptionReader&) = delete;
    DescriptionReader& operator=(const DescriptionReader&) = delete;

    const std::string& sourceName() const { return sourceName_; }
    StoredCGModel& model() { return model_; }
    CGModelFactory& factory() { return *factory_; }

    // Raises "VelCG:ModelDescription:<key>" with the source name, the place
    // and the further arguments of the key's template.
    [[noreturn]] void fail(const char* key, const Place& place, std::vector<std::string> more = {}) const;
    // InvalidValue with a reason.
    [[noreturn]] void invalid(const Place& place, const std::string& reason) const;

    void expectObject(const Json& value, const Place& place) const;
    void expectArray(const Json& value, const Place& place) const;
    // Raises UnknownField for the first key of object that is not known,
    // suggesting the known keys nearest to it.
    void checkKnown(const Json& object, const Place& place, const std::vector<std::string>& known) const;
    // The field, or MissingField.
    const Json& required(const Json& object, const Place& place, const char* key) const;

    bool boolean(const Json& value, const Place& place) const;
    std::int32_t int32(const Json& value, const Place& place) const;
    std::uint32_t uint32(const Json& value, const Place& place) const;
    std::int64_t int64(const Json& value, const Place& place) const;
    double real(const Json& value, const Place& place) const;
    std::string text(const Json& value, const Place& place) const;
    std::wstring wide(const Json& value, const Place& place) const;
    std::vector<int> int32s(const Json& value, const Place& place) const;
    std::vector<std::string> texts(const Json& value, const Place& place) const;
    std::vector<std::wstring> wides(const Json& value, const Place& place) const;

    template <class E>
    E enumeration(const Json& value, const Place& place, const Enumeration<E>& names) const {
        const std::string name = text(value, place);
        for (const auto& [candidate, enumerator] : names)
            if (name == candidate) return enumerator;
        unknownEnumerator(place, name, namesOf(names));
    }

    // An index into one of the model's lists, checked against the length
    // that list has in the document; -1 too when noneAllowed.
    int index(const Json& value, const Place& place, ListKind list, bool noneAllowed) const;
    // DanglingReference unless 0 <= index < size (or index is -1 and
    // noneAllowed); what names the list in the message.
    void checkIndex(std::int64_t index, const Place& place, const std::string& list, std::size_t size,
                    bool noneAllowed = false) const;
    // The length of the list in the document; 0 when it is absent.
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

    // Function names recorded so far, each with the place that names it.
    std::map<std::string, Place>& functionNames() { return functionNames_; }
    // The child subsystems a subsystem's description lists, with their
    // place, until the block hierarchy map is finalized.
    std::map<const GraphicalSubsystem*, std::pair<Place, std::vector<int>>>& declaredChildren() {
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
    [[noreturn]] void wrongType(const Json& value, const Place& place, const char* expected) const;
    std::int64_t integer(const Json& value, const Place& place, std::int64_t low, std::int64_t high) const;

    const Json& document_;
    std::string sourceName_;
    StoredCGModel& model_;
    std::unique_ptr<CGModelFactory> factory_;
    std::vector<std::function<void()>> deferred_;
    std::map<std::string, Place> functionNames_;
    std::map<const GraphicalSubsystem*, std::pair<Place, std::vector<int>>> declaredChildren_;
    int depth_ = 0;
};

} // namespace VelCG::description
