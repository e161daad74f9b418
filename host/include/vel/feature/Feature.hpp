#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "vel/HostExport.hpp"

namespace vel::feature {

// A feature switch of the host: a named integer setting that libraries
// declare at load time and read while they run. Every read through value()
// is counted, so a host can tell which switches a run consulted.
//
// The initial value is the declared default unless the environment variable
// VEL_FEATURE_<name> holds an integer, which then wins; any other text in
// that variable is kept aside for checkOverride(). set() changes the
// value for the rest of the process; reset() returns to the initial value.
// Reads and writes are thread-safe.
class VELHOST_API Feature {
public:
    Feature(std::string name, std::string description, std::string group, int defaultValue,
            std::string source = {});
    ~Feature();
    Feature(const Feature&) = delete;
    Feature& operator=(const Feature&) = delete;

    int value() const;
    // The value without counting a read, for tools that list switches.
    int peek() const { return value_.load(std::memory_order_acquire); }
    explicit operator int() const { return value(); }

    void set(int value);
    void reset();

    // Raises "Feature:InvalidOverride", naming the variable and its text,
    // when VEL_FEATURE_<name> held something other than an integer. Code
    // whose behaviour the switch selects calls it before acting, so that a
    // mistyped value is refused instead of silently ignored.
    void checkOverride() const;
    const std::string& rejectedOverride() const { return rejectedOverride_; }

    std::uint64_t readCount() const { return reads_.load(std::memory_order_relaxed); }
    void resetReadCount() { reads_.store(0, std::memory_order_relaxed); }

    const std::string& name() const { return name_; }
    const std::string& description() const { return description_; }
    const std::string& group() const { return group_; }
    const std::string& source() const { return source_; }
    int defaultValue() const { return default_; }
    int initialValue() const { return initial_; }

private:
    std::string name_;
    std::string description_;
    std::string group_;
    std::string source_;
    int default_;
    std::string rejectedOverride_;
    int initial_;
    std::atomic<int> value_;
    mutable std::atomic<std::uint64_t> reads_{0};
};

// The process-wide list of declared features. Declaring two features of one
// name raises "Feature:Duplicate".
class VELHOST_API Registry {
public:
    static Feature* find(const std::string& name);
    static std::vector<Feature*> all();

private:
    friend class Feature;
    static void add(Feature& feature);
    static void remove(Feature& feature);
};

// Sets a feature for the life of the object, then restores its old value.
class VELHOST_API ScopedValue {
public:
    ScopedValue(Feature& feature, int value);
    ~ScopedValue();
    ScopedValue(const ScopedValue&) = delete;
    ScopedValue& operator=(const ScopedValue&) = delete;

private:
    Feature& feature_;
    int saved_;
};

} // namespace vel::feature
