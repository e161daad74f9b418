#include "coder/descriptor/Dump.hpp"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <vector>

#include "coder/Messages.hpp"
#include "coder/ReadTransaction.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/Model.hpp"
#include "coder/descriptor/RepositoryHelper.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace coder::descriptor {

namespace {

// Deep enough for any real model; a damaged store cannot exhaust the stack.
constexpr std::size_t kMaxDepth = 512;

// What a dump makes of the parts of the records, in the order of the walk.
class Sink {
public:
    virtual ~Sink() = default;
    // A record entered: its fields and sequences follow, then endRecord().
    virtual void beginRecord(const RecordKind& kind) = 0;
    virtual void endRecord() = 0;
    // A record that is one of its own ancestors: not entered.
    virtual void cycle(const RecordKind& kind) = 0;
    // A field; when its value is a record, that record follows.
    virtual void field(const FieldInfo& info, const FieldValue& value) = 0;
    // A sequence of size elements, each given by element() (and followed by
    // its record, for a sequence of records), then endSequence().
    virtual void beginSequence(const SequenceInfo& info, std::size_t size) = 0;
    virtual void element(std::size_t position, const FieldValue& value) = 0;
    virtual void endSequence() = 0;
};

// The walk of every dump: one record and, depth first, all it holds.
class Walker {
public:
    explicit Walker(Sink& sink) : sink_(sink) {}

