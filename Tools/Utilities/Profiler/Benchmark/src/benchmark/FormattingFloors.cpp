#include <array>
#include <charconv>
#include <string_view>

#include "benchmark/Floors.h"
#include "benchmark/Shapes.h"

namespace zeb::bench {

namespace {

constexpr std::size_t columnSpacing = 4;
constexpr std::size_t nameWidth = 34;

// Appends cells, each padded to its width, or as many fields that end in a comma.
class RowText {
public:
    RowText(std::string& text, bool isCsv) : text_(text), isCsv_(isCsv) {}

    void cell(std::string_view content, std::size_t width) {
        text_ += content;
        if (isCsv_) {
            text_ += ',';
        } else if (content.size() < width) {
            text_.append(width - content.size(), ' ');
        }
    }

    void cell(std::uint64_t number, std::size_t width) {
        std::array<char, 20> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
        cell(std::string_view(digits.data(), static_cast<std::size_t>(end - digits.data())), width);
    }

    void end() { text_ += '\n'; }

private:
    std::string& text_;
    bool isCsv_;
};

void formatOruLayer(RowText row, const LayerFigures& layer, bool isCsv) {
    row.cell(layer.id, 8 + columnSpacing);
    row.cell("CONVOLUTION", 10 + columnSpacing);
    row.cell(layer.offloaded ? "Offloaded" : "No", 12 + columnSpacing);
    row.cell(layer.offloaded ? "No" : "-", 9 + columnSpacing);
    row.cell("-", 20 + columnSpacing);
    row.cell(layer.executions, 10 + columnSpacing);
    row.cell(layer.timeUs / layer.executions, 13 + columnSpacing);
    row.cell(layer.timeUs, 15 + columnSpacing);
    if (layer.offloaded) {
        row.cell(isCsv ? "0" : "-", 14 + columnSpacing);
        row.cell(isCsv ? "0" : "-", 16 + columnSpacing);
        row.cell(layer.coreCycles / layer.executions, 20 + columnSpacing);
        row.cell(layer.coreCycles / layer.executions / 1000, 23 + columnSpacing);
    } else {
        row.cell(layer.dspCycles / layer.executions, 14 + columnSpacing);
        row.cell(layer.dspCycles, 16 + columnSpacing);
        row.cell("-", 20 + columnSpacing);
        row.cell("-", 23 + columnSpacing);
    }
    row.end();
}

void formatLayers(std::string& text, std::size_t layers, bool isCsv) {
    RowText row(text, isCsv);
    for (std::size_t layer = 0; layer < layers; ++layer) {
        formatOruLayer(row, layerFigures(layer), isCsv);
    }
    for (std::size_t layer = 0; layer < layers; layer += oruLayersPerZebLayer) {
        const LayerFigures figures = layerFigures(layer);
        row.cell(zebLayerName(layer / oruLayersPerZebLayer), nameWidth + 2);
        row.cell(figures.timeUs, 20);
        row.cell(figures.coreCycles, 20);
        row.cell(figures.dspCycles, 25);
        row.end();
    }
    for (std::size_t layer = 0; layer < layers; layer += oruLayersPerZebLayer) {
        row.cell(zebLayerName(layer / oruLayersPerZebLayer), nameWidth);
        text += isCsv ? "\"" : ":  ";
        RowText ids(text, true);
        for (std::size_t below = 0; below < oruLayersPerZebLayer; ++below) {
            ids.cell(layer + below, 0);
        }
        text += isCsv ? "\"\n" : "\n";
    }
}

}  // namespace

void formatLayerReport(std::string& text, std::size_t layers) {
    formatLayers(text, layers, false);
}

void formatLayerCsv(std::string& text, std::size_t layers) {
    formatLayers(text, layers, true);
}

}  // namespace zeb::bench
