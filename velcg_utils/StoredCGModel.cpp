#include "velcg/StoredCGModel.hpp"

namespace VelCG {

// A background pass calls getName and getKordelVersion: wait for it while
// the fields they read still exist.
StoredCGModel::~StoredCGModel() {
    endScriptAccess();
    waitForSerialization();
}

} // namespace VelCG
