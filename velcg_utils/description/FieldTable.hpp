#pragma once

// The fields of one kind of object in a model description, each named once
// and read and written through the same entry: a key, how to get its value
// from a model object as JSON (for the writer) and how to set it on the
// object being built from JSON (for the reader).
//
// Source is the type the writer reads (often const, or the interface a
// derived class implements), Target the type the reader builds (often the
// field-backed class deriving from Source).

#include <algorithm>
#include <bitset>
#include <cassert>
#include <cstdint>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "description/DescriptionReader.hpp"
#include "description/DescriptionWriter.hpp"
#include "description/Diagnostics.hpp"
#include "description/Json.hpp"
#include "description/JsonDocument.hpp"

namespace VelCG::description {

template <class Target, class Source>
class FieldTable {
public:
    using Get = std::function<Json(DescriptionWriter&, Source&, const Place&)>;
    using Set = std::function<void(DescriptionReader&, JsonValue, const Place&, Target&)>;

    // A field of any shape. The writer omits a field whose value equals the
    // value of the same field of the defaults object; a null value counts
    // as absent.
    FieldTable& field(const char* key, Get get, Set set) {
        fields_.push_back(Field{key, std::strlen(key), false, std::move(get), std::move(set)});
        assert(fields_.size() <= kMaxFields && "a table of at most kMaxFields fields");
        return *this;
    }
    // Makes the field added last one that must be present; it is always
    // written.
    FieldTable& required() {
        fields_.back().required = true;
        return *this;
    }

    // Typed fields. get is called with the source (a member function
    // pointer or a callable), set with the target and the converted value.
    template <class G, class S>
    FieldTable& text(const char* key, G get, S set) {
        return field(key, getter<G>(get, &DescriptionWriter::text), setter<S>(set, &DescriptionReader::text));
    }
    template <class G, class S>
    FieldTable& wide(const char* key, G get, S set) {
        return field(key, getter<G>(get, &DescriptionWriter::wide), setter<S>(set, &DescriptionReader::wide));
    }
    template <class G, class S>
    FieldTable& texts(const char* key, G get, S set) {
        return field(key, getter<G>(get, &DescriptionWriter::texts),
                     setter<S>(set, &DescriptionReader::texts));
    }
    template <class G, class S>
    FieldTable& wides(const char* key, G get, S set) {
        return field(key, getter<G>(get, &DescriptionWriter::wides),
                     setter<S>(set, &DescriptionReader::wides));
    }
    template <class G, class S>
    FieldTable& real(const char* key, G get, S set) {
        return field(key, getter<G>(get, &DescriptionWriter::real), setter<S>(set, &DescriptionReader::real));
    }
    template <class G, class S>
    FieldTable& boolean(const char* key, G get, S set) {
        return field(key, plainGetter<G>(get), setter<S>(set, &DescriptionReader::boolean));
    }
    template <class G, class S>
    FieldTable& int32(const char* key, G get, S set) {
        return field(key, plainGetter<G>(get), setter<S>(set, &DescriptionReader::int32));
    }
    template <class G, class S>
    FieldTable& uint32(const char* key, G get, S set) {
        return field(key, plainGetter<G>(get), setter<S>(set, &DescriptionReader::uint32));
    }
    template <class G, class S>
    FieldTable& int64(const char* key, G get, S set) {
        return field(key, plainGetter<G>(get), setter<S>(set, &DescriptionReader::int64));
    }
    template <class G, class S>
    FieldTable& int32s(const char* key, G get, S set) {
        return field(key, plainGetter<G>(get), setter<S>(set, &DescriptionReader::int32s));
    }
    template <class E, class G, class S>
    FieldTable& enumeration(const char* key, const Enumeration<E>& names, G get, S set) {
        return field(
            key,
            [get, &names](DescriptionWriter& w, Source& s, const Place& p) {
                return w.enumeration<E>(std::invoke(get, s), p, names);
            },
            [set, &names](DescriptionReader& r, JsonValue v, const Place& p, Target& t) {
                std::invoke(set, t, r.enumeration<E>(v, p, names));
            });
    }
    // An index into one of the model's lists (-1 for none when noneAllowed).
    template <class G, class S>
    FieldTable& index(const char* key, ListKind list, bool noneAllowed, G get, S set) {
        return field(key, plainGetter<G>(get),
                     [set, list, noneAllowed](DescriptionReader& r, JsonValue v, const Place& p, Target& t) {
                         std::invoke(set, t, r.index(v, p, list, noneAllowed));
                     });
    }
    // A list of indices into one of the model's lists.
    template <class G, class S>
    FieldTable& indices(const char* key, ListKind list, G get, S set) {
        return field(key, plainGetter<G>(get),
                     [set, list](DescriptionReader& r, JsonValue v, const Place& p, Target& t) {
                         const JsonArray elements = r.array(v, p);
                         std::vector<int> values;
                         values.reserve(sizeOf(elements));
                         for (const JsonValue element : elements)
                             values.push_back(r.index(element, p / values.size(), list, false));
                         std::invoke(set, t, values);
                     });
    }
    // A list of objects: elements(source) gives the elements (pointers or
    // references), write(writer, element, place) one element's JSON,
    // read(reader, json, place, target) reads one element into the target.
    template <class Elements, class Write, class Read>
    FieldTable& list(const char* key, Elements elements, Write write, Read read) {
        return field(
            key,
            [elements, write](DescriptionWriter& w, Source& s, const Place& p) {
                Json out = Json::array();
                std::size_t i = 0;
                for (auto&& element : std::invoke(elements, s)) {
                    out.push_back(write(w, element, p / i));
                    ++i;
                }
                return out;
            },
            [read](DescriptionReader& r, JsonValue v, const Place& p, Target& t) {
                std::size_t i = 0;
                for (const JsonValue element : r.array(v, p)) read(r, element, p / i++, t);
            });
    }

