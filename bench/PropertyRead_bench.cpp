// Reading one property of a native object by name through the object-system
// client, against calling the same getter directly and converting its
// result to a host value the same way (HostTraits<R>::toArray): the
// difference is what the lookup by name costs. Properties of a VelCGType:
// "Name" (text), "NBits" (int32), "IsSigned" (bool) and "Slope" (double).
//
//   BM_ClientGetProperty/<prop>         client.getProperty(ref, "<prop>")
//   BM_DirectGetterConversion/<prop>    HostTraits<R>::toArray(type.get<prop>())
//
// Converting a scalar to a host value, against the cheapest correct way to
// make such a value: one reference-counted heap object holding the class,
// the dimensions and the value.
//
//   BM_ScalarConversion/<kind>          HostTraits<T>::toArray(value)
//   BM_ScalarConstructionLimit/<kind>   std::make_shared of that object
//
// Every result is released inside the loop, so each figure includes freeing it.
#include <benchmark/benchmark.h>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "korb/Client.hpp"
#include "korb/HostTraits.hpp"
#include "korb/ObjectSystem.hpp"
#include "velcg/PlexoModule.hpp"
#include "velcg/VelCGType.hpp"

namespace {

VelCG::VelCGType& type() {
    static VelCG::VelCGType* t = [] {
        PlexoInitialize_velcg();
        auto* made = new VelCG::VelCGType("int32_t");
        made->setNBits(32);
        made->setIsSigned(true);
        made->setSlope(0.125);
        return made;
    }();
    return *t;
}

void BM_ClientGetProperty(benchmark::State& state, const std::string& property) {
    const korb::Client& client = korb::ObjectSystem::instance().getPublicClient();
    const vel::mi::HandleRef ref = type().makeRef();
    for (auto _ : state) {
        tuvArrayPtr value = client.getProperty(ref, property);
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK_CAPTURE(BM_ClientGetProperty, Name, std::string("Name"));
BENCHMARK_CAPTURE(BM_ClientGetProperty, NBits, std::string("NBits"));
BENCHMARK_CAPTURE(BM_ClientGetProperty, IsSigned, std::string("IsSigned"));
BENCHMARK_CAPTURE(BM_ClientGetProperty, Slope, std::string("Slope"));

// The getter's result type decides the conversion, as in the binder.
template <class Getter>
void BM_DirectGetterConversion(benchmark::State& state, Getter getter) {
    using R = std::decay_t<decltype((type().*getter)())>;
    VelCG::VelCGType* object = &type();
    for (auto _ : state) {
        benchmark::DoNotOptimize(object);
        tuvArrayPtr value = korb::HostTraits<R>::toArray((object->*getter)());
        benchmark::DoNotOptimize(value);
    }
}
BENCHMARK_CAPTURE(BM_DirectGetterConversion, Name, &VelCG::VelCGType::getName);
BENCHMARK_CAPTURE(BM_DirectGetterConversion, NBits, &VelCG::VelCGType::getNBits);
BENCHMARK_CAPTURE(BM_DirectGetterConversion, IsSigned, &VelCG::VelCGType::isSigned);
BENCHMARK_CAPTURE(BM_DirectGetterConversion, Slope, &VelCG::VelCGType::getSlope);

template <class T>
void BM_ScalarConversion(benchmark::State& state, T value) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(value);
        tuvArrayPtr array = korb::HostTraits<T>::toArray(value);
        benchmark::DoNotOptimize(array);
    }
}
BENCHMARK_CAPTURE(BM_ScalarConversion, bool, true);
BENCHMARK_CAPTURE(BM_ScalarConversion, int32, std::int32_t{1234567});
BENCHMARK_CAPTURE(BM_ScalarConversion, double, 0.125);

// The least a scalar host value needs.
struct MinimalScalar {
    tuvClass cls;
    std::size_t rows;
    std::size_t cols;
    union {
        bool logical;
        std::int32_t int32;
        double float64;
    };
};

template <class T>
void BM_ScalarConstructionLimit(benchmark::State& state, T value) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(value);
        auto array = std::make_shared<MinimalScalar>();
        array->rows = array->cols = 1;
        if constexpr (std::is_same_v<T, bool>) {
            array->cls = tuvClass::Logical;
            array->logical = value;
        } else if constexpr (std::is_same_v<T, std::int32_t>) {
            array->cls = tuvClass::Int32;
            array->int32 = value;
        } else {
            array->cls = tuvClass::Double;
            array->float64 = value;
        }
        benchmark::DoNotOptimize(array);
    }
}
BENCHMARK_CAPTURE(BM_ScalarConstructionLimit, bool, true);
BENCHMARK_CAPTURE(BM_ScalarConstructionLimit, int32, std::int32_t{1234567});
BENCHMARK_CAPTURE(BM_ScalarConstructionLimit, double, 0.125);

} // namespace

BENCHMARK_MAIN();
