#pragma once

#include <memory>

#include "velcg/CGModel.hpp"

namespace example {

// The model the example generator compiles: "gain_model", one root system
// that scales its input by a tunable gain K and accumulates the result
//
//   In1 -> Gain(K) -> Sum -> Out1
//                      ^      |
//                      +- Unit Delay
//
// so that with In1 = 1 and K = 2 the output runs 2, 4, 6, ...
// The code generator's own knowledge of the model (which C expression holds
// each signal) is recorded where the library keeps it: region sources of
// the ports, variable groups and their code-generation types.
std::unique_ptr<VelCG::CGModel> buildGainModel();

} // namespace example