    // Reads the fields of object into target, in table order. Keys the
    // table does not know raise UnknownField, except those in alsoKnown
    // (which the caller reads); a key named twice raises DuplicateField; a
    // missing required field raises MissingField.
    void read(DescriptionReader& reader, JsonValue value, const Place& place, Target& target,
              const std::vector<std::string>& alsoKnown = {}) const {
        const JsonObject object = reader.object(value, place);
        // First every key is matched with its field, so that an unknown key
        // is reported before any field is read; the value of each is kept
        // for the reading. The search for a key starts after the field of
        // the key before it: keys mostly come in table order.
        std::bitset<kMaxFields + kMaxAlsoKnown> seen;
        // Left unset but for the fields seen, and never destroyed.
        static_assert(std::is_trivially_destructible_v<JsonValue>);
        union Slot {
            Slot() {}
            JsonValue value;
        } values[kMaxFields];
        std::size_t next = 0;
        for (auto it = object.begin(); it != object.end(); ++it) {
            const std::string_view name = it.key();
            std::size_t f = find(name, next);
            if (f == kNone) f = findAlsoKnown(name, alsoKnown);
            if (f == kNone) reader.unknownField(place, name, knownNames(alsoKnown));
            if (seen[f]) reader.fail(messages::ModelDescription::DuplicateField, place / name);
            seen[f] = true;
            if (f >= fields_.size()) continue;
            new (&values[f].value) JsonValue(it.value());
            next = f + 1;
        }
        // Then the fields are read in table order.
        for (std::size_t f = 0; f < fields_.size(); ++f) {
            const Field& field = fields_[f];
            if (!seen[f]) {
                if (field.required) reader.required(value, place, field.key);
                continue;
            }
            field.set(reader, values[f].value, place / std::string_view(field.key, field.length), target);
        }
    }

    // The fields of source that differ from those of defaults, and every
    // required field, in table order.
    Json write(DescriptionWriter& writer, Source& source, Source& defaults, const Place& place) const {
        Json out = Json::object();
        for (const Field& f : fields_) {
            Json value = f.get(writer, source, place / f.key);
            if (f.required || (!value.is_null() && value != f.get(writer, defaults, place / f.key)))
                out[f.key] = std::move(value);
        }
        return out;
    }

private:
    // Bounds of a table, for the set of keys an object names.
    static constexpr std::size_t kMaxFields = 64;
    static constexpr std::size_t kMaxAlsoKnown = 8;
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    struct Field {
        const char* key;
        std::size_t length;
        bool required;
        Get get;
        Set set;
    };

    // The field named key, searched from start on and then from the first
    // field; kNone when there is none.
    std::size_t find(std::string_view key, std::size_t start) const {
        const std::size_t n = fields_.size();
        for (std::size_t k = 0; k < n; ++k) {
            const std::size_t f = start + k < n ? start + k : start + k - n;
            const Field& field = fields_[f];
            if (field.length == key.size() && std::equal(key.begin(), key.end(), field.key)) return f;
        }
        return kNone;
    }
    // fields_.size() + the position of key in alsoKnown, or kNone.
    std::size_t findAlsoKnown(std::string_view key, const std::vector<std::string>& alsoKnown) const {
        assert(alsoKnown.size() <= kMaxAlsoKnown && "at most kMaxAlsoKnown keys read by the caller");
        for (std::size_t k = 0; k < alsoKnown.size(); ++k)
            if (alsoKnown[k] == key) return fields_.size() + k;
        return kNone;
    }
    // The keys an object may have, as messages list them.
    std::vector<std::string> knownNames(const std::vector<std::string>& alsoKnown) const {
        std::vector<std::string> known = alsoKnown;
        for (const Field& f : fields_) known.push_back(f.key);
        return known;
    }

    template <class G>
    static Get plainGetter(G get) {
        return [get](DescriptionWriter&, Source& s, const Place&) { return Json(std::invoke(get, s)); };
    }
    template <class G, class Convert>
    static Get getter(G get, Convert convert) {
        return [get, convert](DescriptionWriter& w, Source& s, const Place& p) {
            return (w.*convert)(std::invoke(get, s), p);
        };
    }
    template <class S, class Convert>
    static Set setter(S set, Convert convert) {
        return [set, convert](DescriptionReader& r, JsonValue v, const Place& p, Target& t) {
            std::invoke(set, t, (r.*convert)(v, p));
        };
    }

    std::vector<Field> fields_;
};

} // namespace VelCG::description
