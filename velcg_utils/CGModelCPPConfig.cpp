#include "velcg/CGModelCPPConfig.hpp"

namespace VelCG {

CGModelCPPConfig::CGModelCPPConfig()
    : blockSignalsGetMethodName_("getBlockSignals"),
      blockSignalsSetMethodName_("setBlockSignals"),
      dWorkGetMethodName_("getDWork"),
      dWorkSetMethodName_("setDWork") {}

} // namespace VelCG
