#include "velcg/Features.hpp"

vel::feature::Feature VELFEAT_VelCGDirectEmitSerialize("VelCGDirectEmitSerialize",
                                                       "Serialize Direct Emit to Strata",
                                                       "VelCG[Infrastructure]", 1, "velcg_utils/cgmodel");

vel::feature::Feature VELFEAT_CoderDataGroups("CoderDataGroups", "Enable coder data groups",
                                              "Corvid[Customization]", 1, "velcg_utils/coderdatagroup");

vel::feature::Feature VELFEAT_CoderDataGroupTesting(
    "CoderDataGroupTesting", "Feature to enable prototyping coder data groups for models and subsystems",
    "Corvid[Customization]", 0, "velcg_utils/coderdatagroup");