    void record(const Object& object) {
        const RecordKind& kind = *object.getKind();
        for (const Object& ancestor : path_) {
            if (ancestor == object) return sink_.cycle(kind);
        }
        if (path_.size() >= kMaxDepth)
            vel::diag::throwError(coder::messages::descriptor::TooDeep, {std::to_string(kMaxDepth)});
        path_.push_back(object);
        sink_.beginRecord(kind);
        const std::vector<FieldValue> fields = object.getFields();
        for (std::size_t i = 0; i < kind.fields.size(); ++i) {
            sink_.field(kind.fields[i], fields[i]);
            if (auto* target = std::get_if<Object>(&fields[i])) record(*target);
        }
        for (std::size_t s = 0; s < kind.sequences.size(); ++s) {
            const std::size_t size = object.getSequenceSize(s);
            sink_.beginSequence(kind.sequences[s], size);
            for (std::size_t p = 0; p < size; ++p) {
                const FieldValue element = object.getSequenceElement(s, p);
                sink_.element(p, element);
                if (auto* target = std::get_if<Object>(&element)) record(*target);
            }
            sink_.endSequence();
        }
        sink_.endRecord();
        path_.pop_back();
    }

private:
    Sink& sink_;
    std::vector<Object> path_;
};

std::string realText(double value) {
    char buffer[64];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

class TextSink : public Sink {
public:
    std::string take() { return std::move(out_); }

    void beginRecord(const RecordKind& kind) override {
        out_ += kind.name;
        out_ += '\n';
        records_.push_back({next_, false});
    }
    void endRecord() override { records_.pop_back(); }
    void cycle(const RecordKind& kind) override {
        out_ += kind.name;
        out_ += " (cycle)\n";
    }
    void field(const FieldInfo& info, const FieldValue& value) override {
        next_ = records_.back().indent + 2;
        line(next_, info.name);
        if (std::holds_alternative<Object>(value)) return;
        out_ += scalar(value, info.type == FieldType::Reference ? "(none)" : "(absent)");
        out_ += '\n';
    }
    void beginSequence(const SequenceInfo& info, std::size_t size) override {
        Open& open = records_.back();
        line(open.indent + 2, info.name);
        open.listsRecords = info.element && size > 0;
        out_ += open.listsRecords ? "[" + std::to_string(size) + "]\n" : "[";
    }
    void element(std::size_t position, const FieldValue& value) override {
        const Open& open = records_.back();
        if (!open.listsRecords) {
            out_ += (position ? ", " : "") + scalar(value, "");
            return;
        }
        next_ = open.indent + 4;
        out_.append(next_, ' ');
        out_ += "[" + std::to_string(position) + "] ";
    }
    void endSequence() override {
        if (!records_.back().listsRecords) out_ += "]\n";
    }

private:
    struct Open {
        std::size_t indent;
        bool listsRecords; // the sequence being written holds records
    };

    void line(std::size_t indent, const char* name) {
        out_.append(indent, ' ');
        out_ += name;
        out_ += ": ";
    }

    static std::string scalar(const FieldValue& value, const char* unset) {
        if (auto* b = std::get_if<bool>(&value)) return *b ? "true" : "false";
        if (auto* n = std::get_if<std::int64_t>(&value)) return std::to_string(*n);
        if (auto* r = std::get_if<double>(&value)) return realText(*r);
        if (auto* t = std::get_if<ustring>(&value)) return quoteText(vel::i18n::toUtf8(*t));
        return unset;
    }

    std::string out_;
    std::vector<Open> records_;
    // The indent of the next record entered.
    std::size_t next_ = 0;
};

class JsonSink : public Sink {
public:
    using Json = nlohmann::ordered_json;

    Json take() { return std::move(result_); }

    void beginRecord(const RecordKind& kind) override {
        records_.emplace_back();
        records_.back().object["kind"] = kind.name;
    }
    void endRecord() override {
        Json done = std::move(records_.back().object);
        records_.pop_back();
        place(std::move(done));
    }
    void cycle(const RecordKind& kind) override {
        Json marked = Json::object();
        marked["kind"] = kind.name;
        marked["cycle"] = true;
        place(std::move(marked));
    }
    void field(const FieldInfo& info, const FieldValue& value) override {
        Open& open = records_.back();
        if (std::holds_alternative<Object>(value))
            open.name = info.name;
        else
            open.object[info.name] = scalar(value);
    }
    void beginSequence(const SequenceInfo& info, std::size_t) override {
        Open& open = records_.back();
        open.name = info.name;
        open.elements = Json::array();
        open.inSequence = true;
    }
    void element(std::size_t, const FieldValue& value) override {
        if (!std::holds_alternative<Object>(value)) records_.back().elements.push_back(scalar(value));
    }
    void endSequence() override {
        Open& open = records_.back();
        open.object[open.name] = std::move(open.elements);
        open.inSequence = false;
    }

private:
    struct Open {
        Json object = Json::object();
        // The field or sequence that a record entered next belongs to.
        std::string name;
        Json elements;
        bool inSequence = false;
    };

    void place(Json record) {
        if (records_.empty())
            result_ = std::move(record);
        else if (records_.back().inSequence)
            records_.back().elements.push_back(std::move(record));
        else
            records_.back().object[records_.back().name] = std::move(record);
    }

    static Json scalar(const FieldValue& value) {
        if (auto* b = std::get_if<bool>(&value)) return *b;
        if (auto* n = std::get_if<std::int64_t>(&value)) return *n;
        if (auto* r = std::get_if<double>(&value)) {
            if (std::isfinite(*r)) return *r;
            // JSON has no numbers for these; null would read as absent.
            return std::isnan(*r) ? "NaN" : *r > 0 ? "Infinity" : "-Infinity";
        }
        if (auto* t = std::get_if<ustring>(&value)) return vel::i18n::toUtf8(*t);
        return nullptr;
    }

    std::vector<Open> records_;
    Json result_;
};

void walk(const Object& record, Sink& sink) {
    if (record.isNull()) vel::diag::throwError(coder::messages::descriptor::NullObject, {});
    Walker(sink).record(record);
}

} // namespace

std::string quoteText(const std::string& utf8) {
    std::string out = "\"";
    for (unsigned char c : utf8) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                if (c < 0x20) {
                    char escape[8];
                    std::snprintf(escape, sizeof escape, "\\u%04x", c);
                    out += escape;
                } else {
                    out += static_cast<char>(c);
                }
        }
    }
    return out + "\"";
}

std::string dumpText(const Object& record) {
    TextSink sink;
    walk(record, sink);
    return sink.take();
}

std::string dumpJson(const Object& record) {
    JsonSink sink;
    walk(record, sink);
    return sink.take().dump(2) + "\n";
}

std::string dumpText(Repository& repository) {
    ReadTransaction view(repository);
    return dumpText(RepositoryHelper::getModel(repository));
}

std::string dumpJson(Repository& repository) {
    ReadTransaction view(repository);
    return dumpJson(RepositoryHelper::getModel(repository));
}

} // namespace coder::descriptor
