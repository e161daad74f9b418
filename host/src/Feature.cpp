#include "vel/feature/Feature.hpp"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <mutex>

#include "vel/diag/Diagnostic.hpp"

namespace vel::feature {

namespace {
struct RegistryData {
    std::mutex mutex;
    std::vector<Feature*> features; // in declaration order
};

RegistryData& registryData() {
    // Never destroyed: features of other libraries unregister during static
    // destruction, in an order this library does not control.
    static RegistryData* data = new RegistryData;
    return *data;
}

// VEL_FEATURE_<name>=<integer> overrides the declared default. Any other
// text leaves the default in force and is kept in `rejected`, so that the
// switch's users can refuse it (features are declared during static
// initialisation, where nothing may throw).
int initialValueFor(const std::string& name, int defaultValue, std::string& rejected) {
    const char* text = std::getenv(("VEL_FEATURE_" + name).c_str());
    if (!text || !*text) return defaultValue;
    char* end = nullptr;
    errno = 0;
    long v = std::strtol(text, &end, 10);
    if (errno != 0 || *end != '\0' || end == text || v < INT32_MIN || v > INT32_MAX) {
        rejected = text;
        return defaultValue;
    }
    return static_cast<int>(v);
}
} // namespace

Feature::Feature(std::string name, std::string description, std::string group, int defaultValue,
                 std::string source)
    : name_(std::move(name)),
      description_(std::move(description)),
      group_(std::move(group)),
      source_(std::move(source)),
      default_(defaultValue),
      initial_(initialValueFor(name_, defaultValue, rejectedOverride_)),
      value_(initial_) {
    Registry::add(*this);
}

Feature::~Feature() { Registry::remove(*this); }

int Feature::value() const {
    reads_.fetch_add(1, std::memory_order_relaxed);
    return value_.load(std::memory_order_acquire);
}

void Feature::checkOverride() const {
    if (rejectedOverride_.empty()) return;
    diag::throwErrorText("Feature:InvalidOverride",
                         "The environment variable VEL_FEATURE_" + name_ + " holds '" + rejectedOverride_ +
                             "', which is not an integer; set it to an integer or unset it.");
}

void Feature::set(int value) { value_.store(value, std::memory_order_release); }
void Feature::reset() { value_.store(initial_, std::memory_order_release); }

void Registry::add(Feature& feature) {
    auto& data = registryData();
    std::lock_guard lock(data.mutex);
    for (Feature* f : data.features) {
        if (f->name() == feature.name())
            diag::throwErrorText("Feature:Duplicate",
                                 "A feature named '" + feature.name() + "' is already declared.");
    }
    data.features.push_back(&feature);
}

void Registry::remove(Feature& feature) {
    auto& data = registryData();
    std::lock_guard lock(data.mutex);
    data.features.erase(std::remove(data.features.begin(), data.features.end(), &feature),
                        data.features.end());
}

Feature* Registry::find(const std::string& name) {
    auto& data = registryData();
    std::lock_guard lock(data.mutex);
    for (Feature* f : data.features)
        if (f->name() == name) return f;
    return nullptr;
}

std::vector<Feature*> Registry::all() {
    auto& data = registryData();
    std::lock_guard lock(data.mutex);
    return data.features;
}

ScopedValue::ScopedValue(Feature& feature, int value) : feature_(feature), saved_(feature.peek()) {
    feature_.set(value);
}

ScopedValue::~ScopedValue() { feature_.set(saved_); }

} // namespace vel::feature
