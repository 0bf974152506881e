#include "reader/backend/LayerTypeNames.h"

#include <algorithm>
#include <iterator>

namespace zeb::profiling {

namespace {

// ORU layer types, by their number in the layer configuration.
constexpr std::string_view layerTypeNames[] = {
    "CONVOLUTION",
    "INNER_PRODUCT",
    "RELU",
    "LOGSOFTMAX",
    "MAX_OUT",
    "MAX_POOL",
    "RESERVED_6",
    "RESHAPE",
    "LSTM",
    "RESERVED_9",
    "GRU",
    "RESERVED_11",
    "TRANSPOSE",
    "RESERVED_13",
    "BATCH_NORMALIZE",
    "QUANTIZE",
    "ADD",
    "MATMUL",
    "DIV",
    "CONSTANT",
    "NO_OP",
    "REDUCEMEAN",
    "RESERVED_22",
    "FRAMER",
    "SLICE",
    "SHAPE",
    "SQUEEZE",
    "UNSQUEEZE",
    "MUL",
    "MAX",
    "CONCAT",
    "RESERVED_31",
    "SOFTMAX",
    "TANH",
    "REDUCE",
    "CONV1D",
    "SUB",
    "POW",
    "CLIP",
    "SIGMOID",
    "RESERVED_40",
    "GATHER",
    "LOG",
    "SQRT",
    "RESERVED_44",
    "RESERVED_45",
    "RESERVED_46",
    "EXP",
    "RESERVED_48",
    "RESERVED_49",
    "GEMM",
    "RESERVED_51",
    "GLOBAL AVERAGE POOL",
    "AVERAGE_POOL",
    "ARGMAX",
    "ARGMIN",
    "RESERVED_56",
    "CONVTRANSPOSE",
    "PAD",
    "PRELU",
    "MIN",
    "SUPERCONVOLUTION_v4",
    "SUPERGEMM_v4",
    "SUPERADD_v4",
    "SUPERSUB_v4",
    "SUPERMUL_v4",
    "SUPERDIV",
    "SUPERDECONV_v4",
    "FLOW_CONTROL",
    "SUPERAVGPOOL_v4",
    "SUPERMAXPOOL_v4",
    "LAYERNORM_v4",
    "HW_JOB",
    "SYS_JOB",
    "DIRECTPP",
    "SUPERCONV",
    "SUPERGEMM",
    "SUPERADD",
    "SUPERSUB",
    "SUPERMUL",
    "SUPERDECONV",
    "SUPERAVGPOOL",
    "SUPERMAXPOOL",
    "LAYERNORM",
    "SUPERSCALE",
    "CACHE_OP",
    "SUPERMIN",
    "SUPERMAX",
    "LAYOUT_PAD",
    "LAYOUT_SLICE",
    "FRAMER_PRODUCER_UPDATE",
    "FRAMER_CONSUMER_UPDATE",
    "DMA_MOVER",
    "MEM_OP",
};

static_assert(std::size(layerTypeNames) == 94, "the types are numbered from 0 to 93");

constexpr std::string_view unknownLayerType = "Oru Layer Type NA";

constexpr bool fits(std::string_view name) {
    return name.size() <= maxLayerTypeNameLength;
}
static_assert(std::all_of(std::begin(layerTypeNames), std::end(layerTypeNames), fits) &&
              fits(unknownLayerType));

}  // namespace

bool isKnownLayerType(std::uint32_t layerType) {
    return layerType < std::size(layerTypeNames);
}

std::string_view layerTypeName(std::uint32_t layerType) {
    return isKnownLayerType(layerType) ? layerTypeNames[layerType] : unknownLayerType;
}

}  // namespace zeb::profiling
