#pragma once

#include <string_view>

namespace zeb::analysis {

struct Term {
    std::string_view word;
    std::string_view meaning;  ///< begins small and ends without a full stop
};

/// The words that all forms use of the system and its layers, from the caller down. README.md has the same.
inline constexpr Term glossary[] = {
    {"Marlix", "the runtime that the application calls; its time is what the caller sees"},
    {"Murl", "the backend, the software below Marlix that drives the accelerator"},
    {"ADSP", "the DSP of the accelerator"},
    {"Krel", "the core beside the DSP, to which it offloads"},
    {"IPC", "the way to the DSP and back"},
    {"ZEB", "a ZEB layer is one of the network, as the framework knows it, by its name"},
    {"ORU", "ORU layers are what the backend makes of a ZEB layer, and what runs"},
};

}  // namespace zeb::analysis
