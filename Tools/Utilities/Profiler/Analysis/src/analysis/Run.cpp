#include "analysis/Run.h"

namespace zeb::analysis {

std::string layerName(const ZebLayer& layer) {
    return layer.name;
}

std::string layerName(const OruLayer& layer) {
    return "ORU layer " + std::to_string(layer.id) + " (" + layer.typeName + ')';
}

}  // namespace zeb::analysis
