#include "coder/descriptor/Dump.hpp"

#include <charconv>
#include <cstdio>
#include <vector>

#include "coder/ReadTransaction.hpp"
#include "coder/Repository.hpp"
#include "coder/descriptor/Model.hpp"
#include "coder/descriptor/RepositoryHelper.hpp"
#include "vel/diag/Diagnostic.hpp"

namespace coder::descriptor {

namespace {

// Deep enough for any real model; a damaged store cannot exhaust the stack.
constexpr std::size_t kMaxDepth = 512;

std::string realText(double value) {
    char buffer[64];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

class TextDumper {
public:
    std::string take() { return std::move(out_); }

    void record(const Object& object, std::size_t indent) {
        out_ += object.getKind()->name;
        for (const Object& ancestor : path_) {
            if (ancestor == object) {
                out_ += " (cycle)\n";
                return;
            }
        }
        if (path_.size() >= kMaxDepth)
            vel::diag::throwError("coder:descriptor:TooDeep", {std::to_string(kMaxDepth)});
        out_ += '\n';
        path_.push_back(object);
        const RecordKind& kind = *object.getKind();
        std::vector<FieldValue> fields = object.getFields();
        for (std::size_t i = 0; i < kind.fields.size(); ++i) {
            line(indent + 2, kind.fields[i].name);
            FieldValue& value = fields[i];
            if (auto* target = std::get_if<Object>(&value)) {
                record(*target, indent + 2);
            } else {
                out_ += scalar(value, kind.fields[i].type == FieldType::Reference ? "(none)" : "(absent)");
                out_ += '\n';
            }
        }
        for (std::size_t s = 0; s < kind.sequences.size(); ++s) {
            const std::size_t size = object.getSequenceSize(s);
            line(indent + 2, kind.sequences[s].name);
            if (kind.sequences[s].element && size > 0) {
                out_ += "[" + std::to_string(size) + "]\n";
                for (std::size_t p = 0; p < size; ++p) {
                    out_.append(indent + 4, ' ');
                    out_ += "[" + std::to_string(p) + "] ";
                    record(std::get<Object>(object.getSequenceElement(s, p)), indent + 4);
                }
            } else {
                out_ += '[';
                for (std::size_t p = 0; p < size; ++p)
                    out_ += (p ? ", " : "") + scalar(object.getSequenceElement(s, p), "");
                out_ += "]\n";
            }
        }
        path_.pop_back();
    }

private:
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
    std::vector<Object> path_;
};

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
    if (record.isNull()) vel::diag::throwError("coder:descriptor:NullObject", {});
    TextDumper dumper;
    dumper.record(record, 0);
    return dumper.take();
}

std::string dumpText(Repository& repository) {
    ReadTransaction view(repository);
    return dumpText(RepositoryHelper::getModel(repository));
}

} // namespace coder::descriptor
